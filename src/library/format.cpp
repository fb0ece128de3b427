#include "library/format.h"

#include <bit>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"

namespace zo {
namespace {

constexpr std::array<unsigned char, 16> kMagic = {'Z', 'O', 'R', 'V', 'E', 'X', ' ', 'L',
                                                  'I', 'B', 'R', 'A', 'R', 'Y', 0,   0};

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
  std::copy(kMagic.begin(), kMagic.end(), header.bytes_.begin() + HeaderAt::magic);
  return header;
}

bool LibraryHeader::hasMagic() const {
  return std::equal(kMagic.begin(), kMagic.end(), bytes_.begin() + HeaderAt::magic);
}

std::uint32_t LibraryHeader::counter() const {
  return load<std::uint32_t>(bytes_.data() + HeaderAt::counter);
}
void LibraryHeader::setCounter(std::uint32_t counter) {
  store(bytes_.data() + HeaderAt::counter, counter);
}
std::uint64_t LibraryHeader::value() const {
  return load<std::uint64_t>(bytes_.data() + HeaderAt::value);
}
void LibraryHeader::setValue(std::uint64_t value) { store(bytes_.data() + HeaderAt::value, value); }

std::array<unsigned char, kHeaderSize> LibraryHeader::bytes() const {
  auto bytes = bytes_;
  store<std::uint16_t>(bytes.data() + HeaderAt::unused, 0);
  return bytes;
}

bool EntryRecord::protectsStored(std::uint32_t counter) const {
  return hasNumber(counter) && mode == kStoredMode && size == storedSize && (crc != 0 || size == 0);
}

EntryRecord decodeRecord(std::span<const unsigned char, kRecordSize> bytes) {
  const unsigned char* const at = bytes.data();
  return {.number = load<std::uint32_t>(at + RecordAt::number),
          .crc = load<std::uint32_t>(at + RecordAt::crc),
          .storedSize = load<std::uint64_t>(at + RecordAt::storedSize),
          .size = load<std::uint64_t>(at + RecordAt::size),
          .created = load<std::uint64_t>(at + RecordAt::created),
          .accessed = load<std::uint64_t>(at + RecordAt::accessed),
          .written = load<std::uint64_t>(at + RecordAt::written),
          .mode = load<std::uint16_t>(at + RecordAt::mode),
          .flags = load<std::uint16_t>(at + RecordAt::flags),
          .nameLength = load<std::uint16_t>(at + RecordAt::nameLength)};
}

void encodeRecord(const EntryRecord& record, std::span<unsigned char, kRecordSize> to) {
  unsigned char* const at = to.data();
  store(at + RecordAt::number, record.number);
  store(at + RecordAt::crc, record.crc);
  store(at + RecordAt::storedSize, record.storedSize);
  store(at + RecordAt::size, record.size);
  store(at + RecordAt::created, record.created);
  store(at + RecordAt::accessed, record.accessed);
  store(at + RecordAt::written, record.written);
  store(at + RecordAt::mode, record.mode);
  store(at + RecordAt::flags, record.flags);
  store(at + RecordAt::nameLength, record.nameLength);
}

ContentTrailer decodeTrailer(const unsigned char* bytes) {
  return {.size = load32(bytes + TrailerAt::size), .crc = load32(bytes + TrailerAt::crc)};
}

std::vector<unsigned char> RawEntry::bytes() const {
  std::vector<unsigned char> all(kRecordSize + name.size());
  encodeRecord(record, std::span(all).first<kRecordSize>());
  std::copy(name.begin(), name.end(), all.begin() + kRecordSize);
  return all;
}

// ---- Gates ----

Gate gateOf(std::uint64_t entryPosition) {
  constexpr Gate kNarrow{RecordAt::flags, 4}, kWide{RecordAt::storedSize, 8};
  const std::uint64_t begin = entryPosition + kNarrow.offset;
  return inOneSector(begin, begin + kNarrow.size) ? kNarrow : kWide;
}

void closeGate(Gate gate, std::span<unsigned char> entry) {
  std::fill_n(entry.begin() + static_cast<std::ptrdiff_t>(gate.offset), gate.size,
              static_cast<unsigned char>(0xFF));
  if (gate.offset != RecordAt::flags) return;
  store<std::uint16_t>(entry.data() + RecordAt::nameLength, 0);
}

std::array<unsigned char, kRecordSize> closedRecord(std::uint64_t entryPosition) {
  std::array<unsigned char, kRecordSize> bytes{};
  closeGate(gateOf(entryPosition), bytes);
  return bytes;
}

// The other fields are zero or an entry's own, so that hardly any other bytes look like it.
bool isClosed(const EntryRecord& record, std::uint64_t entryPosition) {
  if (gateOf(entryPosition).offset == RecordAt::flags) {
    return record.flags == kClosedFlags && record.nameLength == 0 && record.storedSize < kNoFile;
  }
  return record.storedSize == kClosedSize && record.flags != kClosedFlags;
}

// ---- The redo entry ----

bool isRedo(const EntryRecord& record, std::string_view name) {
  return record.flags == (kIsDeleted | kIsRedo) && name == kRedoName;
}

std::uint32_t patchBytes(std::span<const unsigned char, kRedoTail> tail) {
  return load32(tail.data() + RedoTailAt::size);
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
  if (patchBytes(tail) != data.size()) return std::nullopt;
  if (load32(tail.data() + RedoTailAt::check) != crc32(data)) return std::nullopt;
  std::vector<RawEntry> patches;
  while (!data.empty()) {
    if (data.size() < kPatchHead + kRecordSize) return std::nullopt;
    RawEntry patch;
    patch.position = load<std::uint64_t>(data.data() + PatchAt::position);
    const auto length = load32(data.data() + PatchAt::length);
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
