// Members by name: through the index; the first one after the file changed, without making it.
#include <algorithm>

#include "library/operations.h"
#include "library/read_member.h"
#include "names/name_compare.h"
#include "platform/time_value.h"
#include "text/code_units.h"

namespace zo {
namespace {

// What users see of the flags is what the file has.
static_assert(ZoLibEntry::kScanEnds == kEndsScan && ZoLibEntry::kCompressed == kIsCompressed &&
              ZoLibEntry::kDeleted == kIsDeleted && ZoLibrary::kStore == kStoredMode);

bool isAscii(wchar_t unit) { return unit < 0x7F; }

ZoLibEntry describe(const LibraryState& library, std::uint64_t position, const EntryRecord& record,
                    const ContentTrailer& trailer) {
  const bool isCompressed = record.has(kIsCompressed);
  ZoLibEntry result;
  result.position = position;
  result.storedSize = record.storedSize;
  result.isProtected =
      isProtected(library, record) || record.contradictsItself(library.header().counter());
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

// Who opens a library to read one member does not wait for an index of all. Null where only the
// index can tell: for a second name, one that is not in ASCII, and where a redo may have a say.
const FirstFind* findFirst(LibraryState& library, const ZoFileName& member) {
  DiskFile::Signature now;
  if (library.batch || !library.look(now) || library.isIndexOf(now)) return nullptr;
  const std::wstring_view wanted = member.view();
  std::optional<FirstFind>& kept = library.firstFind;
  if (kept && kept->signature == now) return equalNames(kept->name, wanted) ? &*kept : nullptr;
  kept.reset();
  if (!std::all_of(wanted.begin(), wanted.end(), isAscii)) return nullptr;
  if (library.readHeader() || mayEndInRedo(library.bytes(), now.size)) return nullptr;
  FirstFind found{.name = std::wstring(wanted), .signature = now};
  const auto isOther = [&](const RawEntry& entry) {
    if (!entry.record.isLive() || !isNamed(entry.name, wanted)) return true;
    found.entry = entry;
    return false;
  };
  const ScanEnd end = scanEntries(library.bytes(), now.size, isOther).end;
  if (end == ScanEnd::kUnreadable || !library.look(now) || !(now == found.signature)) {
    return nullptr;
  }
  if (end != ScanEnd::kStopped) found.code = notFound(end);
  return &kept.emplace(std::move(found));
}

// Into the place of another one, whose name then gives its memory.
void describe(const LibraryState& library, const IndexEntry& entry, bool isHidden,
              ZoLibEntry& result) {
  ZoFileName name = std::move(result.name);
  setMemberName(name, library.index().bytes(entry));
  result = describe(library, entry.position, entry.record, entry.trailer);
  result.ordinal = library.index().ordinal(entry);
  result.name = std::move(name);
  result.isHidden = isHidden;
}

}  // namespace

// The names of nearly all need no memory to be compared.
bool isListed(const EntryRecord& record, std::string_view name, const ZoLibEntry& wanted) {
  return record.number == wanted.number && record.storedSize == wanted.storedSize &&
         (isNamed(name, wanted.name.view()) ||
          equalNames(memberName(name).view(), wanted.name.view()));
}

int notFound(ScanEnd end) {
  return end == ScanEnd::kMark ? ZoResult::memberNotFound : ZoResult::refused;
}

int findMember(LibraryState& library, const ZoFileName& member, RawEntry& entry) {
  if (const FirstFind* const found = findFirst(library, member)) {
    entry = found->entry;
    return found->code;
  }
  for (int attempt = 1;; ++attempt) {
    if (const int code = library.refresh()) return code;
    const IndexEntry* const found = library.index().findLive(member.view());
    if (!found) return notFound(library.scan().end);
    if (library.load(*found, entry) && entry.record == found->record) return ZoResult::ok;
    if (attempt == LibraryState::kAttempts) return ZoResult::refused;
    library.forgetIndex();
  }
}

int findMember(LibraryState& library, const MemberRef& member, RawEntry& entry) {
  if (member.name) return findMember(library, *member.name, entry);
  if (const int code = findEntryAt(library, member.entry->position, entry)) return code;
  return isListed(entry.record, entry.name, *member.entry) ? ZoResult::ok : ZoResult::refused;
}

int findListed(LibraryState& library, const ZoLibEntry& wanted, const IndexEntry*& found) {
  found = library.index().at(wanted.position);
  RawEntry entry;
  const bool isThere =
      found && library.load(*found, entry) && isListed(entry.record, entry.name, wanted);
  return isThere ? ZoResult::ok : ZoResult::refused;
}

int findEntryAt(LibraryState& library, std::uint64_t position, RawEntry& entry) {
  DiskFile::Signature now;
  const std::optional<FirstFind>& kept = library.firstFind;
  if (kept && !kept->code && kept->entry.position == position && library.look(now) &&
      kept->signature == now) {
    entry = kept->entry;
    return ZoResult::ok;
  }
  if (const int code = library.refresh()) return code;
  const IndexEntry* const found = library.index().at(position);
  return found && library.load(*found, entry) ? ZoResult::ok : ZoResult::refused;
}

ZoLibEntry describe(const LibraryState& library, const IndexEntry& entry, bool isHidden) {
  ZoLibEntry result;
  describe(library, entry, isHidden, result);
  return result;
}

ZoLibEntry describe(const LibraryState& library, const RawEntry& entry) {
  ZoLibEntry result = describe(library, entry.position, entry.record, entry.trailer);
  result.ordinal = entry.ordinal;
  result.name = memberName(entry.name);
  return result;
}

int visitVersions(LibraryState& library, const ZoFileName& member,
                  const std::function<bool(const ZoLibEntry&)>& visit) {
  if (const int code = library.refresh()) return code;
  for (const IndexEntry* const entry : library.index().all(member.view())) {
    if (!visit(describe(library, *entry, library.index().isHidden(*entry)))) break;
  }
  return ZoResult::ok;
}

int visitEntries(LibraryState& library, const std::function<bool(const ZoLibEntry&)>& visit,
                 bool withDeleted, std::uint64_t first) {
  if (const int code = library.refresh()) return code;
  const std::vector<bool>& hidden = library.hidden();
  const auto entries = library.index().entries();
  ZoLibEntry entry;
  for (std::uint64_t i = first - 1; i < entries.size(); ++i) {
    const auto place = static_cast<std::size_t>(i);
    if (!withDeleted && !entries[place].record.isLive()) continue;
    describe(library, entries[place], hidden[place], entry);
    if (!visit(entry)) break;
  }
  return ZoResult::ok;
}

}  // namespace zo
