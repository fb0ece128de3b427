#include "library/format.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "bytes/crc32.h"

namespace zo {
namespace {

constexpr std::array<unsigned char, 16> kMagic = {'Z', 'O', 'R', 'V', 'E', 'X', ' ', 'L',
                                                  'I', 'B', 'R', 'A', 'R', 'Y', 0,   0};
constexpr std::size_t kCounterAt = 20, kValueAt = 24;
constexpr std::size_t kStoredSizeAt = 8, kFlagsAt = 50;

static_assert(std::endian::native == std::endian::little);

template <class T>
T load(const unsigned char* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <class T>
void store(unsigned char* to, T value) {
  std::memcpy(to, &value, sizeof value);
}

template <class T>
void append(std::vector<unsigned char>& to, T value) {
  to.resize(to.size() + sizeof(T));
  store<T>(to.data() + to.size() - sizeof(T), value);
}

}  // namespace

LibraryHeader LibraryHeader::fresh() {
  LibraryHeader header;
  std::copy(kMagic.begin(), kMagic.end(), header.bytes_.begin());
  return header;
}

bool LibraryHeader::hasMagic() const {
  return std::equal(kMagic.begin(), kMagic.end(), bytes_.begin());
}

std::uint32_t LibraryHeader::counter() const {
  return load<std::uint32_t>(bytes_.data() + kCounterAt);
}
void LibraryHeader::setCounter(std::uint32_t counter) {
  store(bytes_.data() + kCounterAt, counter);
}
std::uint64_t LibraryHeader::value() const { return load<std::uint64_t>(bytes_.data() + kValueAt); }
void LibraryHeader::setValue(std::uint64_t value) { store(bytes_.data() + kValueAt, value); }

std::array<unsigned char, kHeaderSize> LibraryHeader::bytes() const {
  auto bytes = bytes_;
  bytes[18] = bytes[19] = 0;
  return bytes;
}

bool EntryRecord::protectsStored(std::uint32_t counter) const {
  return hasNumber(counter) && mode == 0 && size == storedSize && (crc != 0 || size == 0);
}

EntryRecord decodeRecord(std::span<const unsigned char, kRecordSize> bytes) {
  const unsigned char* const at = bytes.data();
  return {.number = load<std::uint32_t>(at),
          .crc = load<std::uint32_t>(at + 4),
          .storedSize = load<std::uint64_t>(at + kStoredSizeAt),
          .size = load<std::uint64_t>(at + 16),
          .created = load<std::uint64_t>(at + 24),
          .accessed = load<std::uint64_t>(at + 32),
          .written = load<std::uint64_t>(at + 40),
          .mode = load<std::uint16_t>(at + 48),
          .flags = load<std::uint16_t>(at + kFlagsAt),
          .nameLength = load<std::uint16_t>(at + 52)};
}

void encodeRecord(const EntryRecord& record, std::span<unsigned char, kRecordSize> to) {
  unsigned char* const at = to.data();
  store(at, record.number);
  store(at + 4, record.crc);
  store(at + kStoredSizeAt, record.storedSize);
  store(at + 16, record.size);
  store(at + 24, record.created);
  store(at + 32, record.accessed);
  store(at + 40, record.written);
  store(at + 48, record.mode);
  store(at + kFlagsAt, record.flags);
  store(at + 52, record.nameLength);
}

std::vector<unsigned char> RawEntry::bytes() const {
  std::vector<unsigned char> all(kRecordSize + name.size());
  encodeRecord(record, std::span(all).first<kRecordSize>());
  std::copy(name.begin(), name.end(), all.begin() + kRecordSize);
  return all;
}

// ---- Gates ----

Gate gateOf(std::uint64_t entryPosition) {
  const std::uint64_t flags = entryPosition + kFlagsAt;
  return inOneSector(flags, flags + 4) ? Gate{kFlagsAt, 4} : Gate{kStoredSizeAt, 8};
}

void closeGate(Gate gate, std::span<unsigned char> entry) {
  std::fill_n(entry.begin() + static_cast<std::ptrdiff_t>(gate.offset), gate.size,
              static_cast<unsigned char>(0xFF));
  if (gate.offset == kFlagsAt) store<std::uint16_t>(entry.data() + kFlagsAt + 2, 0);
}

std::array<unsigned char, kRecordSize> closedRecord(std::uint64_t entryPosition) {
  std::array<unsigned char, kRecordSize> bytes{};
  closeGate(gateOf(entryPosition), bytes);
  return bytes;
}

// The other fields are zero or an entry's own, so that hardly any other bytes look like it.
bool isClosed(const EntryRecord& record, std::uint64_t entryPosition) {
  constexpr std::uint64_t kNoFile = std::uint64_t{1} << 48;  // is as large
  if (gateOf(entryPosition).offset == kFlagsAt) {
    return record.flags == 0xFFFF && record.nameLength == 0 && record.storedSize < kNoFile;
  }
  return record.storedSize == 0xFFFFFFFFFFFFFFFF && record.flags != 0xFFFF;
}

// ---- The redo entry ----

bool isRedo(const EntryRecord& record, std::string_view name) {
  return record.flags == (kIsDeleted | kIsRedo) && name == kRedoName;
}

std::vector<unsigned char> encodeRedo(std::span<const RawEntry> patches) {
  std::vector<unsigned char> data;
  for (const RawEntry& patch : patches) {
    const std::vector<unsigned char> bytes = patch.bytes();
    append(data, patch.position);
    append(data, static_cast<std::uint32_t>(bytes.size()));
    data.insert(data.end(), bytes.begin(), bytes.end());
  }
  const std::uint32_t check = crc32(data);
  append(data, static_cast<std::uint32_t>(data.size()));
  append(data, check);
  return data;
}

std::optional<std::vector<RawEntry>> decodeRedo(std::span<const unsigned char> data) {
  if (data.size() < kRedoTail || data.size() > kLargestRedo) return std::nullopt;
  const auto tail = data.last<kRedoTail>();
  data = data.first(data.size() - kRedoTail);
  if (load<std::uint32_t>(tail.data()) != data.size()) return std::nullopt;
  if (load<std::uint32_t>(tail.data() + 4) != crc32(data)) return std::nullopt;
  std::vector<RawEntry> patches;
  while (!data.empty()) {
    if (data.size() < kPatchHead + kRecordSize) return std::nullopt;
    RawEntry patch{.position = load<std::uint64_t>(data.data()), .record = {}, .name = {}};
    const auto length = load<std::uint32_t>(data.data() + 8);
    data = data.subspan(kPatchHead);
    patch.record = decodeRecord(data.first<kRecordSize>());
    if (length != kRecordSize + patch.record.nameLength || length > data.size()) {
      return std::nullopt;
    }
    patch.name.assign(data.begin() + kRecordSize,
                      data.begin() + static_cast<std::ptrdiff_t>(length));
    data = data.subspan(length);
    patches.push_back(std::move(patch));
  }
  return patches;
}

bool mayReplace(const EntryRecord& old, const EntryRecord& by) {
  return old.storedSize == by.storedSize && old.nameLength == by.nameLength &&
         old.has(kEndsScan) == by.has(kEndsScan) && by.nameLength != 0;
}

}  // namespace zo
