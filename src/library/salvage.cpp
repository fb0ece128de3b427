// Copying what can be read from a damaged library into another one.
//
// First all that a scan comes to, so that nothing is missing that a reader gets; then what is found
// behind its end, and in the entries that nothing proves: one of a wrong size swallowed others.
#include <algorithm>

#include "library/copy.h"
#include "library/entry_search.h"
#include "library/operations.h"
#include "library/read_member.h"
#include "library/tail.h"

namespace zo {
namespace {

class Salvage {
 public:
  Salvage(LibraryState& from, LibraryState& to, Progress& progress,
          const std::function<bool(const ZoLibEntry&, int)>& report)
      : from_(from),
        to_(to),
        progress_(progress),
        report_(report),
        change_(to),
        window_(from.bytes(), from.bytes().size()),
        search_(from.bytes(), from.bytes().size(), [this] { return progress_.goesOn(); }) {}

  int run() {
    if (const int code = change_.begin()) return code;
    takeListed();
    takeFirstOfTail();
    search();
    takeFound();
    if (isStopped_ || !progress_.finish()) return ZoResult::refused;
    return copied_.entries().empty() ? ZoResult::ok : change_.commit();
  }

 private:
  struct Listed {
    std::uint64_t position, end;
    bool isSound;  // or a library, in which entries are no damage
  };

  void takeListed() {
    listed_.reserve(from_.index().entries().size());
    for (const IndexEntry& found : from_.index().entries()) {
      if (isStopped_) return;
      RawEntry entry;
      if (readEntry(window_, found.position, entry) != ScanEnd::kFileEnd) {
        entry = {.position = found.position, .record = found.record, .name = {}};
        tell(entry, ZoResult::refused);
        listed_.push_back({found.position, found.end(), false});
        continue;
      }
      for (const RawEntry& patch : from_.scan().redo) {
        if (patch.position == entry.position) entry = patch;
      }
      entry.trailer = trailerOf(window_, entry);
      const bool isSound = isRedo(entry.record, entry.name) || take(entry) || entry.meetsTrailer();
      listed_.push_back({entry.position, entry.end(), isSound || holdsLibrary(from_, entry)});
    }
  }

  // Where a scan ends by damage: an entry that cannot be whole is at least named.
  void takeFirstOfTail() {
    RawEntry entry;
    const std::uint64_t at = from_.scan().position;
    if (readEntry(window_, at, entry) != ScanEnd::kNoEntry || isStopped_) return;
    const std::size_t length = entry.record.nameLength;
    const unsigned char* const bytes = window_.at(at, kRecordSize + length);
    if (!bytes || length == 0) return;
    entry.name.assign(bytes + kRecordSize, bytes + kRecordSize + length);
    if (isPlausibleName({bytes + kRecordSize, length})) tell(entry, ZoResult::refused);
  }

  // From the last to the first, since an entry is known by what follows it.
  void search() {
    const std::uint64_t size = window_.size(), end = std::min(from_.scan().position, size);
    search_.know(size);
    const ScanEnd tail = endAt(window_, end);
    if (tail == ScanEnd::kClosedGate || tail == ScanEnd::kZero) search_.know(end);
    if (!isOwnTail(from_)) search_.search(end, size);
    std::uint64_t next = end;
    for (std::size_t i = listed_.size(); i-- > 0 && !isStopped_;) {
      const Listed& entry = listed_[i];
      search_.search(entry.end, next);  // entries without a name
      if (!entry.isSound) search_.search(entry.position + 1, entry.end);
      if (entry.isSound || search_.knows(entry.end)) search_.know(entry.position);
      next = entry.position;
    }
    search_.search(kHeaderSize, next);
  }

  void takeFound() {
    std::uint64_t next = 0;
    for (std::size_t i = search_.found().size(); i-- > 0 && !isStopped_;) {
      RawEntry entry;
      const std::uint64_t at = search_.found()[i];
      if (at < next || readEntry(window_, at, entry) != ScanEnd::kFileEnd) continue;
      entry.trailer = trailerOf(window_, entry);
      if (!isRedo(entry.record, entry.name)) take(entry);
      next = entry.end();  // what is found in an entry that was found is its data
    }
    for (const std::uint64_t at : search_.unreadable()) {
      if (!isStopped_) tell(RawEntry{.position = at, .name = {}}, ZoResult::refused);
    }
  }

  // Copies a member that can be read. Whether its data prove it, and with it where it ends.
  bool take(const RawEntry& entry) {
    Progress unwatched;
    CheckedSink sink;
    int code = readMember(from_, entry, sink, unwatched);
    const bool isProven =
        code == ZoResult::ok && isProtected(from_, entry.record) && entry.contentSize() != 0;
    if (code == ZoResult::ok) code = copy(entry, sink.crc());
    tell(entry, code);
    return isProven;
  }

  // Of several live members of a name the first keeps it; the others are copied as deleted. Fields
  // that another maker left become those of this library: what was read is protected from now on.
  int copy(const RawEntry& entry, std::uint32_t crc) {
    RawEntry copy = entry;
    const bool isHidden = entry.record.isLive() && isTaken(entry);
    copy.position = change_.end();
    copy.record.number = change_.nextNumber();
    copy.record.crc = crc;
    copy.record.size = entry.contentSize();
    if (!entry.record.has(kIsCompressed)) copy.record.mode = kStoredMode;
    copy.record.flags &= kIsCompressed | kIsDeleted;
    if (isHidden) copy.record.set(kIsDeleted);
    if (!change_.reserve() || !copyData(entry, copy) || !change_.append(copy)) {
      isStopped_ = true;
      return ZoResult::refused;
    }
    change_.countMember();
    copied_.add(copy);
    return isHidden ? ZoResult::memberExists : ZoResult::ok;
  }

  // Whether a live member of the target has the entry's name.
  bool isTaken(const RawEntry& entry) {
    copied_.add(entry);
    const std::wstring name(copied_.name(copied_.entries().back()));
    copied_.removeLast();
    return to_.index().findLive(name) || copied_.findLive(name);
  }

  bool copyData(const RawEntry& entry, const RawEntry& copy) {
    DiskSink data = change_.dataOf(copy);
    WatchedSink sink(data, progress_);
    return copyPart(from_.bytes(), entry.dataPosition(), entry.record.storedSize, sink);
  }

  void tell(const RawEntry& entry, int code) {
    if (report_ && !report_(describe(from_, entry), code)) isStopped_ = true;
  }

  LibraryState& from_;
  LibraryState& to_;
  Progress& progress_;
  const std::function<bool(const ZoLibEntry&, int)>& report_;
  Change change_;
  ReadWindow window_;
  EntrySearch search_;
  std::vector<Listed> listed_;
  LibraryIndex copied_;
  bool isStopped_ = false;
};

}  // namespace

int salvage(LibraryState& from, LibraryState& target,
            const std::function<bool(const ZoLibEntry&, int)>& report) {
  if (&target == &from) return ZoResult::refused;
  const int code = from.refresh();
  if (code && from.scan().end != ScanEnd::kUnreadable) return code;
  Progress watched = from.progress(from.bytes().size());
  if (!watched.begin()) return ZoResult::refused;
  return Salvage(from, target, watched, report).run();
}

}  // namespace zo
