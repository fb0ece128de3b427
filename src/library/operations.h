// The operations on a library: what its door lets through (LibraryDoor::run). Each has a file of
// its own or one with its next of kin, as the headings say. One that changes the file begins a
// Change, fills it and commits it.
//
// Errors:  the codes of zo/library/library.h; permission was asked for before.
#pragma once

#include <memory>
#include <span>

#include "library/change.h"
#include "library/name_bytes.h"
#include "library/pack.h"
#include "library/state.h"

namespace zo {

class LibraryDoor;

// A member as its caller tells of it: by a name, or by an entry that was listed.
struct MemberRef {
  const ZoFileName* name = nullptr;
  const ZoLibEntry* entry = nullptr;
};

// ---- find.cpp ----
// Finds a live member. The entry is as it stands in the file now.
int findMember(LibraryState& library, const ZoFileName& member, RawEntry& entry);
int findMember(LibraryState& library, const MemberRef& member, RawEntry& entry);
// Whether an entry is the one that was listed, and not another that stands there now.
[[nodiscard]] bool isListed(const EntryRecord& record, std::string_view name,
                            const ZoLibEntry& wanted);
// The entry that was listed, in the index as it is; 1 when it is not there any more.
int findListed(LibraryState& library, const ZoLibEntry& wanted, const IndexEntry*& found);
// The entry at a position.
int findEntryAt(LibraryState& library, std::uint64_t position, RawEntry& entry);
// The answer when a search that came to that end found nothing.
[[nodiscard]] int notFound(ScanEnd end);
// What users see of an entry.
[[nodiscard]] ZoLibEntry describe(const LibraryState& library, const IndexEntry& entry,
                                  bool isHidden);
[[nodiscard]] ZoLibEntry describe(const LibraryState& library, const RawEntry& entry);
int visitEntries(LibraryState& library, const std::function<bool(const ZoLibEntry&)>& visit,
                 bool withDeleted, std::uint64_t first);
int visitVersions(LibraryState& library, const ZoFileName& member,
                  const std::function<bool(const ZoLibEntry&)>& visit);

// ---- add.cpp ----
struct MemberTimes {
  FILETIME created{}, accessed{}, written{};
  void storeIn(EntryRecord& record) const noexcept;
};
// With one question where the file is one of the platform; false when that is not answered.
[[nodiscard]] bool timesOf(ZoFile& file, MemberTimes& times);
// The data of a new member.
class NewContent {
 public:
  virtual ~NewContent() = default;
  [[nodiscard]] virtual std::uint64_t size() const = 0;  // of the member itself
  // Writes the data, and fills in what the entry says of them.
  [[nodiscard]] virtual bool writeTo(PackTarget& target, Progress& progress, ReusedMemory& memory,
                                     RawEntry& entry) = 0;
};
class PackedOnTheWay final : public NewContent {
 public:
  PackedOnTheWay(MemberSource& source, ZoLibrary::compMode mode, int level)
      : source_(source), mode_(mode), level_(level) {}
  [[nodiscard]] std::uint64_t size() const override { return source_.size(); }
  [[nodiscard]] bool writeTo(PackTarget& target, Progress& progress, ReusedMemory& memory,
                             RawEntry& entry) override;

 private:
  MemberSource& source_;
  ZoLibrary::compMode mode_;
  int level_;
};
struct NewMember {
  const ZoFileName& name;
  MemberTimes times;
  bool replaces;
};
int addMember(LibraryState& library, NewContent& content, const NewMember& member);
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
enum class Renamed { kLive, kDeleted };  // deleted members come back under the new names
// All of the members or none, as above. They change names at the same instant, so that two may swap
// them.
int renameMembers(LibraryState& library, std::span<const Renaming> renamings, Renamed which,
                  std::size_t& at);

// ---- extract.cpp ----
// These read without keeping others waiting (library/reading.h).
int extractMember(const std::shared_ptr<LibraryDoor>& door, const MemberRef& member,
                  const ZoFileName& target);
int verifyEntry(const std::shared_ptr<LibraryDoor>& door, const ZoLibEntry& entry);

// ---- verify.cpp ----
// The same for many: what is small and lies side by side is read at once.
int verifyEntries(const std::shared_ptr<LibraryDoor>& door, std::span<const ZoLibEntry> entries,
                  std::vector<int>& codes);

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
