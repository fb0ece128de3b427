// Reading a member as a whole while others use libraries: it is found under the process-wide lock,
// which is then taken only for each piece of its data.
//
// Errors:  0, 1000 when the check value does not hold, 1; what finding it answers.
// Threads: one per object; any number of them at once.
#pragma once

#include <initializer_list>
#include <memory>

#include "library/door.h"

namespace zo {

class Reading final : public ByteStore {
 public:
  // Under the lock.
  Reading(std::shared_ptr<LibraryDoor> door, LibraryState& library, const RawEntry& entry);

  [[nodiscard]] const RawEntry& entry() const noexcept { return entry_; }
  [[nodiscard]] Progress& progress() noexcept { return progress_; }
  [[nodiscard]] bool contradictsItself() const { return entry_.record.contradictsItself(counter_); }
  // Its content.
  int into(ByteSink& out);

  // The library's bytes as they lay when this was made, but for a member that is gone.
  [[nodiscard]] std::uint64_t size() const noexcept override { return entry_.end(); }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override;

 private:
  std::shared_ptr<LibraryDoor> door_;  // the library stays as long as this
  LibraryState& library_;
  MemberPlace place_;
  RawEntry entry_;
  std::uint32_t counter_;
  Progress progress_;
};

// Finds a member under the lock and uses it without; both once more after a failure when another
// process changed the file meanwhile. Refuses as the door's run() does.
int readAside(const std::shared_ptr<LibraryDoor>& door,
              std::initializer_list<const ZoFileName*> names,
              const std::function<int(LibraryState&, RawEntry&)>& find,
              const std::function<int(Reading&)>& use);

}  // namespace zo
