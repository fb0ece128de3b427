// Members by name: through the index; the first one after the file changed, without making it.
#include <algorithm>

#include "library/library_core.h"
#include "library/time_value.h"
#include "names/name_compare.h"
#include "platform/ansi.h"

namespace zo {
namespace {

bool isAscii(wchar_t unit) { return unit < 0x7F; }
wchar_t lowerAscii(wchar_t unit) { return unit >= 'A' && unit <= 'Z' ? unit + 32 : unit; }

// Whether an entry's name is the wanted one, which is in ASCII: nearly always told by comparing
// bytes. Every ANSI code page has the ASCII characters in their places.
bool isNamed(std::string_view bytes, std::wstring_view wanted) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const wchar_t unit = static_cast<unsigned char>(bytes[i]);
    if (!isAscii(unit)) return equalNames(fromMultiByte(bytes), wanted);
    if (i == wanted.size() || lowerAscii(unit) != lowerAscii(wanted[i])) return false;
  }
  return bytes.size() == wanted.size();
}

ZoLibEntry describe(std::uint64_t position, const EntryRecord& record,
                    const ContentTrailer& trailer, std::uint32_t counter) {
  const bool isCompressed = record.has(kIsCompressed);
  ZoLibEntry result;
  result.position = position;
  result.storedSize = record.storedSize;
  result.isProtected =
      isCompressed || record.protectsStored(counter) || record.contradictsItself(counter);
  result.size = isCompressed ? trailer.size : record.storedSize;
  result.created = fileTime(record.created);
  result.accessed = fileTime(record.accessed);
  result.written = fileTime(record.written);
  result.number = record.number;
  result.crc = isCompressed ? trailer.crc : (result.isProtected ? record.crc : 0);
  result.mode = record.mode;
  result.flags = record.flags;
  return result;
}

}  // namespace

int LibraryCore::notFound(ScanEnd end) {
  return end == ScanEnd::kMark ? ZoResult::memberNotFound : ZoResult::refused;
}

bool LibraryCore::load(const IndexEntry& from, RawEntry& entry) {
  std::vector<unsigned char> bytes(kRecordSize + from.record.nameLength);
  if (!file.read(from.position, bytes)) return false;
  entry.position = from.position;
  entry.record = decodeRecord(std::span(bytes).first<kRecordSize>());
  entry.name.assign(bytes.begin() + kRecordSize, bytes.end());
  entry.trailer = from.trailer;
  return true;
}

// Who opens a library to read one member does not wait for an index of all. Null where only the
// index can tell: for a second name, one that is not in ASCII, and where a redo may have a say.
const LibraryCore::FirstFind* LibraryCore::findFirst(const ZoFileName& member) {
  LibraryFile::Signature now;
  if (batch || !file.look(now) || (isIndexed && indexed == now)) return nullptr;
  const std::wstring_view wanted = member.view();
  if (firstFind_ && firstFind_->signature == now) {
    return equalNames(firstFind_->name, wanted) ? &*firstFind_ : nullptr;
  }
  firstFind_.reset();
  if (!std::all_of(wanted.begin(), wanted.end(), isAscii)) return nullptr;
  if (readHeader() || mayEndInRedo(file, now.size)) return nullptr;
  FirstFind found{.name = std::wstring(wanted), .signature = now};
  const ScanResult scanned = scanEntries(file, now.size, [&](const RawEntry& entry) {
    if (!entry.record.isLive() || !isNamed(entry.name, wanted)) return true;
    found.entry = entry;
    return false;
  });
  if (scanned.end == ScanEnd::kUnreadable || !file.look(now) || !(now == found.signature)) {
    return nullptr;
  }
  if (scanned.end != ScanEnd::kStopped) found.code = notFound(scanned.end);
  return &firstFind_.emplace(std::move(found));
}

int LibraryCore::find(const ZoFileName& member, RawEntry& entry) {
  if (const FirstFind* const found = findFirst(member)) {
    entry = found->entry;
    return found->code;
  }
  for (int attempt = 1;; ++attempt) {
    if (const int code = refresh()) return code;
    const IndexEntry* const found = index.findLive(member.view());
    if (!found) return notFound();
    const bool isRead = load(*found, entry);
    const bool isSame = isRead && entry.record == found->record;
    // A redo that is not finished has the last word.
    if (scan.redoPosition) entry.record = found->record;
    if (isSame || (isRead && scan.redoPosition)) return ZoResult::ok;
    if (attempt == kAttempts) return ZoResult::refused;
    isIndexed = false;
  }
}

int LibraryCore::findAt(std::uint64_t position, RawEntry& entry) {
  LibraryFile::Signature now;
  if (firstFind_ && !firstFind_->code && firstFind_->entry.position == position && file.look(now) &&
      firstFind_->signature == now) {
    entry = firstFind_->entry;
    return ZoResult::ok;
  }
  if (const int code = refresh()) return code;
  const IndexEntry* const found = index.at(position);
  return found && load(*found, entry) ? ZoResult::ok : ZoResult::refused;
}

bool LibraryCore::encodeName(const ZoFileName& name, std::string& bytes) {
  const std::wstring_view text = name.view();
  bytes = toMultiByte(text);
  return !bytes.empty() && bytes.size() <= kLargestName && fromMultiByte(bytes) == text;
}

ZoLibEntry LibraryCore::publicEntry(const IndexEntry& entry) const {
  ZoLibEntry result = describe(entry.position, entry.record, entry.trailer, header.counter());
  result.name = index.name(entry);
  return result;
}

ZoLibEntry LibraryCore::publicEntry(const RawEntry& entry) const {
  ZoLibEntry result = describe(entry.position, entry.record, entry.trailer, header.counter());
  result.name = std::wstring_view(fromMultiByte(entry.name));
  return result;
}

}  // namespace zo
