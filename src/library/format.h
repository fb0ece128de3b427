// The bytes of library files: header, entries, gates. No file, no platform. Where a field stands,
// what a flag means and how large something may be is told here and nowhere else.
//
// Format:  docs/formats/library.md. All constants are part of it: do not change. The modes of
//          compression stand in zo/library/library.h, and the flags once more for users in
//          zo/library/library_entry.h.
// Errors:  nothing fails: any bytes are some header and some record.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

inline constexpr std::size_t kHeaderSize = 32;
inline constexpr std::size_t kRecordSize = 54;
inline constexpr std::size_t kLargestName = 0xFFFF;
inline constexpr std::size_t kSectorSize = 512;  // what a disk writes wholly or not at all
// The byte that a writer keeps locked, where no file has bytes.
inline constexpr std::uint64_t kWriterByteAt = std::uint64_t{1} << 62;

struct HeaderAt {
  static constexpr std::size_t magic = 0, unused = 18, counter = 20, value = 24;
};
struct RecordAt {
  static constexpr std::size_t number = 0, crc = 4, storedSize = 8, size = 16, created = 24,
                               accessed = 32, written = 40, mode = 48, flags = 50, nameLength = 52;
};

inline constexpr std::uint16_t kEndsScan = 0x0080;
inline constexpr std::uint16_t kIsCompressed = 0x0100;
inline constexpr std::uint16_t kIsDeleted = 0x0200;
inline constexpr std::uint16_t kIsRedo = 0x0400;
inline constexpr std::uint16_t kStoredMode = 0;

// What stands at the begin of a library. It is kept as it was read, but for the counter and the
// value; bytes that a short file does not have count as zero.
class LibraryHeader {
 public:
  LibraryHeader() = default;  // zero bytes
  [[nodiscard]] static LibraryHeader fresh();

  [[nodiscard]] bool hasMagic() const;
  [[nodiscard]] std::uint32_t counter() const;
  void setCounter(std::uint32_t counter);
  [[nodiscard]] std::uint64_t value() const;
  void setValue(std::uint64_t value);

  // For reading into.
  [[nodiscard]] std::span<unsigned char, kHeaderSize> room() { return bytes_; }
  // As they are written: the two bytes that mean nothing are zero.
  [[nodiscard]] std::array<unsigned char, kHeaderSize> bytes() const;

 private:
  std::array<unsigned char, kHeaderSize> bytes_{};
};

// What precedes a member's name. Times are counts of 100 ns since 1601.
struct EntryRecord {
  std::uint32_t number = 0, crc = 0;
  std::uint64_t storedSize = 0;
  std::uint64_t size = 0;
  std::uint64_t created = 0, accessed = 0, written = 0;
  std::uint16_t mode = 0, flags = 0, nameLength = 0;

  [[nodiscard]] bool has(std::uint16_t flag) const { return (flags & flag) != 0; }
  void set(std::uint16_t flag) { flags |= flag; }
  void clear(std::uint16_t flag) { flags &= static_cast<std::uint16_t>(~flag); }
  [[nodiscard]] bool isLive() const { return !has(kIsDeleted); }
  [[nodiscard]] bool hasNumber(std::uint32_t counter) const {
    return number != 0 && number <= counter;
  }
  // Whether size and check value of a stored member are those that this library wrote.
  [[nodiscard]] bool protectsStored(std::uint32_t counter) const;
  // Whether a stored member's sizes, which this library writes alike, tell of a damage.
  [[nodiscard]] bool contradictsItself(std::uint32_t counter) const {
    return !has(kIsCompressed) && hasNumber(counter) && size != storedSize;
  }
  bool operator==(const EntryRecord&) const = default;
};

[[nodiscard]] EntryRecord decodeRecord(std::span<const unsigned char, kRecordSize> bytes);
void encodeRecord(const EntryRecord& record, std::span<unsigned char, kRecordSize> to);

// What alone tells where an entry ends, of a record that is not yet decoded.
struct EntrySizes {
  std::uint64_t storedSize;
  std::uint16_t nameLength;
};
[[nodiscard]] inline EntrySizes entrySizes(const unsigned char* record) {
  EntrySizes sizes;
  std::memcpy(&sizes.storedSize, record + RecordAt::storedSize, sizeof sizes.storedSize);
  std::memcpy(&sizes.nameLength, record + RecordAt::nameLength, sizeof sizes.nameLength);
  return sizes;
}

// The one byte of a record that a mark changes.
inline constexpr std::size_t kMarkAt = RecordAt::flags;
static_assert(kEndsScan <= 0xFF);
[[nodiscard]] constexpr unsigned char markByte(std::uint16_t flags) {
  return static_cast<unsigned char>(flags & 0xFF);
}
[[nodiscard]] constexpr unsigned char clearedMarkByte(std::uint16_t flags) {
  return static_cast<unsigned char>(markByte(flags) & ~kEndsScan);
}

// Whether the search behind a damage takes it for a name.
[[nodiscard]] inline bool isPlausibleName(std::span<const unsigned char> name) {
  return std::ranges::none_of(name, [](unsigned char c) { return c < 0x20; });
}

// What a compressed member's data says of its content: the end of a container.
struct ContentTrailer {
  std::uint32_t size = 0, crc = 0;
};
struct TrailerAt {
  static constexpr std::size_t size = 0, crc = 4;
};
[[nodiscard]] ContentTrailer decodeTrailer(const unsigned char* bytes);

// An entry as it stands in the file, without its data.
struct RawEntry {
  std::uint64_t position = 0;
  EntryRecord record = {};
  std::string name;             // record.nameLength bytes of the ANSI code page
  ContentTrailer trailer = {};  // zeros for data that is not compressed
  std::uint64_t ordinal = 0;    // among the entries with a name, from 1; 0 where that is not known

  [[nodiscard]] std::uint64_t dataPosition() const { return position + kRecordSize + name.size(); }
  [[nodiscard]] std::uint64_t end() const { return dataPosition() + record.storedSize; }
  [[nodiscard]] std::uint64_t contentSize() const {
    return record.has(kIsCompressed) ? trailer.size : record.storedSize;
  }
  [[nodiscard]] std::vector<unsigned char> bytes() const;
  // Whether the end of a container's data, and with it that of the entry, is where the record says:
  // size and check value stand in both.
  [[nodiscard]] bool meetsTrailer() const {
    return record.has(kIsCompressed) && trailer.size != 0 && trailer.size == record.size &&
           trailer.crc == record.crc;
  }
};

// ---- Gates: what makes a new entry visible, by one write within one sector ----

inline constexpr std::uint16_t kClosedFlags = 0xFFFF;
inline constexpr std::uint64_t kClosedSize = 0xFFFFFFFFFFFFFFFF;
inline constexpr std::uint64_t kNoFile = std::uint64_t{1} << 48;  // is as large

// Bytes that end a scan while they are closed; opening gives them the entry's own values.
struct Gate {
  std::size_t offset;  // in the record
  std::size_t size;
};
// Flags and name length; or the stored size, where the end of a sector divides these.
[[nodiscard]] Gate gateOf(std::uint64_t entryPosition);
void closeGate(Gate gate, std::span<unsigned char> entry);
// What is written first of a new entry: nothing but its closed gate. So whatever part of it reaches
// the disk is a closed gate, or zeros.
[[nodiscard]] std::array<unsigned char, kRecordSize> closedRecord(std::uint64_t entryPosition);
// Whether a record at that position is one that waits for its gate.
[[nodiscard]] bool isClosed(const EntryRecord& record, std::uint64_t entryPosition);

[[nodiscard]] inline bool inOneSector(std::uint64_t begin, std::uint64_t end) {
  return begin < end && begin / kSectorSize == (end - 1) / kSectorSize;
}

// ---- The redo entry: changes that are committed and perhaps not yet made ----

inline constexpr std::string_view kRedoName = "<zo-redo>";
struct PatchAt {
  static constexpr std::size_t position = 0, length = 8, record = 12;
};
struct RedoTailAt {  // behind the patches
  static constexpr std::size_t size = 0, check = 4;
};
inline constexpr std::size_t kPatchHead = PatchAt::record;
inline constexpr std::size_t kRedoTail = 8;
inline constexpr std::size_t kLargestRedo = 1 << 24;  // of its data

[[nodiscard]] bool isRedo(const EntryRecord& record, std::string_view name);
// How many bytes of patches a tail tells of.
[[nodiscard]] std::uint32_t patchBytes(std::span<const unsigned char, kRedoTail> tail);
// The data of a redo entry: new records and names in the place of old ones.
[[nodiscard]] std::vector<unsigned char> encodeRedo(std::span<const RawEntry> patches);
// Nothing when the bytes are no such data.
[[nodiscard]] std::optional<std::vector<RawEntry>> decodeRedo(std::span<const unsigned char> data);

// Whether a record may take the place of another by a redo: a scan goes the same way over both, and
// over any mixture of them.
[[nodiscard]] bool mayReplace(const EntryRecord& old, const EntryRecord& by);

}  // namespace zo
