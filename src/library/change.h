// One change of a library's file: entries behind the last one, and records in the place of others,
// which become visible in one step. What a killed process, a failure or a loss of power leaves is
// the file before or after; docs/formats/library.md has the proof.
//
// Errors:  false or 1, and then destroying the change takes back what was written.
// Threads: one, under the process-wide lock.
#pragma once

#include "library/library_core.h"
#include "persist/sdk_memory.h"

namespace zo {

class Change {
 public:
  explicit Change(LibraryCore& core) : core_(core) {}
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;
  ~Change();

  // Settles the file and makes it ready for an entry at end().
  [[nodiscard]] int begin();
  [[nodiscard]] std::uint64_t end() const { return end_; }
  // The number of a new member, and that it was added.
  [[nodiscard]] std::uint32_t nextNumber() const { return counter_ + 1; }
  void countMember() { ++counter_; }
  // To be called before the data of an entry at end() is written: a closed gate says that nothing
  // follows, whatever the data look like and however little of them reaches the disk.
  [[nodiscard]] bool reserve();
  // Adds an entry at end() whose data has been written.
  [[nodiscard]] bool append(RawEntry entry);
  // Makes room for so many entries that are appended or patched next.
  void makeRoom(std::size_t count);
  // Takes the place of the entry at that position, which may be one of the new ones.
  void patch(RawEntry entry);
  // Whether it is time to commit: a redo has a largest size.
  [[nodiscard]] bool isFull() const { return patchBytes_ > kLargestRedo / 2; }
  [[nodiscard]] int commit();
  // For the members' encoders, one after the other.
  [[nodiscard]] ReusedMemory& codecMemory() { return codecMemory_; }

 private:
  [[nodiscard]] bool disownNumbers();
  [[nodiscard]] bool appendRedo();
  [[nodiscard]] bool writeHeader();
  [[nodiscard]] bool clearMark();
  [[nodiscard]] bool openGate();
  int patchInPlace();
  void keepIndex() noexcept;
  void updateIndex();
  void takeBack() noexcept;

  LibraryCore& core_;
  std::uint64_t begin_ = 0, end_ = 0;
  std::uint32_t counter_ = 0;
  std::uint64_t marked_ = 0;               // the entry that has the mark; 0 for none
  std::vector<unsigned char> firstEntry_;  // as it is with its gate open
  std::vector<RawEntry> appended_;
  std::vector<RawEntry> patches_;
  std::size_t patchBytes_ = 0;
  std::uint64_t redoPosition_ = 0;
  ReusedMemory codecMemory_;
  bool isBegun_ = false, isHeaderWritten_ = false, isMarkTouched_ = false, isGateTouched_ = false,
       isCommitted_ = false;
};

// Copies the data of an entry as it is stored.
[[nodiscard]] bool copyData(LibraryFile& file, const RawEntry& from, LibraryFile& target,
                            std::uint64_t to, Progress& progress);

}  // namespace zo
