#include "library/scan.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace zo {
namespace {

constexpr std::size_t kFirstRead = 4096;
constexpr std::uint64_t kNear = std::uint64_t{64} << 10;

std::span<const unsigned char, kRecordSize> recordAt(const unsigned char* at) {
  return std::span<const unsigned char, kRecordSize>(at, kRecordSize);
}

// Where the zeros end that begin at the position.
std::uint64_t endOfZeros(ReadWindow& window, std::uint64_t at) {
  while (at < window.size()) {
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(window.size() - at, ReadWindow::kSize));
    const unsigned char* const bytes = window.at(at, count);
    if (!bytes) return at;
    const auto zeros = static_cast<std::size_t>(
        std::find_if(bytes, bytes + count, [](auto byte) { return byte != 0; }) - bytes);
    at += zeros;
    if (zeros < count) return at;
  }
  return at;
}

// readEntry for places that only grow.
class EntryReader {
 public:
  explicit EntryReader(ReadWindow& window) : window_(window) {}
  ScanEnd read(std::uint64_t position, RawEntry& entry) {
    const ScanEnd end = readEntry(window_, position, entry);
    if (end != ScanEnd::kFileEnd || !(entry.record == EntryRecord{})) return end;
    if (zerosEnd_ <= position) zerosEnd_ = endOfZeros(window_, position);
    return zerosEnd_ == window_.size() ? ScanEnd::kZero : end;
  }

 private:
  ReadWindow& window_;
  std::uint64_t zerosEnd_ = 0;  // of those that were met last
};

std::optional<std::vector<RawEntry>> redoOf(ByteStore& store, ReadWindow& window,
                                            const RawEntry& entry) {
  if (!isRedo(entry.record, entry.name) || entry.record.storedSize > kLargestRedo) {
    return std::nullopt;
  }
  std::vector<unsigned char> data(static_cast<std::size_t>(entry.record.storedSize));
  if (!store.read(entry.dataPosition(), data)) return std::nullopt;
  auto patches = decodeRedo(data);
  if (!patches) return std::nullopt;
  // It must fit what is there now, or it would lead a scan astray.
  for (const RawEntry& patch : *patches) {
    RawEntry old;
    if (patch.position >= entry.position ||
        readEntry(window, patch.position, old) != ScanEnd::kFileEnd ||
        !mayReplace(old.record, patch.record)) {
      return std::nullopt;
    }
  }
  return patches;
}

}  // namespace

ReadWindow::ReadWindow(ByteStore& store, std::uint64_t size)
    : store_(store), size_(size), buffer_(new unsigned char[kSize]), ahead_(kFirstRead) {}

const unsigned char* ReadWindow::at(std::uint64_t offset, std::size_t count) {
  if (offset > size_ || count > size_ - offset || count > kSize) return nullptr;
  const std::uint64_t end = begin_ + filled_;
  if (offset >= begin_ && offset + count <= end) return buffer_.get() + (offset - begin_);
  const bool goesOn = filled_ != 0 && offset >= begin_ && offset <= end + kNear;
  ahead_ = goesOn ? std::min(2 * ahead_, kSize) : kFirstRead;
  const auto wanted =
      static_cast<std::size_t>(std::min<std::uint64_t>(std::max(ahead_, count), size_ - offset));
  filled_ = 0;
  if (!store_.read(offset, {buffer_.get(), wanted})) return nullptr;
  begin_ = offset;
  filled_ = wanted;
  return buffer_.get();
}

ScanEnd readEntry(ReadWindow& window, std::uint64_t position, RawEntry& entry) {
  const std::uint64_t size = window.size();
  if (position >= size) return ScanEnd::kShort;
  const std::uint64_t rest = size - position;
  if (rest < kRecordSize) return ScanEnd::kShort;
  const unsigned char* at = window.at(position, kRecordSize);
  if (!at) return ScanEnd::kUnreadable;
  entry.position = position;
  entry.record = decodeRecord(recordAt(at));
  if (isClosed(entry.record, position)) return ScanEnd::kClosedGate;
  const std::size_t nameLength = entry.record.nameLength;
  if (rest < kRecordSize + nameLength || entry.record.storedSize > rest - kRecordSize - nameLength)
    return ScanEnd::kNoEntry;
  at = window.at(position, kRecordSize + nameLength);
  if (!at) return ScanEnd::kUnreadable;
  entry.name.assign(reinterpret_cast<const char*>(at) + kRecordSize, nameLength);
  return ScanEnd::kFileEnd;
}

ScanEnd endAt(ReadWindow& window, std::uint64_t position) {
  RawEntry entry;
  return EntryReader(window).read(position, entry);
}

ContentTrailer trailerOf(ReadWindow& window, const RawEntry& entry) {
  if (!entry.record.has(kIsCompressed) || entry.record.storedSize < kTrailerSize) return {};
  const unsigned char* const at = window.at(entry.end() - kTrailerSize, kTrailerSize);
  return at ? decodeTrailer(at) : ContentTrailer{};
}

void ScanResult::takeRedo(std::vector<RawEntry> changes, std::uint64_t at) {
  std::vector<std::pair<std::uint64_t, std::size_t>> order;  // with the place: the last one counts
  order.reserve(changes.size());
  for (const RawEntry& change : changes) order.emplace_back(change.position, order.size());
  std::ranges::sort(order);
  std::vector<RawEntry> sorted;
  sorted.reserve(changes.size());
  for (const auto& next : order) sorted.push_back(std::move(changes[next.second]));
  redo = std::move(sorted);
  redoPosition = at;
}

const RawEntry* ScanResult::redone(std::uint64_t at) const noexcept {
  const auto behind = std::ranges::upper_bound(redo, at, {}, &RawEntry::position);
  return behind != redo.begin() && behind[-1].position == at ? &behind[-1] : nullptr;
}

ScanResult scanEntries(ByteStore& store, std::uint64_t size, const EntryVisitor& visit) {
  ReadWindow window(store, size);
  EntryReader reader(window);
  ScanResult result;
  RawEntry entry;
  std::uint64_t named = 0;
  while (result.position < size) {
    result.end = reader.read(result.position, entry);
    if (result.end != ScanEnd::kFileEnd) return result;
    const bool isMarked = entry.record.has(kEndsScan);
    result.lastEntry = entry.position;
    result.lastFlags = entry.record.flags;
    result.position = entry.end();
    if (result.position == size) {
      if (auto patches = redoOf(store, window, entry)) {
        result.takeRedo(std::move(*patches), entry.position);
        return result;
      }
    }
    entry.trailer = trailerOf(window, entry);
    if (!entry.name.empty()) entry.ordinal = ++named;
    if (!entry.name.empty() && !visit(entry)) result.end = ScanEnd::kStopped;
    if (isMarked && result.end == ScanEnd::kFileEnd) result.end = ScanEnd::kMark;
    if (result.end != ScanEnd::kFileEnd) return result;
  }
  return result;
}

bool mayEndInRedo(ByteStore& store, std::uint64_t size) {
  constexpr std::size_t kFixed = kRecordSize + kRedoName.size() + kRedoTail;
  std::array<unsigned char, kFixed> bytes;
  if (size < kHeaderSize + kFixed) return false;
  const auto tail = std::span(bytes).first<kRedoTail>();
  if (!store.read(size - kRedoTail, tail)) return true;
  const std::uint64_t patches = patchBytes(tail);
  if (patches > size - kHeaderSize - kFixed) return false;
  if (!store.read(size - kFixed - patches, bytes)) return true;
  const EntryRecord record = decodeRecord(recordAt(bytes.data()));
  const auto name = std::string_view(reinterpret_cast<const char*>(bytes.data()), kFixed)
                        .substr(kRecordSize, kRedoName.size());
  return isRedo(record, name) && record.storedSize == patches + kRedoTail;
}

}  // namespace zo
