#include "files/library/scan.h"

#include <algorithm>
#include <array>

#include "persist/little_endian.h"

namespace zo {
namespace {

constexpr std::size_t kFirstRead = 4096;
constexpr int kMostFailures = 1000;  // in a row: then the device is gone
constexpr std::uint64_t kNear = std::uint64_t{64} << 10;

std::span<const unsigned char, kRecordSize> recordAt(const unsigned char* at) {
  return std::span<const unsigned char, kRecordSize>(at, kRecordSize);
}

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
  if (!store_.read(offset, {buffer_.get(), wanted})) {
    hasFailed_ = true;
    return nullptr;
  }
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
  if (isClosed(entry.record)) return ScanEnd::kClosedGate;
  const std::size_t nameLength = entry.record.nameLength;
  if (nameLength == 0) return entry.record == EntryRecord{} ? ScanEnd::kZero : ScanEnd::kNoEntry;
  if (rest < kRecordSize + nameLength || entry.record.storedSize > rest - kRecordSize - nameLength)
    return ScanEnd::kNoEntry;
  at = window.at(position, kRecordSize + nameLength);
  if (!at) return ScanEnd::kUnreadable;
  entry.name.assign(at + kRecordSize, at + kRecordSize + nameLength);
  return ScanEnd::kFileEnd;
}

ContentTrailer trailerOf(ReadWindow& window, const RawEntry& entry) {
  if (!entry.record.has(kIsCompressed) || entry.record.storedSize < kTrailerSize) return {};
  const unsigned char* const at = window.at(entry.end() - kTrailerSize, kTrailerSize);
  return at ? ContentTrailer{.size = load32(at), .crc = load32(at + 4)} : ContentTrailer{};
}

ScanResult scanEntries(ByteStore& store, std::uint64_t size, const EntryVisitor& visit) {
  ReadWindow window(store, size);
  ScanResult result;
  RawEntry entry;
  while (result.position < size) {
    result.end = readEntry(window, result.position, entry);
    if (result.end != ScanEnd::kFileEnd) return result;
    const bool isMarked = entry.record.has(kEndsScan);
    result.lastEntry = entry.position;
    result.position = entry.end();
    if (result.position == size) {
      if (auto patches = redoOf(store, window, entry)) {
        result.redo = std::move(*patches);
        result.redoPosition = entry.position;
        return result;
      }
    }
    entry.trailer = trailerOf(window, entry);
    if (!visit(entry)) result.end = ScanEnd::kStopped;
    if (isMarked && result.end == ScanEnd::kFileEnd) result.end = ScanEnd::kMark;
    if (result.end != ScanEnd::kFileEnd) return result;
  }
  return result;
}

bool mayEndInRedo(ByteStore& store, std::uint64_t size) {
  constexpr std::size_t kFixed = kRecordSize + kRedoName.size() + kRedoTail;
  std::array<unsigned char, kFixed> bytes;
  if (size < kHeaderSize + kFixed) return false;
  const std::span<unsigned char> tail = std::span(bytes).first(kRedoTail);
  if (!store.read(size - kRedoTail, tail)) return true;
  const std::uint64_t patches = load32(tail.data());
  if (patches > size - kHeaderSize - kFixed) return false;
  if (!store.read(size - kFixed - patches, bytes)) return true;
  const EntryRecord record = decodeRecord(recordAt(bytes.data()));
  const auto name = std::string_view(reinterpret_cast<const char*>(bytes.data()), kFixed)
                        .substr(kRecordSize, kRedoName.size());
  return isRedo(record, name) && record.storedSize == patches + kRedoTail;
}

// ---- Entries behind a damage ----

namespace {

// 1970 to 2200, or none.
bool isPlausibleTime(std::uint64_t time) {
  return time == 0 || (time >= 0x019DB1DED53E8000 && time < 0x028F000000000000);
}

bool isPlausibleName(const unsigned char* name, std::size_t length) {
  return std::none_of(name, name + length, [](unsigned char c) { return c < 0x20; });
}

bool isPlausible(const EntryRecord& record, std::uint32_t counter) {
  constexpr std::uint16_t kKnown = kEndsScan | kIsCompressed | kIsDeleted | kIsRedo;
  if ((record.flags & ~kKnown) != 0 || record.nameLength == 0) return false;
  if (record.number == 0 || record.number > counter) return false;
  const bool isCompressed = record.has(kIsCompressed);
  const bool modeFits = isCompressed
                            ? record.mode == 1024 || record.mode == 2048 || record.mode == 4096
                            : record.mode == 0 && record.size == record.storedSize;
  return modeFits && isPlausibleTime(record.created) && isPlausibleTime(record.accessed) &&
         isPlausibleTime(record.written);
}

}  // namespace

std::uint64_t findEntry(ReadWindow& window, std::uint64_t from, std::uint32_t counter) {
  // A library whose counter was lost with its header: any number will do.
  if (counter == 0) counter = 0xFFFFFFFF;
  const std::uint64_t size = window.size();
  std::size_t most = ReadWindow::kSize;
  int failures = 0;
  while (from < size && size - from >= kRecordSize) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size - from, most));
    const unsigned char* const bytes = window.at(from, count);
    if (!bytes) {
      if (++failures == kMostFailures) return size;
      if (most == kFirstRead) from += kSectorSize;
      most = kFirstRead;
      continue;
    }
    failures = 0;
    most = std::min(2 * most, ReadWindow::kSize);
    std::size_t i = 0;
    for (; count - i >= kRecordSize; ++i) {
      // Flags and mode decide most of it: see isPlausible.
      const unsigned char* const at = bytes + i;
      if ((at[50] & 0x7F) != 0 || (at[51] & 0xF8) != 0 || at[48] != 0 || (at[49] & 0xE3) != 0) {
        continue;
      }
      const EntryRecord record = decodeRecord(recordAt(at));
      const std::uint64_t rest = size - from - i;
      if (!isPlausible(record, counter) || rest < kRecordSize + record.nameLength ||
          record.storedSize > rest - kRecordSize - record.nameLength) {
        continue;
      }
      if (count - i < kRecordSize + record.nameLength) break;  // the name is not in the window
      if (isPlausibleName(at + kRecordSize, record.nameLength)) return from + i;
    }
    from += std::max<std::size_t>(i, 1);
  }
  return size;
}

}  // namespace zo
