// Going over the entries of a library, from the first to where they end.
//
// Format:  docs/formats/library.md. Nothing that the file says is trusted: sizes are compared with
//          the file's own, and no more memory is used than a window and the longest name.
// Errors:  a read that fails ends the scan, as ScanEnd::kUnreadable.
// Cost:    data that is large is skipped; what is small is read along, many entries at once.
#pragma once

#include <functional>
#include <memory>

#include "library/format.h"
#include "persist/container.h"

namespace zo {

// Reads ahead as far as it pays.
class ReadWindow {
 public:
  static constexpr std::size_t kSize = std::size_t{256} << 10;

  // `size` bytes of the store at most.
  ReadWindow(ByteStore& store, std::uint64_t size);

  [[nodiscard]] std::uint64_t size() const { return size_; }
  // The bytes there, valid until the next call; null when they cannot be read. At most kSize.
  [[nodiscard]] const unsigned char* at(std::uint64_t offset, std::size_t count);

 private:
  ByteStore& store_;
  std::uint64_t size_;
  std::unique_ptr<unsigned char[]> buffer_;
  std::uint64_t begin_ = 0;
  std::size_t filled_ = 0;
  std::size_t ahead_;
};

enum class ScanEnd {
  kFileEnd,     // right behind an entry, or the header
  kMark,        // an entry ended the scan
  kShort,       // fewer bytes than a record
  kClosedGate,  // an entry that was not committed
  kZero,        // nothing but zeros up to the end
  kNoEntry,     // name or data would pass the end of the file
  kUnreadable,
  kStopped,  // the visitor had enough
};

struct ScanResult {
  ScanEnd end = ScanEnd::kFileEnd;
  std::uint64_t position = kHeaderSize;  // behind the last entry
  std::uint64_t lastEntry = 0;           // its position, be it without a name; 0 for none
  std::uint16_t lastFlags = 0;           // of that one
  // Of the last entry, when that is a committed redo: what it changes, in the file's order, and its
  // position.
  std::vector<RawEntry> redo;
  std::uint64_t redoPosition = 0;

  void takeRedo(std::vector<RawEntry> changes, std::uint64_t at);
  // What it makes of the entry at the position; null for nothing.
  [[nodiscard]] const RawEntry* redone(std::uint64_t at) const noexcept;
};

// The entry at the position, if one stands there; what is there instead otherwise. One without a
// name is an entry.
[[nodiscard]] ScanEnd readEntry(ReadWindow& window, std::uint64_t position, RawEntry& entry);

// What a scan meets that comes to the position: kFileEnd for an entry.
[[nodiscard]] ScanEnd endAt(ReadWindow& window, std::uint64_t position);

// Of an entry with compressed data; zeros for any other.
[[nodiscard]] ContentTrailer trailerOf(ReadWindow& window, const RawEntry& entry);

// Visits all entries but those without a name and a committed redo at the end, until the visitor
// returns false; patches are not yet applied.
using EntryVisitor = std::function<bool(const RawEntry&)>;
[[nodiscard]] ScanResult scanEntries(ByteStore& store, std::uint64_t size,
                                     const EntryVisitor& visit);

// Whether the file may end in a redo, told by its end alone. Only a scan can tell whether it does.
[[nodiscard]] bool mayEndInRedo(ByteStore& store, std::uint64_t size);

}  // namespace zo
