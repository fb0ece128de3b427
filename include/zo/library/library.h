// Libraries: one file that holds many, each under a name of its own, compressed or as it is.
//
//   ZoLibrary library;
//   if (const int code = library.open(L"parts.lib", ZoFile::kReadWrite, ZoFile::kOpenAlways))
//     return code;
//   const int code = library.addFile(L"C:\\parts\\bolt.dwg", L"bolts/m8.dwg", true);
//   if (code != 0) return code;
//   return library.extractFile(L"bolts/m8.dwg", L"C:\\out\\m8.dwg");
//
// Names    are kept as they are given, and compared ignoring case. They have 1 to 65535 bytes in
//          the system's ANSI code page, with seven for each unit that it does not hold. If a file
//          holds more than one live member of a name, the first counts.
// Promise  after a killed process, a full disk, an I/O error or a cancelled call at any instant,
//          every member that was complete before the call is intact, and the call is wholly done
//          or wholly absent. docs/formats/library.md has the order of writes that keeps it.
// Damage   of a file makes nothing worse: a library that does not end as this library leaves it, be
//          its writer killed, refuses every change with 1 and stays as it is, until its members are
//          salvaged into another.
// Deleted  members stay in the file, and match nothing but recoverFile, until reorganize.
//
// Errors:  0, or: 1 not open, a read or write that failed or came short, no such member, or another
//          failure; 3 a URL as a member's name; 1001 a live member has the name; 1002 no such
//          member, where a mark in the file ended the search; 1004 not open for writing; 1005
//          another writer kept the library for longer than the time-out; 1006 others have the file
//          open that is to be replaced. A failure of the
//          platform is to be had from the file-system service's errorTxt(). Nothing throws but
//          std::bad_alloc, and then nothing is changed. What a visitor or a report throws passes
//          through the call, which lets go of its lock.
// Threads: any, also on one object: one call runs at a time in a process, and others wait for it,
//          isOpen() and name() too; but nobody waits for an open() that waits for another writer,
//          and hardly for who reads a member (extractFile, verify, getFile): that goes on beside
//          all others, so that as many threads as there are processors read one library. Packing on
//          all of them: zo/library/packed_member.h. The library starts no threads.
//          Only moving and destroying are for one thread. The thread that opened a library for
//          writing closes it (the platform ties the lock to it). Other processes read while one
//          writes.
// Cost:    the first search goes over the file up to the member; the second makes an index of all,
//          with which finding is O(1). Both begin anew when another process has changed the file.
//          Adding does not depend on what is there.
// Stored:  docs/formats/library.md.
#pragma once

#include <zo/config.h>
#include <zo/files/file.h>
#include <zo/library/library_entry.h>
#include <zo/library/library_results.h>
#include <zo/text/not_negative.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

template <class T>
class ZoSequence;
class ZoPackedMember;

namespace zo {
class LibraryDoor;
}

class ZO_COM_API ZoLibrary {
 public:
  enum compMode : unsigned int {
    kStore = 0,
    kCompress = 1,
    kAutomatic = 2,  // compressed, unless that is no smaller; by samples where it is large
  };
  // How hard a member is compressed; anything else counts as normal. They reach the file.
  static constexpr int kFast = 1024, kNormal = 2048, kBest = 4096;

  // Called before a long call begins, within it at intervals of at most some hundred KiB, and at
  // its end; bytes of the members (reorganize: of the file). False cancels the call, which then
  // answers 1 and leaves everything as it was; so does an exception. It is called on the thread of
  // its call, for one call at a time.
  using Watcher = std::function<bool(std::uint64_t done, std::uint64_t total)>;

  ZoLibrary();
  ZoLibrary(const ZoLibrary&) = delete;
  ZoLibrary& operator=(const ZoLibrary&) = delete;
  ZoLibrary(ZoLibrary&& other) noexcept;
  ZoLibrary& operator=(ZoLibrary&& other) noexcept;
  ~ZoLibrary();  // closes, and drops a batch that was not ended

  // ---- Opening and closing ----
  // Opens or makes a library. With kWrite in access the write lock is taken first, waiting for it
  // at most lockTimeOut ms: a mutex for this machine, and a lock far behind the end of the file for
  // all others. What a killed writer had begun is then finished or undone. A file that is new or
  // empty becomes a library without members; any other opens whatever it holds, see isLibrary.
  // Without kWrite nothing is made or emptied: kOpenAlways opens what is there, and the modes that
  // can only make or empty are refused. While one thread waits here, another must not open or close
  // the same object.
  [[nodiscard]] int open(const ZoFileName& name, int access = ZoFile::kRead,
                         ZoFile::CreationMode mode = ZoFile::kOpenExisting,
                         unsigned int lockTimeOut = 5000);
  template <class Access, class TimeOut = unsigned int>
    requires(!ZoFile::kMayBe<Access, ZoFile::Access> || std::same_as<TimeOut, bool>)
  int open(const ZoFileName&, Access, ZoFile::CreationMode = ZoFile::kOpenExisting,
           TimeOut = 0) = delete;  // the access comes first: ZoFile::kReadWrite, then the mode
  template <class TimeOut>
    requires(std::is_floating_point_v<TimeOut>)
  int open(const ZoFileName&, int, ZoFile::CreationMode,
           TimeOut) = delete;  // whole milliseconds
  template <class... Rest>
  int open(std::nullptr_t, Rest...) = delete;  // the library's name
  // Members that are open as files are closed for good: they read and write nothing any more.
  [[nodiscard]] int close();
  [[nodiscard]] bool isOpen() const noexcept;
  [[nodiscard]] bool isWritable() const noexcept;
  [[nodiscard]] ZoFileName name() const;  // as it was opened; empty when closed

  // ---- Members ----
  // Adds a file with its three times. What is read of it counts, if its size was another one, as
  // that of a log that grows; it is read to the end that it has when the first one is reached.
  // `replace` lets it take the place of a live member of that name, which is refused otherwise.
  // `level` is kFast, kNormal or kBest.
  [[nodiscard]] int addFile(const ZoFileName& source, const ZoFileName& member,
                            bool replace = false, compMode mode = kCompress, int level = kNormal);
  // The same from a file object, from its position to its end.
  [[nodiscard]] int addFile(ZoFile& source, const ZoFileName& member, bool replace = false,
                            compMode mode = kCompress, int level = kNormal);
  // The same of one that was packed before (zo/library/packed_member.h), which stays as it is.
  [[nodiscard]] int addFile(ZoPackedMember& packed, const ZoFileName& member, bool replace = false);
  template <class Source, class Replace, class Mode = compMode, class Level = int>
    requires(!std::same_as<Replace, bool> || !std::same_as<Level, int>)
  int addFile(Source&&, const ZoFileName&, Replace, Mode = kCompress,
              Level = kNormal) = delete;  // bool replace, compMode, int level: in this order
  int addFile(std::nullptr_t, const ZoFileName&, bool = false, compMode = kCompress,
              int = kNormal) = delete;  // the source's name
  template <class Source>
  int addFile(Source&&, std::nullptr_t, bool = false, compMode = kCompress,
              int = kNormal) = delete;  // a member's name
  // Between these two addFile does not wait for the disk, and all that it adds becomes visible in
  // one step at the end, here too: adding thousands of members so takes a part of the time. Any
  // other change and close() end a batch; a second member of a name ends it and begins another. A
  // killed process, a library that is destroyed instead of closed, and an end that fails or throws
  // leave nothing of it.
  [[nodiscard]] int beginBatch();
  [[nodiscard]] int endBatch();
  int cancelBatch();  // none of it is added
  // Writes a member out with its three times, in one step: a target that exists is replaced when
  // the member was read as a whole and its check value holds, and is as it was otherwise.
  [[nodiscard]] int extractFile(const ZoFileName& member, const ZoFileName& target);
  int extractFile(std::nullptr_t, const ZoFileName&) = delete;  // a member's name
  template <class Member>
  int extractFile(const Member&, std::nullptr_t) = delete;  // the target's name
  // A new name of another length leaves a deleted member of the old name, which recoverFile brings
  // back, until reorganize.
  [[nodiscard]] int renameFile(const ZoFileName& member, const ZoFileName& newName);
  int renameFile(std::nullptr_t, const ZoFileName&) = delete;  // a member's name
  template <class Member>
  int renameFile(const Member&, std::nullptr_t) = delete;  // the new name
  // Marks a member as deleted, or removes it physically, which rewrites the file beside itself and
  // replaces it in one step. 1 when the header's counter says that no member was ever added.
  [[nodiscard]] int deleteFile(const ZoFileName& member, bool physically = false);
  template <class Physically>
    requires(!std::same_as<Physically, bool>)
  int deleteFile(const ZoFileName&, Physically) = delete;  // one member, bool physically
  int deleteFile(std::nullptr_t, bool = false) = delete;   // a member's name
  // Undoes a deletion by mark, of the first deleted member of that name. 1001 when a live member
  // has the name.
  [[nodiscard]] int recoverFile(const ZoFileName& member);
  int recoverFile(std::nullptr_t) = delete;  // a member's name
  // Opens a member as a file object (zo/library/lib_file.h): to read it, or with kWrite in access
  // to write it anew; it is then added, replacing what has the name, when close() is called. `mode`
  // is how it is added, with kNormal as the level.
  [[nodiscard]] int getFile(ZoFile& file, const ZoFileName& member, int access = ZoFile::kRead,
                            compMode mode = kCompress);
  template <class Access>
    requires(!ZoFile::kMayBe<Access, ZoFile::Access>)
  int getFile(ZoFile&, const ZoFileName&, Access,
              compMode = kCompress) = delete;  // the access comes first, then the compMode
  int getFile(ZoFile&, std::nullptr_t, int = ZoFile::kRead,
              compMode = kCompress) = delete;  // a member's name
  // Opens a member for reading as a stdio stream in binary mode, which the caller closes; null
  // after a failure. Access for writing is refused: closing a stream could not report a failure.
  [[nodiscard]] int getCFile(std::FILE** stream, const ZoFileName& member,
                             int access = ZoFile::kRead, compMode mode = kCompress);
  template <class Access>
    requires(!ZoFile::kMayBe<Access, ZoFile::Access>)
  int getCFile(std::FILE**, const ZoFileName&, Access,
               compMode = kCompress) = delete;  // the access comes first, then the compMode
  int getCFile(std::FILE**, std::nullptr_t, int = ZoFile::kRead,
               compMode = kCompress) = delete;  // a member's name

  // ---- Members by entry ----
  // The same for the one member whose entry was listed: live or deleted, one of several of a name,
  // or one whose name is none. 1 when that entry is not there any more, or not in that state.
  [[nodiscard]] int extractFile(const ZoLibEntry& entry, const ZoFileName& target);
  [[nodiscard]] int renameFile(const ZoLibEntry& entry, const ZoFileName& newName);
  [[nodiscard]] int deleteFile(const ZoLibEntry& entry, bool physically = false);
  // `replace` lets it take the place of a live member of that name, which becomes deleted.
  [[nodiscard]] int recoverFile(const ZoLibEntry& entry, bool replace = false);
  [[nodiscard]] int getFile(ZoFile& file, const ZoLibEntry& entry);  // for reading
  template <class Physically>
    requires(!std::same_as<Physically, bool>)
  int deleteFile(const ZoLibEntry&, Physically) = delete;  // bool physically
  template <class Replace>
    requires(!std::same_as<Replace, bool>)
  int recoverFile(const ZoLibEntry&, Replace) = delete;  // bool replace

  // ---- Many members in one step ----
  // Each changes all of the members, or none of them after a refusal, a kill or a loss of power.
  // `refused` gets the place of the one that could not be changed, or their number. A member that
  // is named twice counts once; only a second new name for it is refused. One step has room for 16
  // MiB of records and names, some 180,000 members of usual names; with more it is refused and the
  // platform's reason is that it is not supported. Physical deletion has no such limit.
  enum Deletion {
    kByMark,       // recoverFile brings it back
    kPhysically,   // and its space is free
    kAllVersions,  // physically, with what was deleted by mark under its name
  };
  [[nodiscard]] int deleteFiles(std::span<const ZoFileName> members, Deletion how = kByMark,
                                std::size_t* refused = nullptr);
  [[nodiscard]] int deleteFiles(std::span<const ZoLibEntry> entries, Deletion how = kByMark,
                                std::size_t* refused = nullptr);
  // Of each name the member that was added last. `replace` as above; 1001 without it.
  [[nodiscard]] int recoverFiles(std::span<const ZoFileName> members, bool replace = false,
                                 std::size_t* refused = nullptr);
  [[nodiscard]] int recoverFiles(std::span<const ZoLibEntry> entries, bool replace = false,
                                 std::size_t* refused = nullptr);
  // At the same instant: members may take each other's names. Who renames a folder of members gives
  // all that are in it.
  [[nodiscard]] int renameFiles(std::span<const ZoLibRename> renamings,
                                std::size_t* refused = nullptr);
  // Brings deleted members back under new names, or their own: several of one name at once. A name
  // means the member that was added last under it. What gets a name of another length is also still
  // there as a deleted member, until reorganize.
  [[nodiscard]] int recoverFilesAs(std::span<const ZoLibRename> members,
                                   std::size_t* refused = nullptr);
  template <class Members, class Replace>
    requires(!std::same_as<Replace, bool>)
  int recoverFiles(const Members&, Replace,
                   std::size_t* = nullptr) = delete;  // bool replace, then refused
  template <class Replace>
    requires(!std::same_as<Replace, bool>)
  int recoverFiles(std::initializer_list<ZoFileName>, Replace,
                   std::size_t* = nullptr) = delete;  // bool replace, then refused
  // The same of lists in braces.
  [[nodiscard]] int deleteFiles(std::initializer_list<ZoFileName> members, Deletion how = kByMark,
                                std::size_t* refused = nullptr) {
    return deleteFiles(std::span(members.begin(), members.size()), how, refused);
  }
  [[nodiscard]] int recoverFiles(std::initializer_list<ZoFileName> members, bool replace = false,
                                 std::size_t* refused = nullptr) {
    return recoverFiles(std::span(members.begin(), members.size()), replace, refused);
  }
  [[nodiscard]] int renameFiles(std::initializer_list<ZoLibRename> renamings,
                                std::size_t* refused = nullptr) {
    return renameFiles(std::span(renamings.begin(), renamings.size()), refused);
  }
  [[nodiscard]] int recoverFilesAs(std::initializer_list<ZoLibRename> members,
                                   std::size_t* refused = nullptr) {
    return recoverFilesAs(std::span(members.begin(), members.size()), refused);
  }

  // ---- What is there ----
  // Adds the names to the sequence, and the times of the last change and the sizes of the members
  // to the others where given (a size from 4 GiB as 0xFFFFFFFF), in the order of the file.
  [[nodiscard]] int getFileNames(ZoSequence<ZoFileName>& names, bool withDeleted = false,
                                 ZoSequence<FILETIME>* times = nullptr,
                                 ZoSequence<unsigned int>* sizes = nullptr);
  template <class WithDeleted>
    requires(!std::same_as<WithDeleted, bool>)
  int getFileNames(ZoSequence<ZoFileName>&, WithDeleted, ZoSequence<FILETIME>* = nullptr,
                   ZoSequence<unsigned int>* = nullptr) = delete;  // bool withDeleted, then times
  // Visits all that the file says of its members, in its order and as it was at one instant; false
  // from the visitor ends it. Entries without a name are no members. No call on this library from
  // within. `first` is the ordinal of the first one that is visited: who takes a million of them a
  // thousand at a time goes on behind the last one that he has. 1 for an ordinal that none can
  // have, 0 or a negative one, and for an empty function.
  [[nodiscard]] int forEachEntry(const std::function<bool(const ZoLibEntry&)>& visit,
                                 bool withDeleted = false, std::uint64_t first = 1);
  template <class WithDeleted, class First = std::uint64_t>
    requires(!std::same_as<WithDeleted, bool> || !zo::PlainInteger<First>)
  int forEachEntry(const std::function<bool(const ZoLibEntry&)>&, WithDeleted,
                   First = 1) = delete;  // bool withDeleted, then the first one's ordinal
  template <class... Rest>
  int forEachEntry(std::nullptr_t, Rest...) = delete;  // a visitor
  // A live member's entry.
  [[nodiscard]] int getEntry(const ZoFileName& member, ZoLibEntry& entry);
  // The entry of a member, live or deleted, by its ordinal; 1 for a number that none has, such as 0
  // or a negative one.
  [[nodiscard]] int getEntry(std::uint64_t ordinal, ZoLibEntry& entry);
  template <class Which>
    requires(std::same_as<Which, bool> || std::same_as<Which, char> ||
             std::same_as<Which, wchar_t> || std::is_null_pointer_v<Which> ||
             std::is_floating_point_v<Which>)
  int getEntry(Which, ZoLibEntry&) = delete;  // a member's name, or its ordinal from 1
  // Visits all entries of one name, live and deleted, from the oldest to the newest: its versions.
  // No call on this library from within. 1 for an empty function.
  [[nodiscard]] int forEachVersion(const ZoFileName& member,
                                   const std::function<bool(const ZoLibEntry&)>& visit);
  template <class Visitor>
  int forEachVersion(std::nullptr_t, const Visitor&) = delete;  // a member's name
  template <class Member>
  int forEachVersion(const Member&, std::nullptr_t) = delete;  // a visitor
  [[nodiscard]] bool contains(const ZoFileName& member);
  bool contains(std::nullptr_t) = delete;  // a member's name

  // ---- The file as a whole ----
  // Rewrites the file without deleted members, beside itself, and replaces it in one step. Where
  // the platform replaces no file that others have open, it waits for them and tries again, as long
  // as the time-out that the library was opened with, as physical deletion does; 1006 when they
  // have it even then, and all is as it was. Elsewhere they keep the old file until they open the
  // library again.
  [[nodiscard]] int reorganize();
  // The 64-bit value that a library keeps for its users. checkSum answers 0 when it is not open.
  [[nodiscard]] std::uint64_t checkSum();
  [[nodiscard]] int setCheckSum(std::uint64_t value);
  template <class Value>
    requires(std::is_floating_point_v<Value> || (std::integral<Value> && !zo::PlainInteger<Value>))
  int setCheckSum(Value) = delete;  // a value of 64 bits
  // Whether the file begins with a library's mark.
  [[nodiscard]] bool isLibrary();
  // The counter in the header: raised by every addFile, never lowered.
  [[nodiscard]] std::uint32_t counter();
  // How the members end: 0 with the end of the file, or where another one is being added; else the
  // number of bytes that follow the last member and are none. They are what a killed writer left,
  // or damage, or stand behind a mark that ends the members before the file does.
  [[nodiscard]] std::uint64_t trailingBytes();
  // Whether a change is being made, or was when its writer was killed: no damage. The next writer
  // finishes or undoes it; the members are those before or after it.
  [[nodiscard]] bool hasUnfinishedChange();
  // Reads a member as a whole: 0 when it is as it was added, 1000 when its check value is not that
  // of its bytes, or its sizes differ that should not, 1 when it cannot be read or is not the one
  // that was listed. One without protection gives 0 when it can be read.
  [[nodiscard]] int verify(const ZoLibEntry& entry);
  // The same for many, each with a code of its own; answers the first that is not 0. Small members
  // that lie side by side are read at once, which for tiny ones takes a fraction of the time.
  [[nodiscard]] int verify(std::span<const ZoLibEntry> entries, std::vector<int>& codes);
  // Copies every member that can be read from a damaged library into another one, deleted ones as
  // such: first all that a reader gets, then such behind a damage, or in what a damaged entry
  // swallowed, as far as check values or the entries that follow prove them. The report names what
  // was found, as it was read, and its code as by verify; members are copied when that is 0. With
  // 1001 a live one was copied as a deleted one, since another has its name: recoverFile brings it
  // back. A place where the source cannot be read is reported with 1 and no name. Needs no scan
  // that holds; answers 0 when it was not stopped by the report or a failure. Takes time in
  // proportion to the file and what it decompresses to, whatever it holds.
  [[nodiscard]] int salvageInto(
      ZoLibrary& target, const std::function<bool(const ZoLibEntry&, int code)>& report = {});

  // ---- Long calls ----
  void onProgress(Watcher watcher);
  // The last call that could be; of several at once, any of them.
  [[nodiscard]] bool wasCancelled() const;

 private:
  std::shared_ptr<zo::LibraryDoor> core_;  // shared with the members that are open as files
};
