// The public class: each operation goes through the library's door.
#include <zo/library/lib_file.h>
#include <zo/library/library.h>
#include <zo/library/packed_member.h>
#include <zo/text/containers/sequence.h>

#include <algorithm>
#include <utility>

#include "library/door.h"
#include "library/member.h"
#include "library/operations.h"
#include "library/packed_content.h"
#include "library/tail.h"

using zo::Access;
using zo::FilesLock;
using zo::LibraryDoor;
using zo::LibraryMember;
using zo::LibraryState;
using zo::MemberRef;
using zo::MemberTimes;
using zo::Renaming;
using zo::run;
using zo::untilReplaced;
using zo::Versions;

namespace {

int addFrom(LibraryState& library, ZoFile& source, zo::NewMember member, ZoLibrary::compMode mode,
            int level) {
  zo::FileSource bytes(source);
  if (!bytes.isReadable() || !zo::timesOf(source, member.times)) return ZoResult::refused;
  zo::PackedOnTheWay content(bytes, mode, level);
  return zo::addMember(library, content, member);
}

// A library that was moved from gets a new one.
LibraryDoor& doorOf(std::shared_ptr<LibraryDoor>& door) {
  const FilesLock lock;
  if (!door) door = std::make_shared<LibraryDoor>();
  return *door;
}

MemberRef refTo(const ZoFileName& member) { return {.name = &member, .entry = nullptr}; }
MemberRef refTo(const ZoLibEntry& entry) { return {.name = nullptr, .entry = &entry}; }
Renaming refTo(const ZoLibRename& renaming) {
  return {.member = renaming.entry ? refTo(*renaming.entry) : refTo(renaming.member),
          .newName = renaming.newName};
}
bool isURL(const MemberRef& member) { return member.name && member.name->isURL(); }
bool isURL(const Renaming& renaming) { return isURL(renaming.member); }

// An operation on all of the members or none.
template <class Member, class Operation, class... Arguments>
int changeAll(const std::shared_ptr<LibraryDoor>& door, std::span<const Member> members,
              std::size_t* refused, const Operation& operation, const Arguments&... arguments) {
  std::vector<decltype(refTo(members[0]))> refs;
  refs.reserve(members.size());
  for (const Member& member : members) refs.push_back(refTo(member));
  std::size_t at = members.size();
  const auto once = [&](LibraryState& library) -> int {
    if (refs.empty()) return ZoResult::ok;
    const auto url = std::ranges::find_if(refs, [](const auto& ref) { return isURL(ref); });
    at = static_cast<std::size_t>(url - refs.begin());
    return url != refs.end() ? ZoResult::invalid : operation(library, refs, arguments..., at);
  };
  const int code = untilReplaced(door, [&] { return run(door, Access::kWrite, {}, once); });
  if (refused) *refused = at;
  return code;
}

// The same for one member by name, which is looked at before the library is.
template <class Operation, class Ref, class... Arguments>
int changeOne(const std::shared_ptr<LibraryDoor>& door, const ZoFileName& member,
              const Operation& operation, const Ref& ref, const Arguments&... arguments) {
  const auto once = [&](LibraryState& library) {
    // NOLINTNEXTLINE(misc-const-correctness): operations set it, which the check cannot see here
    std::size_t at = 0;
    return operation(library, std::span(&ref, 1), arguments..., at);
  };
  return untilReplaced(door, [&] { return run(door, Access::kWrite, {&member}, once); });
}

// What the header of an open library says; 0 when it cannot be asked.
template <class Question>
auto askHeader(const std::shared_ptr<LibraryDoor>& door, const Question& question) {
  decltype(question(zo::LibraryHeader())) answer{};
  static_cast<void>(run(door, Access::kRead, {}, [&](LibraryState& library) {
    if (const int code = library.refreshHeader()) return code;
    answer = question(library.header());
    return ZoResult::ok;
  }));
  return answer;
}

}  // namespace

ZoLibrary::ZoLibrary() : core_(std::make_shared<LibraryDoor>()) {}
ZoLibrary::ZoLibrary(ZoLibrary&& other) noexcept = default;

ZoLibrary& ZoLibrary::operator=(ZoLibrary&& other) noexcept {
  core_.swap(other.core_);
  return *this;
}

// A batch that nobody ended is not complete.
ZoLibrary::~ZoLibrary() {
  if (core_) core_->abandon();
}

// ---- Opening and closing ----

int ZoLibrary::open(const ZoFileName& name, int access, ZoFile::CreationMode mode,
                    unsigned int lockTimeOut) {
  return doorOf(core_).open(name, access, mode, lockTimeOut);
}

int ZoLibrary::close() { return core_ ? core_->close() : ZoResult::ok; }

bool ZoLibrary::isOpen() const noexcept {
  return !run(core_, Access::kRead, {}, [](LibraryState&) { return ZoResult::ok; });
}

bool ZoLibrary::isWritable() const noexcept {
  return !run(core_, Access::kWrite, {}, [](LibraryState&) { return ZoResult::ok; });
}

// Names share their parts, and these are not for several threads.
ZoFileName ZoLibrary::name() const {
  ZoFileName name;
  static_cast<void>(run(core_, Access::kRead, {}, [&](LibraryState& library) {
    name = library.name().deepCopy();
    return ZoResult::ok;
  }));
  return name;
}

// ---- Members ----

int ZoLibrary::addFile(const ZoFileName& source, const ZoFileName& member, bool replace,
                       compMode mode, int level) {
  return run(core_, Access::kWrite, {&member}, [&](LibraryState& library) {
    ZoFile file;
    if (file.open(source, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                  ZoFile::kSequential)) {
      return ZoResult::refused;
    }
    return addFrom(library, file, {member, {}, replace}, mode, level);
  });
}

int ZoLibrary::addFile(ZoFile& source, const ZoFileName& member, bool replace, compMode mode,
                       int level) {
  return run(core_, Access::kWrite, {&member}, [&](LibraryState& library) {
    return addFrom(library, source, {member, {}, replace}, mode, level);
  });
}

int ZoLibrary::addFile(ZoPackedMember& packed, const ZoFileName& member, bool replace) {
  return run(core_, Access::kWrite, {&member}, [&](LibraryState& library) -> int {
    if (packed.isEmpty()) return ZoResult::refused;
    const MemberTimes times{packed.created(), packed.accessed(), packed.written()};
    return zo::addMember(library, *packed.content_, {member, times, replace});
  });
}

int ZoLibrary::beginBatch() { return run(core_, Access::kWrite, {}, zo::beginBatch); }
int ZoLibrary::endBatch() { return run(core_, Access::kWrite, {}, zo::endBatch); }

int ZoLibrary::cancelBatch() {
  return run(core_, Access::kWrite, {}, [](LibraryState& library) {
    library.batch.reset();
    return ZoResult::ok;
  });
}

int ZoLibrary::extractFile(const ZoFileName& member, const ZoFileName& target) {
  return zo::extractMember(core_, refTo(member), target);
}

int ZoLibrary::renameFile(const ZoFileName& member, const ZoFileName& newName) {
  const Renaming renaming{.member = refTo(member), .newName = newName};
  return changeOne(core_, member, zo::renameMembers, renaming, zo::Renamed::kLive);
}

int ZoLibrary::deleteFile(const ZoFileName& member, bool physically) {
  return changeOne(core_, member, zo::deleteMembers, refTo(member),
                   physically ? kPhysically : kByMark);
}

int ZoLibrary::recoverFile(const ZoFileName& member) {
  return changeOne(core_, member, zo::recoverMembers, refTo(member), Versions::kFirst, false);
}

int ZoLibrary::getFile(ZoFile& file, const ZoFileName& member, int access, compMode mode) {
  std::shared_ptr<LibraryMember> opened;
  const int code = access & ZoFile::kWrite
                       ? LibraryMember::openToWrite(core_, member, mode, opened)
                       : LibraryMember::openToRead(core_, refTo(member), opened);
  return code ? code : file.setImpObj(new ZoLibFile(std::move(opened)));
}

int ZoLibrary::getCFile(std::FILE** stream, const ZoFileName& member, int access, compMode mode) {
  if (!stream) return ZoResult::refused;
  *stream = nullptr;
  if (access & ZoFile::kWrite) return ZoResult::refused;
  ZoFile file;
  if (const int code = getFile(file, member, access, mode)) return code;
  *stream = file.getCFileHandle(false, false);
  return *stream ? ZoResult::ok : ZoResult::refused;
}

// ---- Members by entry ----

int ZoLibrary::extractFile(const ZoLibEntry& entry, const ZoFileName& target) {
  return zo::extractMember(core_, refTo(entry), target);
}

int ZoLibrary::renameFile(const ZoLibEntry& entry, const ZoFileName& newName) {
  const ZoLibRename one{.member = {}, .newName = newName, .entry = &entry};
  return renameFiles(std::span(&one, 1));
}

int ZoLibrary::deleteFile(const ZoLibEntry& entry, bool physically) {
  return deleteFiles(std::span(&entry, 1), physically ? kPhysically : kByMark);
}

int ZoLibrary::recoverFile(const ZoLibEntry& entry, bool replace) {
  return recoverFiles(std::span(&entry, 1), replace);
}

int ZoLibrary::getFile(ZoFile& file, const ZoLibEntry& entry) {
  std::shared_ptr<LibraryMember> opened;
  const int code = LibraryMember::openToRead(core_, refTo(entry), opened);
  return code ? code : file.setImpObj(new ZoLibFile(std::move(opened)));
}

// ---- Many members in one step ----

int ZoLibrary::deleteFiles(std::span<const ZoFileName> members, Deletion how,
                           std::size_t* refused) {
  return changeAll(core_, members, refused, zo::deleteMembers, how);
}

int ZoLibrary::deleteFiles(std::span<const ZoLibEntry> entries, Deletion how,
                           std::size_t* refused) {
  return changeAll(core_, entries, refused, zo::deleteMembers, how);
}

int ZoLibrary::recoverFiles(std::span<const ZoFileName> members, bool replace,
                            std::size_t* refused) {
  return changeAll(core_, members, refused, zo::recoverMembers, Versions::kLatest, replace);
}

int ZoLibrary::recoverFiles(std::span<const ZoLibEntry> entries, bool replace,
                            std::size_t* refused) {
  return changeAll(core_, entries, refused, zo::recoverMembers, Versions::kLatest, replace);
}

int ZoLibrary::renameFiles(std::span<const ZoLibRename> renamings, std::size_t* refused) {
  return changeAll(core_, renamings, refused, zo::renameMembers, zo::Renamed::kLive);
}

int ZoLibrary::recoverFilesAs(std::span<const ZoLibRename> members, std::size_t* refused) {
  return changeAll(core_, members, refused, zo::renameMembers, zo::Renamed::kDeleted);
}

// ---- What is there ----

int ZoLibrary::getFileNames(ZoSequence<ZoFileName>& names, bool withDeleted,
                            ZoSequence<FILETIME>* times, ZoSequence<unsigned int>* sizes) {
  int refused = ZoResult::ok;
  const int code = forEachEntry(
      [&](const ZoLibEntry& entry) {
        refused = names.append(entry.name);
        if (!refused && times) refused = times->append(entry.written);
        constexpr std::uint64_t kMost = 0xFFFFFFFF;
        if (!refused && sizes) {
          refused = sizes->append(static_cast<unsigned int>(std::min(entry.size, kMost)));
        }
        return !refused;
      },
      withDeleted);
  return code ? code : refused;
}

int ZoLibrary::forEachEntry(const std::function<bool(const ZoLibEntry&)>& visit, bool withDeleted,
                            std::uint64_t first) {
  if (!visit || first == 0 || first > INT64_MAX) return ZoResult::refused;
  return run(core_, Access::kRead, {}, zo::visitEntries, visit, withDeleted, first);
}

int ZoLibrary::getEntry(const ZoFileName& member, ZoLibEntry& entry) {
  return run(core_, Access::kRead, {&member}, [&](LibraryState& library) {
    zo::RawEntry raw;
    if (const int code = zo::findMember(library, member, raw)) return code;
    entry = zo::describe(library, raw);
    return ZoResult::ok;
  });
}

int ZoLibrary::getEntry(std::uint64_t ordinal, ZoLibEntry& entry) {
  return run(core_, Access::kRead, {}, [&](LibraryState& library) -> int {
    if (const int code = library.refresh()) return code;
    const zo::IndexEntry* const found = library.index().nth(ordinal);
    if (!found) return ZoResult::refused;
    entry = zo::describe(library, *found, library.index().isHidden(*found));
    return ZoResult::ok;
  });
}

int ZoLibrary::forEachVersion(const ZoFileName& member,
                              const std::function<bool(const ZoLibEntry&)>& visit) {
  if (!visit) return ZoResult::refused;
  return run(core_, Access::kRead, {&member}, zo::visitVersions, member, visit);
}

bool ZoLibrary::contains(const ZoFileName& member) {
  return !run(core_, Access::kRead, {&member}, [&](LibraryState& library) {
    zo::RawEntry raw;
    return zo::findMember(library, member, raw);
  });
}

// ---- The file as a whole ----

int ZoLibrary::reorganize() {
  return untilReplaced(core_, [&] { return run(core_, Access::kWrite, {}, zo::reorganize); });
}

std::uint64_t ZoLibrary::checkSum() {
  return askHeader(core_, [](const zo::LibraryHeader& header) { return header.value(); });
}

int ZoLibrary::setCheckSum(std::uint64_t value) {
  return run(core_, Access::kWrite, {}, zo::setValue, value);
}

bool ZoLibrary::isLibrary() {
  return askHeader(core_, [](const zo::LibraryHeader& header) { return header.hasMagic(); });
}

std::uint32_t ZoLibrary::counter() {
  return askHeader(core_, [](const zo::LibraryHeader& header) { return header.counter(); });
}

std::uint64_t ZoLibrary::trailingBytes() {
  std::uint64_t bytes = 0;
  static_cast<void>(run(core_, Access::kRead, {}, [&](LibraryState& library) {
    if (const int code = library.refresh()) return code;
    if (!zo::isBeingAdded(library)) {
      const std::uint64_t size = library.bytes().size();
      bytes = std::max(size, library.scan().position) - library.scan().position;
    }
    return ZoResult::ok;
  }));
  return bytes;
}

bool ZoLibrary::hasUnfinishedChange() {
  bool isUnfinished = false;
  static_cast<void>(run(core_, Access::kRead, {}, [&](LibraryState& library) {
    if (const int code = library.refresh()) return code;
    isUnfinished = library.scan().redoPosition != 0 || zo::isBeingAdded(library);
    return int{ZoResult::ok};
  }));
  return isUnfinished;
}

int ZoLibrary::verify(const ZoLibEntry& entry) { return zo::verifyEntry(core_, entry); }

int ZoLibrary::verify(std::span<const ZoLibEntry> entries, std::vector<int>& codes) {
  return zo::verifyEntries(core_, entries, codes);
}

int ZoLibrary::salvageInto(ZoLibrary& target,
                           const std::function<bool(const ZoLibEntry&, int code)>& report) {
  return run(core_, Access::kRead, {}, [&](LibraryState& from) {
    return run(target.core_, Access::kWrite, {},
               [&](LibraryState& to) { return zo::salvage(from, to, report); });
  });
}

// ---- Long calls ----

void ZoLibrary::onProgress(Watcher watcher) {
  doorOf(core_);
  static_cast<void>(run(core_, Access::kKnow, {}, [&](LibraryState& library) {
    library.watch.watcher = std::move(watcher);
    return ZoResult::ok;
  }));
}

bool ZoLibrary::wasCancelled() const {
  bool isCancelled = false;
  static_cast<void>(run(core_, Access::kKnow, {}, [&](LibraryState& library) {
    isCancelled = library.watch.isCancelled;
    return ZoResult::ok;
  }));
  return isCancelled;
}
