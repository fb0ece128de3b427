// The operations on a library: what its door lets through (LibraryDoor::run). Each has a file of
// its own or one with its next of kin, as the headings say. One that changes the file begins a
// Change, fills it and commits it.
//
// Errors:  the codes of zo/library/library.h; permission was asked for before.
#pragma once

#include <span>

#include "library/change.h"
#include "library/state.h"

namespace zo {

// A member as its caller tells of it: by a name, or by an entry that was listed.
struct MemberRef {
  const ZoFileName* name = nullptr;
  const ZoLibEntry* entry = nullptr;
};

// ---- find.cpp ----
// Finds a live member. The entry is as it stands in the file now.
int findMember(LibraryState& library, const ZoFileName& member, RawEntry& entry);
int findMember(LibraryState& library, const MemberRef& member, RawEntry& entry);
// The entry that was listed, in the index as it is; 1 when it is not there any more.
int findListed(LibraryState& library, const ZoLibEntry& wanted, const IndexEntry*& found);
// The entry at a position.
int findEntryAt(LibraryState& library, std::uint64_t position, RawEntry& entry);
// The answer when a search that came to that end found nothing.
[[nodiscard]] int notFound(ScanEnd end);
// What users see of an entry.
[[nodiscard]] ZoLibEntry describe(const LibraryState& library, const IndexEntry& entry);
[[nodiscard]] ZoLibEntry describe(const LibraryState& library, const RawEntry& entry);
int visitEntries(LibraryState& library, const std::function<bool(const ZoLibEntry&)>& visit,
                 bool withDeleted);
int visitVersions(LibraryState& library, const ZoFileName& member,
                  const std::function<bool(const ZoLibEntry&)>& visit);

// ---- add.cpp ----
// A name's bytes; false for one that has none.
[[nodiscard]] bool encodeName(const ZoFileName& name, std::string& bytes);

struct MemberTimes {
  FILETIME created{}, accessed{}, written{};
  void storeIn(EntryRecord& record) const noexcept;
};
// Bytes of a new member, which can be asked for once more.
class MemberSource : public ByteSource {
 public:
  [[nodiscard]] virtual std::uint64_t size() const = 0;
  [[nodiscard]] virtual bool restart() = 0;
};
struct NewMember {
  const ZoFileName& name;
  MemberTimes times;
  bool replaces;
  ZoLibrary::compMode mode;
  int level;
};
int addMember(LibraryState& library, MemberSource& source, const NewMember& member);
int beginBatch(LibraryState& library);  // endBatch: library/change.h

// ---- edit.cpp ----
// All of the members or none. `at` is then the one that was refused, or their number.
int deleteMembers(LibraryState& library, std::span<const MemberRef> members,
                  ZoLibrary::Deletion how, std::size_t& at);
enum class Versions { kFirst, kLatest };  // which of a name's deleted members comes back
int recoverMembers(LibraryState& library, std::span<const MemberRef> members, Versions which,
                   bool replaces, std::size_t& at);
int setTimes(LibraryState& library, std::uint64_t position, const MemberTimes& times);
int setValue(LibraryState& library, std::uint64_t value);

// ---- rename.cpp ----
struct Renaming {
  MemberRef member;
  const ZoFileName& newName;
};
// All of the members or none, as above. They change names at the same instant, so that two may swap
// them.
int renameMembers(LibraryState& library, std::span<const Renaming> renamings, std::size_t& at);

// ---- extract.cpp ----
int extractMember(LibraryState& library, const MemberRef& member, const ZoFileName& target);
int verifyEntry(LibraryState& library, const ZoLibEntry& entry);

// ---- rewrite.cpp ----
// Makes the file one without the entries that `drops` names, in one step, by a change that has
// begun.
int rewrite(LibraryState& library, Change& change,
            const std::function<bool(const IndexEntry&)>& drops);
int reorganize(LibraryState& library);

// ---- salvage.cpp ----
int salvage(LibraryState& from, LibraryState& target,
            const std::function<bool(const ZoLibEntry&, int)>& report);

}  // namespace zo
