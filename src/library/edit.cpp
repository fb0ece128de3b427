// Changes of what is there: marks of deletion, times, the library's value.
#include "library/edit.h"

#include <algorithm>

namespace zo {
namespace {

// The entries that a deletion takes.
int collectDeleted(LibraryState& library, const MemberRef& member, ZoLibrary::Deletion how,
                   std::vector<const IndexEntry*>& gone) {
  std::vector<const IndexEntry*> found(1);
  if (member.entry) {
    if (const int code = findListed(library, *member.entry, found[0])) return code;
    if (how == ZoLibrary::kByMark && !found[0]->record.isLive()) return ZoResult::refused;
    if (how == ZoLibrary::kAllVersions)
      found = library.index().all(library.index().name(*found[0]));
  } else {
    // All of that name: a further one would come to light.
    found = how == ZoLibrary::kAllVersions ? library.index().all(member.name->view())
                                           : library.index().allLive(member.name->view());
  }
  gone.insert(gone.end(), found.begin(), found.end());
  return found.empty() ? notFound(library.scan().end) : ZoResult::ok;
}

void sortOut(std::vector<const IndexEntry*>& entries) {
  std::sort(entries.begin(), entries.end());
  entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
}

// Brings members back, and hides those whose names they take.
class Recovery {
 public:
  Recovery(LibraryState& library, Change& change, bool replaces)
      : library_(library), change_(change), replaces_(replaces) {}

  int add(const IndexEntry& found) {
    if (found.record.isLive()) return ZoResult::refused;
    const std::wstring name = library_.index().name(found);
    if (const IndexEntry* const other = recovered_.findLive(name)) {
      return other->position == found.position ? ZoResult::ok : ZoResult::memberExists;
    }
    const std::vector<const IndexEntry*> hidden = library_.index().allLive(name);
    if (!hidden.empty() && !replaces_) return ZoResult::memberExists;
    if (const int code = patchAsDeleted(change_, library_, hidden)) return code;
    RawEntry entry;
    if (!library_.load(found, entry)) return ZoResult::refused;
    entry.record.clear(kIsDeleted);
    recovered_.add(entry);
    return change_.tryPatch(std::move(entry)) ? ZoResult::ok : ZoResult::refused;
  }

 private:
  LibraryState& library_;
  Change& change_;
  bool replaces_;
  LibraryIndex recovered_;
};

}  // namespace

int findDeleted(LibraryState& library, const MemberRef& member, Versions which,
                const IndexEntry*& found) {
  if (member.entry) return findListed(library, *member.entry, found);
  const std::wstring_view name = member.name->view();
  found = which == Versions::kFirst ? library.index().findDeleted(name)
                                    : library.index().findLatestDeleted(name);
  if (found) return ZoResult::ok;
  return library.index().findLive(name) ? ZoResult::memberExists : notFound(library.scan().end);
}

int patchAsDeleted(Change& change, LibraryState& library,
                   std::span<const IndexEntry* const> entries) {
  for (const IndexEntry* const found : entries) {
    RawEntry entry;
    if (!library.load(*found, entry)) return ZoResult::refused;
    entry.record.set(kIsDeleted);
    if (!change.tryPatch(std::move(entry))) return ZoResult::refused;
  }
  return ZoResult::ok;
}

int deleteMembers(LibraryState& library, std::span<const MemberRef> members,
                  ZoLibrary::Deletion how, std::size_t& at) {
  at = members.size();
  Change change(library);
  if (const int code = change.begin()) return code;
  if (library.header().counter() == 0) return ZoResult::refused;  // it says that there is none
  std::vector<const IndexEntry*> gone;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (const int code = collectDeleted(library, members[i], how, gone)) return at = i, code;
  }
  sortOut(gone);
  if (how == ZoLibrary::kByMark) {
    const int code = patchAsDeleted(change, library, gone);
    return code ? code : change.commit();
  }
  return rewrite(library, change, [&](const IndexEntry& entry) {
    return std::binary_search(gone.begin(), gone.end(), &entry);
  });
}

int recoverMembers(LibraryState& library, std::span<const MemberRef> members, Versions which,
                   bool replaces, std::size_t& at) {
  at = members.size();
  Change change(library);
  if (const int code = change.begin()) return code;
  Recovery recovery(library, change, replaces);
  for (std::size_t i = 0; i < members.size(); ++i) {
    const IndexEntry* found = nullptr;
    int code = findDeleted(library, members[i], which, found);
    if (!code) code = recovery.add(*found);
    if (code) return at = i, code;
  }
  return change.commit();
}

int setTimes(LibraryState& library, std::uint64_t position, const MemberTimes& times) {
  Change change(library);
  if (const int code = change.begin()) return code;
  const IndexEntry* const found = library.index().at(position);
  RawEntry entry;
  if (!found || !library.load(*found, entry)) return ZoResult::refused;
  times.storeIn(entry.record);
  return change.tryPatch(std::move(entry)) ? change.commit() : ZoResult::refused;
}

int setValue(LibraryState& library, std::uint64_t value) {
  Change change(library);
  if (const int code = change.begin()) return code;
  return change.setValue(value);
}

}  // namespace zo
