// What a killed writer left, and a file that is to become a library: brought to a state from which
// a change can begin.
#include <algorithm>

#include "library/change.h"
#include "library/tail.h"

namespace zo {

int Change::settle(LibraryState& library, Settling when) {
  if (const int code = library.refresh()) return code;
  if (library.scan_.redoPosition) {
    if (const int code = finishRedo(library)) return code;
  }
  if (library.scan_.position == library.file_.size()) return ZoResult::ok;
  // Who opens it has not yet asked for a change: what may be a damage stays for salvage.
  const bool mayCut = when == Settling::kBeforeChange || isBeingAdded(library);
  if (mayCut && isOwnTail(library)) return cutTail(library);
  if (when == Settling::kBeforeChange) {
    SetLastError(ERROR_FILE_CORRUPT);
    reportFailure(L"write");
  }
  return ZoResult::refused;
}

// For what has worked already: the next call has memory for the rest, or says what is wrong.
void Change::settleQuietly(LibraryState& library, Settling when) noexcept {
  try {
    static_cast<void>(settle(library, when));
  } catch (const std::bad_alloc&) {
    library.isIndexed_ = false;
  }
}

void Change::settleOpened(LibraryState& library) noexcept {
  settleQuietly(library, Settling::kOpened);
}

int Change::finishRedo(LibraryState& library) {
  ScanResult& scan = library.scan_;
  for (const RawEntry& entry : scan.redo) {
    if (!library.file_.write(entry.position, entry.bytes())) return ZoResult::refused;
  }
  if (!library.file_.flush()) return ZoResult::refused;
  const auto entries = library.index_.entries();
  scan.position = scan.redoPosition;
  scan.lastEntry = entries.empty() ? 0 : entries.back().position;
  scan.end = ScanEnd::kFileEnd;
  scan.redo.clear();
  scan.redoPosition = 0;
  return cutTail(library);
}

int Change::cutTail(LibraryState& library) {
  DiskFile& file = library.file_;
  library.isIndexed_ = false;
  if (!file.cut(library.scan_.position) || !file.flush()) return ZoResult::refused;
  if (library.scan_.end != ScanEnd::kMark) library.scan_.end = ScanEnd::kFileEnd;
  file.touch();
  library.isIndexed_ = file.look(library.indexed_);
  return ZoResult::ok;
}

int Change::makeNew(LibraryState& library, bool empties) {
  DiskFile& file = library.file_;
  DiskFile::Signature seen;
  if (!file.look(seen)) return ZoResult::refused;
  if (empties && seen.size != 0 && !file.cut(0)) return ZoResult::refused;
  if (file.size() > kHeaderSize) return ZoResult::ok;
  const auto size = static_cast<std::size_t>(file.size());
  std::array<unsigned char, kHeaderSize> bytes{};
  if (!file.read(0, std::span(bytes).first(size))) return ZoResult::refused;
  const auto fresh = LibraryHeader::fresh().bytes();
  const bool isBegun =
      size < kHeaderSize && std::equal(bytes.begin(), bytes.begin() + size, fresh.begin());
  const bool isZero = std::all_of(bytes.begin(), bytes.end(), [](auto c) { return c == 0; });
  if (!isBegun && !isZero) return ZoResult::ok;
  return file.write(0, fresh) && file.flush() ? ZoResult::ok : ZoResult::refused;
}

}  // namespace zo
