// Seeing of many members that they are as they were added. Neighbours that are small are read at
// once, into memory that is kept for the next ones; whatever is wrong with one of them, it is read
// again alone, as often as that takes.
#include <algorithm>
#include <utility>

#include "library/copy.h"
#include "library/operations.h"
#include "library/read_member.h"
#include "library/reading.h"

namespace zo {
namespace {

constexpr std::uint64_t kAtOnce = std::uint64_t{1} << 20;  // bytes of the file

// Bytes of a store that were read before.
class LoadedPart final : public ByteStore {
 public:
  // False when they cannot be read.
  [[nodiscard]] bool load(ByteStore& from, std::uint64_t begin, std::uint64_t end) {
    begin_ = begin;
    count_ = static_cast<std::size_t>(end - begin);
    if (bytes_.size() < count_) bytes_.resize(count_);
    return from.read(begin, std::span(bytes_).first(count_));
  }
  [[nodiscard]] std::uint64_t size() const noexcept override { return begin_ + count_; }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    if (offset < begin_ || offset > size() || to.size() > size() - offset) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset - begin_), to.size(),
                to.begin());
    return true;
  }

 private:
  std::uint64_t begin_ = 0;
  std::size_t count_ = 0;
  std::vector<unsigned char> bytes_;  // and more room, perhaps
};

// Members that lie side by side, with their bytes as these were when they were looked for.
class Neighbours {
 public:
  // Of so many members in all.
  explicit Neighbours(std::size_t count) { found_.reserve(std::min(count, kOften)); }
  void clear() noexcept {
    found_.clear();
    end_ = 0;
    progress_ = Progress();
  }
  // Under the lock: as many of the first ones as are read at once.
  int load(LibraryState& library, std::span<const ZoLibEntry> wanted) {
    if (const int code = library.refresh()) return code;
    const auto entries = library.index().entries();
    const IndexEntry* next = nullptr;
    std::uint64_t total = 0;
    for (const ZoLibEntry& entry : wanted) {
      const bool isNext = next && next != entries.data() + entries.size();
      if (!isNext || next->position != entry.position) next = library.index().at(entry.position);
      if (!next || !isNear(*next)) break;
      if (!isListed(next->record, library.index().bytes(*next), entry)) break;
      found_.push_back(*next);
      end_ = next->end();
      total += next->trailer.size ? next->trailer.size : next->record.storedSize;
      ++next;
    }
    counter_ = library.header().counter();
    progress_ = library.progress(total);
    const bool isLoaded =
        !found_.empty() && bytes_.load(library.bytes(), found_.front().position, end_);
    return isLoaded ? ZoResult::ok : ZoResult::refused;
  }
  [[nodiscard]] std::size_t count() const noexcept { return found_.size(); }
  [[nodiscard]] bool isCancelled() const { return progress_.isCancelled(); }
  // Without the lock.
  void verify(std::span<int> codes) {
    Progress unwatched;
    NoSink sink(unwatched);
    RawEntry entry;
    std::uint64_t untold = 0;
    if (!progress_.begin()) return;
    for (std::size_t i = 0; i < found_.size(); ++i) {
      if (takeAsRead(found_[i], entry))
        codes[i] = readContent(bytes_, counter_, entry, sink, unwatched);
      untold += entry.contentSize();
      if (untold >= kPiece && !progress_.add(std::exchange(untold, 0))) return;
    }
    static_cast<void>(progress_.add(untold));
  }

 private:
  [[nodiscard]] bool isNear(const IndexEntry& entry) const {
    const std::uint64_t begin = found_.empty() ? entry.position : found_.front().position;
    return entry.position >= end_ && entry.end() - begin <= kAtOnce;
  }

  // False when another process has changed it since it was looked for, or a redo has.
  [[nodiscard]] bool takeAsRead(const IndexEntry& found, RawEntry& entry) {
    unsigned char record[kRecordSize];
    entry.position = found.position;
    entry.trailer = found.trailer;
    entry.record = found.record;
    entry.name.resize(found.record.nameLength);
    return bytes_.read(found.position, record) && decodeRecord(record) == found.record;
  }

  static constexpr std::size_t kOften = 256;  // are side by side

  std::vector<IndexEntry> found_;
  std::uint64_t end_ = 0;
  std::uint32_t counter_ = 0;
  LoadedPart bytes_;
  Progress progress_;
};

// How many of the first ones were read; none where that was cancelled.
std::size_t verifyFirst(Neighbours& first, const std::shared_ptr<LibraryDoor>& door,
                        std::span<const ZoLibEntry> entries, std::span<int> codes) {
  const auto load = [&](LibraryState& library) { return first.load(library, entries); };
  first.clear();
  if (run(door, Access::kRead, {}, load) == ZoResult::ok) first.verify(codes);
  if (first.isCancelled()) return 0;
  const std::size_t count = std::max<std::size_t>(first.count(), 1);
  for (std::size_t i = 0; i < count; ++i) {
    if (codes[i]) codes[i] = verifyEntry(door, entries[i]);
  }
  return count;
}

}  // namespace

int verifyEntries(const std::shared_ptr<LibraryDoor>& door, std::span<const ZoLibEntry> entries,
                  std::vector<int>& codes) {
  codes.assign(entries.size(), ZoResult::refused);
  Neighbours neighbours(entries.size());
  for (std::size_t begin = 0; begin < entries.size();) {
    const std::size_t count =
        verifyFirst(neighbours, door, entries.subspan(begin), std::span(codes).subspan(begin));
    if (count == 0) break;
    begin += count;
  }
  const auto bad = std::ranges::find_if(codes, [](int code) { return code != 0; });
  return bad == codes.end() ? ZoResult::ok : *bad;
}

}  // namespace zo
