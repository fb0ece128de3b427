// Changes of what is there: names, marks of deletion, times, the library's value.
#include <algorithm>

#include "library/change.h"
#include "names/name_compare.h"

namespace zo {
int LibraryCore::rename(const ZoFileName& member, const ZoFileName& newName) {
  if (const int code = mayWrite(&member)) return code;
  RawEntry renamed;
  if (newName.isURL()) return ZoResult::invalid;
  if (!encodeName(newName, renamed.name)) return ZoResult::refused;
  Change change(*this);
  if (const int code = change.begin()) return code;
  const std::vector<const IndexEntry*> found = index.allLive(member.view());
  if (found.empty()) return notFound();
  const IndexEntry* const other = index.findLive(newName.view());
  if (other && other != found.front()) return ZoResult::memberExists;

  RawEntry old;
  if (!load(*found.front(), old)) return ZoResult::refused;
  renamed.record = old.record;
  renamed.trailer = old.trailer;
  renamed.record.nameLength = static_cast<std::uint16_t>(renamed.name.size());
  // Further members of the name would come to light.
  for (std::size_t i = 1; i < found.size(); ++i) {
    RawEntry further;
    if (!load(*found[i], further)) return ZoResult::refused;
    further.record.flags |= kIsDeleted;
    change.patch(std::move(further));
  }
  if (renamed.name.size() == old.name.size()) {
    renamed.position = old.position;
    change.patch(std::move(renamed));
    return change.commit();
  }
  // A name of another length has no room where the old one stands.
  Progress watched = progress(old.record.storedSize);
  renamed.position = change.end();
  renamed.record.flags &= static_cast<std::uint16_t>(~kEndsScan);
  if (!watched.begin() || !change.reserve() ||
      !copyData(file, old, file, renamed.dataPosition(), watched) || !watched.finish()) {
    return ZoResult::refused;
  }
  RawEntry hidden = renamed;
  hidden.record.flags |= kIsDeleted;
  old.record.flags |= kIsDeleted;
  change.patch(std::move(old));
  change.patch(std::move(renamed));
  if (!change.append(std::move(hidden))) return ZoResult::refused;
  return change.commit();
}

int LibraryCore::remove(const ZoFileName& member, bool physically) {
  if (const int code = mayWrite(&member)) return code;
  Change change(*this);
  if (const int code = change.begin()) return code;
  if (header.counter() == 0) return ZoResult::refused;  // it says that there is none
  const std::vector<const IndexEntry*> found = index.allLive(member.view());
  if (found.empty()) return notFound();
  if (physically) {
    // All of that name: a further one would come to light.
    return rewrite([&](const IndexEntry& entry) {
      return std::find(found.begin(), found.end(), &entry) != found.end();
    });
  }
  for (const IndexEntry* const entry : found) {
    RawEntry gone;
    if (!load(*entry, gone)) return ZoResult::refused;
    gone.record.flags |= kIsDeleted;
    change.patch(std::move(gone));
  }
  return change.commit();
}

int LibraryCore::recover(const ZoFileName& member) {
  if (const int code = mayWrite(&member)) return code;
  Change change(*this);
  if (const int code = change.begin()) return code;
  if (index.findLive(member.view())) return ZoResult::memberExists;
  const IndexEntry* const found = index.findDeleted(member.view());
  return found ? recoverAt(change, *found) : notFound();
}

int LibraryCore::recover(const ZoLibEntry& wanted) {
  if (const int code = mayWrite()) return code;
  Change change(*this);
  if (const int code = change.begin()) return code;
  const IndexEntry* const found = index.at(wanted.position);
  if (!found || found->record.isLive() || !equalNames(index.name(*found), wanted.name.view())) {
    return ZoResult::refused;
  }
  if (index.findLive(wanted.name.view())) return ZoResult::memberExists;
  return recoverAt(change, *found);
}

int LibraryCore::recoverAt(Change& change, const IndexEntry& found) {
  RawEntry entry;
  if (!load(found, entry)) return ZoResult::refused;
  entry.record.flags &= static_cast<std::uint16_t>(~kIsDeleted);
  change.patch(std::move(entry));
  return change.commit();
}

int LibraryCore::setTimes(std::uint64_t position, const MemberTimes& times) {
  if (const int code = mayWrite()) return code;
  Change change(*this);
  if (const int code = change.begin()) return code;
  const IndexEntry* const found = index.at(position);
  RawEntry entry;
  if (!found || !load(*found, entry)) return ZoResult::refused;
  times.storeIn(entry.record);
  change.patch(std::move(entry));
  return change.commit();
}

int LibraryCore::setValue(std::uint64_t value) {
  if (const int code = mayWrite()) return code;
  if (const int code = settle()) return code;
  LibraryHeader changed = header;
  changed.setValue(value);
  // One write within the first sector.
  if (!file.write(0, changed.bytes()) || !file.flush()) {
    isIndexed = false;
    static_cast<void>(file.write(0, header.bytes()) && file.flush());
    return ZoResult::refused;
  }
  header = changed;
  file.touch();
  isIndexed = file.look(indexed);
  return ZoResult::ok;
}

}  // namespace zo
