// One change of a library's file: entries behind the last one, and records in the place of others,
// which become visible in one step. What a killed process, a failure or a loss of power leaves is
// the file before or after; docs/formats/library.md has the proof.
//
// Nothing else writes to the file of an open library: a change begins by settling it, writes its
// journal (the redo entry) and flushes, commits, or takes back what it wrote.
//
// Errors:  false or 1, and then destroying the change takes back what was written.
// Threads: one, under the process-wide lock.
#pragma once

#include "files/fresh_file.h"
#include "library/state.h"
#include "persist/sdk_memory.h"
#include "platform/system_path.h"

namespace zo {

class Change {
 public:
  explicit Change(LibraryState& library) : library_(library) {}
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;
  ~Change();

  // Commits a batch that is open, settles the file and makes it ready for an entry at end().
  [[nodiscard]] int begin();

  // ---- Entries and patches ----
  [[nodiscard]] std::uint64_t end() const { return end_; }
  // The number of a new member, and that it was added.
  [[nodiscard]] std::uint32_t nextNumber() const { return counter_ + 1; }
  void countMember() { ++counter_; }
  // To be called before the data of an entry at end() is written: a closed gate says that nothing
  // follows, whatever the data look like and however little of them reaches the disk.
  [[nodiscard]] bool reserve();
  // Where the data of a new entry goes.
  [[nodiscard]] DiskSink dataOf(const RawEntry& entry) {
    return {library_.file_, entry.dataPosition()};
  }
  // Drops what an attempt at its data left up to `from`, of which `to` is the end now.
  [[nodiscard]] bool shorten(std::uint64_t from, std::uint64_t to);
  // Adds an entry at end() whose data has been written.
  [[nodiscard]] bool append(RawEntry entry);
  // Makes room for so many entries that are appended or patched next.
  void makeRoom(std::size_t count);
  // Takes the place of the entry at that position, which may be one of the new ones.
  void patch(RawEntry entry);
  // The same, refused when a redo has no room for it.
  [[nodiscard]] bool tryPatch(RawEntry entry);
  // Whether it is time to commit: a redo has a largest size.
  [[nodiscard]] bool isFull() const { return patchBytes_ > kLargestRedo / 2; }
  [[nodiscard]] int commit();
  // For the members' encoders, one after the other.
  [[nodiscard]] ReusedMemory& codecMemory() { return codecMemory_; }

  // ---- Changes of another kind: each is the whole of a change that has begun ----
  [[nodiscard]] int setValue(std::uint64_t value);
  // Cuts the file, which makes all entries from there on go.
  [[nodiscard]] int cutTo(std::uint64_t size);
  // Puts a complete and locked file, which stands at `place`, where the library's file is. 1006
  // when others have that open.
  [[nodiscard]] int replaceBy(DiskFile copy, FreshFile& place, const SystemPath& library);
  // Whether others have the library's file open, so that it cannot be replaced. The library is
  // closed when its file cannot be opened again: 1.
  [[nodiscard]] int askWhetherInUse(const SystemPath& library, bool& isInUse);

  // ---- What needs no begin ----
  // Makes a file that was just opened a new library, where it holds nothing, or no more than what a
  // killed process wrote of one.
  [[nodiscard]] static int makeNew(LibraryState& library, bool empties);
  // Finishes or undoes what a killed writer began, where nothing can be lost by it. What is wrong
  // with the content, or left to be done, the next change says or does for itself.
  static void settleOpened(LibraryState& library) noexcept;

 private:
  enum class Settling { kOpened, kBeforeChange };
  static int settle(LibraryState& library, Settling when);
  static void settleQuietly(LibraryState& library, Settling when) noexcept;
  static int finishRedo(LibraryState& library);
  static int cutTail(LibraryState& library);

  [[nodiscard]] bool fits();
  [[nodiscard]] bool disownNumbers();
  [[nodiscard]] bool appendRedo();
  [[nodiscard]] bool writeHeader();
  [[nodiscard]] bool clearMark();
  [[nodiscard]] bool openGate();
  [[nodiscard]] bool publish();
  enum class InPlace { kDone, kFailed, kNotPossible };
  [[nodiscard]] InPlace patchInPlace();
  void keepIndex() noexcept;
  void updateIndex();
  void takeBack() noexcept;
  [[nodiscard]] bool reopen(const SystemPath& library) noexcept;

  LibraryState& library_;
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

// Members that were added, which become visible together.
struct Batch {
  explicit Batch(LibraryState& library) : change(library) {}
  Change change;
  LibraryIndex members;
};
// Commits a batch. 0 also without one.
[[nodiscard]] int endBatch(LibraryState& library);

}  // namespace zo
