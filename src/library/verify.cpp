// Seeing of many members that they are as they were added. Neighbours that are small are read at
// once; whatever is wrong with one of them, it is read again alone, as often as that takes.
#include <algorithm>

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
    bytes_.resize(static_cast<std::size_t>(end - begin));
    return from.read(begin, bytes_);
  }
  [[nodiscard]] std::uint64_t size() const noexcept override { return begin_ + bytes_.size(); }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    if (offset < begin_ || offset > size() || to.size() > size() - offset) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset - begin_), to.size(),
                to.begin());
    return true;
  }

 private:
  std::uint64_t begin_ = 0;
  std::vector<unsigned char> bytes_;
};

// Members that lie side by side, with their bytes as these were when they were looked for.
class Neighbours {
 public:
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
      RawEntry& found = found_.emplace_back();
      found.position = next->position;
      found.trailer = next->trailer;
      found.name.resize(next->record.nameLength);
      end_ = next->end();
      total += found.trailer.size ? found.trailer.size : next->record.storedSize;
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
    if (!progress_.begin()) return;
    for (std::size_t i = 0; i < found_.size(); ++i) {
      RawEntry& entry = found_[i];
      unsigned char record[kRecordSize];
      if (!bytes_.read(entry.position, record)) continue;
      entry.record = decodeRecord(record);
      NoSink sink(unwatched);
      codes[i] = readContent(bytes_, counter_, entry, sink, unwatched);
      if (!progress_.add(entry.contentSize())) return;
    }
  }

 private:
  [[nodiscard]] bool isNear(const IndexEntry& entry) const {
    const std::uint64_t begin = found_.empty() ? entry.position : found_.front().position;
    return entry.position >= end_ && entry.end() - begin <= kAtOnce;
  }

  std::vector<RawEntry> found_;
  std::uint64_t end_ = 0;
  std::uint32_t counter_ = 0;
  LoadedPart bytes_;
  Progress progress_;
};

// How many of the first ones were read; none where that was cancelled.
std::size_t verifyFirst(const std::shared_ptr<LibraryDoor>& door,
                        std::span<const ZoLibEntry> entries, std::span<int> codes) {
  Neighbours first;
  const auto load = [&](LibraryState& library) { return first.load(library, entries); };
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
  for (std::size_t begin = 0; begin < entries.size();) {
    const std::size_t count =
        verifyFirst(door, entries.subspan(begin), std::span(codes).subspan(begin));
    if (count == 0) break;
    begin += count;
  }
  const auto bad = std::ranges::find_if(codes, [](int code) { return code != 0; });
  return bad == codes.end() ? ZoResult::ok : *bad;
}

}  // namespace zo
