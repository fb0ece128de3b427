// Changes of what is there: names, marks of deletion, times, the library's value.
#include <algorithm>

#include "library/copy.h"
#include "library/operations.h"
#include "names/name_compare.h"

namespace zo {
namespace {

// Puts the entries into the change as deleted ones.
int patchAsDeleted(Change& change, LibraryState& library,
                   std::span<const IndexEntry* const> entries) {
  for (const IndexEntry* const found : entries) {
    RawEntry entry;
    if (!library.load(*found, entry)) return ZoResult::refused;
    entry.record.set(kIsDeleted);
    change.patch(std::move(entry));
  }
  return ZoResult::ok;
}

int recover(Change& change, LibraryState& library, const IndexEntry& found) {
  RawEntry entry;
  if (!library.load(found, entry)) return ZoResult::refused;
  entry.record.clear(kIsDeleted);
  change.patch(std::move(entry));
  return change.commit();
}

// A name of another length has no room where the old one stands: the entry is copied behind.
int moveUnderName(Change& change, LibraryState& library, RawEntry old, RawEntry renamed) {
  Progress watched = library.progress(old.record.storedSize);
  renamed.position = change.end();
  renamed.record.clear(kEndsScan);
  DiskSink data = change.dataOf(renamed);
  WatchedSink sink(data, watched);
  if (!watched.begin() || !change.reserve() ||
      !copyPart(library.bytes(), old.dataPosition(), old.record.storedSize, sink) ||
      !watched.finish()) {
    return ZoResult::refused;
  }
  RawEntry hidden = renamed;
  hidden.record.set(kIsDeleted);
  old.record.set(kIsDeleted);
  change.patch(std::move(old));
  change.patch(std::move(renamed));
  return change.append(std::move(hidden)) ? change.commit() : ZoResult::refused;
}

}  // namespace

int renameMember(LibraryState& library, const ZoFileName& member, const ZoFileName& newName) {
  RawEntry renamed;
  if (newName.isURL()) return ZoResult::invalid;
  if (!encodeName(newName, renamed.name)) return ZoResult::refused;
  Change change(library);
  if (const int code = change.begin()) return code;
  const std::vector<const IndexEntry*> found = library.index().allLive(member.view());
  if (found.empty()) return notFound(library.scan().end);
  const IndexEntry* const other = library.index().findLive(newName.view());
  if (other && other != found.front()) return ZoResult::memberExists;

  RawEntry old;
  if (!library.load(*found.front(), old)) return ZoResult::refused;
  renamed.record = old.record;
  renamed.trailer = old.trailer;
  renamed.record.nameLength = static_cast<std::uint16_t>(renamed.name.size());
  // Further members of the name would come to light.
  if (const int code = patchAsDeleted(change, library, std::span(found).subspan(1))) return code;
  if (renamed.name.size() != old.name.size()) {
    return moveUnderName(change, library, std::move(old), std::move(renamed));
  }
  renamed.position = old.position;
  change.patch(std::move(renamed));
  return change.commit();
}

int deleteMember(LibraryState& library, const ZoFileName& member, bool physically) {
  Change change(library);
  if (const int code = change.begin()) return code;
  if (library.header().counter() == 0) return ZoResult::refused;  // it says that there is none
  const std::vector<const IndexEntry*> found = library.index().allLive(member.view());
  if (found.empty()) return notFound(library.scan().end);
  // All of that name: a further one would come to light.
  if (physically) {
    return rewrite(library, change, [&](const IndexEntry& entry) {
      return std::find(found.begin(), found.end(), &entry) != found.end();
    });
  }
  if (const int code = patchAsDeleted(change, library, found)) return code;
  return change.commit();
}

int recoverMember(LibraryState& library, const ZoFileName& member) {
  Change change(library);
  if (const int code = change.begin()) return code;
  if (library.index().findLive(member.view())) return ZoResult::memberExists;
  const IndexEntry* const found = library.index().findDeleted(member.view());
  return found ? recover(change, library, *found) : notFound(library.scan().end);
}

int recoverEntry(LibraryState& library, const ZoLibEntry& wanted) {
  Change change(library);
  if (const int code = change.begin()) return code;
  const LibraryIndex& index = library.index();
  const IndexEntry* const found = index.at(wanted.position);
  if (!found || found->record.isLive() || !equalNames(index.name(*found), wanted.name.view())) {
    return ZoResult::refused;
  }
  if (index.findLive(wanted.name.view())) return ZoResult::memberExists;
  return recover(change, library, *found);
}

int setTimes(LibraryState& library, std::uint64_t position, const MemberTimes& times) {
  Change change(library);
  if (const int code = change.begin()) return code;
  const IndexEntry* const found = library.index().at(position);
  RawEntry entry;
  if (!found || !library.load(*found, entry)) return ZoResult::refused;
  times.storeIn(entry.record);
  change.patch(std::move(entry));
  return change.commit();
}

int setValue(LibraryState& library, std::uint64_t value) {
  Change change(library);
  if (const int code = change.begin()) return code;
  return change.setValue(value);
}

}  // namespace zo
