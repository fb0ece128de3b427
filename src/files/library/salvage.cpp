// Copying what can be read from a damaged library into another one.
//
// The entries are followed from one to the next as in any scan. An entry is taken when its check
// value proves it, or when what follows it is an entry again or the end of the file. Behind
// anything else the next place is searched where an entry may stand.
#include "files/library/change.h"

namespace zo {
namespace {

class NoSink final : public ByteSink {
 public:
  bool write(Bytes) noexcept override { return true; }
};

class Salvage {
 public:
  Salvage(LibraryCore& from, LibraryCore& to, Progress& progress,
          const std::function<bool(const ZoLibEntry&, int)>& report)
      : from_(from),
        to_(to),
        progress_(progress),
        report_(report),
        change_(to),
        window_(from.file, from.file.size()) {}

  int run() {
    if (const int code = change_.begin()) return code;
    std::uint64_t at = kHeaderSize;
    while (at < window_.size()) {
      RawEntry entry;
      const bool isEntry = readEntry(window_, at, entry) == ScanEnd::kFileEnd;
      const std::uint64_t next = isEntry ? take(entry) : at + 1;
      at = isEntry && next == entry.end() ? next : findEntry(window_, next, from_.header.counter());
      if (window_.takeFailure()) tell(RawEntry{.position = next, .name = {}}, 1);
      if (isStopped_) return ZoResult::refused;
    }
    if (!progress_.finish()) return ZoResult::refused;
    return copied_.entries().empty() ? ZoResult::ok : change_.commit();
  }

 private:
  // Where to go on: the entry's end when that can be believed.
  std::uint64_t take(RawEntry& entry) {
    if (isRedo(entry.record, entry.name)) return entry.end();
    for (const RawEntry& patch : from_.scan.redo) {
      if (patch.position == entry.position) entry = patch;
    }
    entry.trailer = trailerOf(window_, entry);
    bool ignored = false;
    const ZoLibrary::Watcher none;
    Progress unwatched(none, ignored, 0);
    NoSink sink;
    int code = from_.readMember(entry, sink, unwatched);
    const bool isProven =
        code == ZoResult::ok &&
        (entry.record.has(kIsCompressed) || entry.record.protectsStored(from_.header.counter()));
    // No data prove nothing of the name's length.
    const bool endIsSound = (isProven && entry.record.storedSize != 0) || isEnd(entry.end());
    if (code == ZoResult::ok && !isProven && !endIsSound) code = ZoResult::refused;
    if (code == ZoResult::ok) code = copy(entry);
    tell(entry, code);
    return endIsSound ? entry.end() : entry.position + 1;
  }

  bool isEnd(std::uint64_t at) {
    RawEntry next;
    return at == window_.size() || readEntry(window_, at, next) == ScanEnd::kFileEnd;
  }

  int copy(const RawEntry& entry) {
    RawEntry copy = entry;
    copied_.add(entry);
    const std::wstring name(copied_.name(copied_.entries().back()));
    copied_.removeLast();
    if (entry.record.isLive() && (to_.index.findLive(name) || copied_.findLive(name))) {
      return ZoResult::memberExists;
    }
    copy.position = change_.end();
    copy.record.number = change_.nextNumber();
    copy.record.flags &= kIsCompressed | kIsDeleted;
    if (!change_.reserve(copy) ||
        !copyData(from_.file, entry, to_.file, copy.dataPosition(), progress_) ||
        !change_.append(copy)) {
      isStopped_ = true;
      return ZoResult::refused;
    }
    change_.countMember();
    copied_.add(copy);
    return ZoResult::ok;
  }

  void tell(const RawEntry& entry, int code) {
    if (report_ && !report_(from_.publicEntry(entry), code)) isStopped_ = true;
  }

  LibraryCore& from_;
  LibraryCore& to_;
  Progress& progress_;
  const std::function<bool(const ZoLibEntry&, int)>& report_;
  Change change_;
  ReadWindow window_;
  LibraryIndex copied_;
  bool isStopped_ = false;
};

}  // namespace

int LibraryCore::salvageInto(LibraryCore& target,
                             const std::function<bool(const ZoLibEntry&, int)>& report) {
  if (const int refused = mayRead()) return refused;
  if (const int refused = target.mayWrite()) return refused;
  if (&target == this) return ZoResult::refused;
  const int code = refresh();
  if (code && scan.end != ScanEnd::kUnreadable) return code;
  Progress watched = progress(file.size());
  if (!watched.begin()) return ZoResult::refused;
  return Salvage(*this, target, watched, report).run();
}

}  // namespace zo
