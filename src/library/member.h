// A member that is open as a file: what the copies of a ZoLibFile share.
//
// What it does to the library goes through the library's door.
//
// Threads: under the process-wide lock, which the callers hold but to open it and to open it again.
#pragma once

#include <memory>

#include "library/door.h"
#include "library/operations.h"
#include "library/spool.h"

namespace zo {

class Reading;

class LibraryMember {
 public:
  // Opens a member of the library behind the door; answers a code of zo/library/library.h.
  static int openToRead(const std::shared_ptr<LibraryDoor>& door, const MemberRef& wanted,
                        std::shared_ptr<LibraryMember>& opened);
  static int openToWrite(const std::shared_ptr<LibraryDoor>& door, const ZoFileName& name,
                         ZoLibrary::compMode mode, std::shared_ptr<LibraryMember>& opened);
  ~LibraryMember() = default;
  LibraryMember(const LibraryMember&) = delete;
  LibraryMember& operator=(const LibraryMember&) = delete;

  [[nodiscard]] bool isUsable() const noexcept { return !place_.isGone && !isDropped_; }
  [[nodiscard]] bool isWriting() const noexcept { return kind_ == Kind::kWritten; }
  [[nodiscard]] const ZoFileName& name() const noexcept { return name_; }
  // Adds what was written, unless a write failed or it was dropped. What is destroyed without it is
  // dropped.
  int finish();
  // Gives up what was written, for all that share it.
  void drop();
  [[nodiscard]] bool isDropped() const noexcept { return isDropped_; }
  // The same member from its begin, on its own.
  [[nodiscard]] std::shared_ptr<LibraryMember> again() const;

  unsigned int read(void* buffer, unsigned int count);
  unsigned int write(const void* data, unsigned int count);
  std::int64_t seek(std::int64_t offset, ZoFile::MoveMethod method);
  [[nodiscard]] std::int64_t size();
  int setEndOfFile();
  [[nodiscard]] MemberTimes times();
  int setTimes(const MemberTimes& times);
  // What is left to be read, as a temporary file at the same position.
  [[nodiscard]] bool copyTo(ZoFile& file);

 private:
  enum class Kind { kStored, kUnpacked, kWritten };
  static constexpr std::size_t kMostMemory = std::size_t{64} << 20;

  LibraryMember(std::shared_ptr<LibraryDoor> door, LibraryState& library, const ZoFileName& name);
  [[nodiscard]] bool load(Reading& reading);
  [[nodiscard]] MemberTimes withThoseSet(MemberTimes times) const;

  std::shared_ptr<LibraryDoor> door_;
  LibraryState& library_;  // behind the door, to be read
  ZoFileName name_;
  Kind kind_ = Kind::kStored;
  MemberPlace place_;
  std::int64_t position_ = 0;
  Spool unpacked_{kMostMemory};
  ZoFile file_;  // what is written
  ZoLibrary::compMode mode_ = ZoLibrary::kCompress;
  bool isIncomplete_ = false;  // a write failed
  bool isDropped_ = false;
  MemberTimes times_;  // what was set while writing
};

}  // namespace zo
