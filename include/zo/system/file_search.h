// The file search service: gives a client the file that it names, from wherever it lies: where its
// name says, below a macro's folder, in a folder or library that a module added, on a disc, or on a
// server by way of a cache on this machine; and tells where it came from.
//
//   auto& search = ZoSystem::fileSearch();
//   if (const int code = search.addPath(L"C:\\parts", L"my_module", 10)) return code;
//   if (const int code = search.addLibrary(L"C:\\parts\\bolts.lib", L"my_module")) return code;
//   ZoFile file;
//   if (const int code = search.open(L"m8.dwg", file)) return code;
//
// Order    1. $macro'path is taken below what the macro stands for (zo/system/macro_lib.h), and
//             what comes of it goes on as below;
//          2. LIBRARY|MEMBER (zo/names/member_name.h) is that member of that library, which is
//             itself looked for;
//          3. a disc name (cd://label/...) is on the drive with that disc; a URL comes through the
//             cache;
//          4. any other name is looked for where it says: a relative one in the current directory;
//          5. a relative name then in the places that were added, the highest priority first, of
//             equal ones the one that was added first; servers come behind all others.
//          The first place that has it counts.
// Names    ignore case everywhere, and \ and / are one. A relative name never leaves a place:
//          one with a drive, a root or ".." is looked for where it says and nowhere else. Devices
//          are never found.
// Places   are added under the name of a module, and go when it is released; several modules may
//          add the same, and each has its own.
//
// Errors:  0 success; 1 not found, or a place that is not there or that the module has added
//          before, an unknown macro, or the guard was not obtained within timeOut(); 2 out of
//          memory; 3 a URL, where no cache was set or its scheme cannot be served (http, https, ftp
//          can). Nothing has changed then, nor what was to be filled. ZoResult::stale: done with
//          the cache's older copy, as the server did not answer; a URL may also give a code of
//          open_results.h. What the platform said is to be had from the file-system service's
//          errorTxt() after open and toDisk. Nothing throws but std::bad_alloc.
// Threads: any. Looking up never waits for the guard.
#pragma once

#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/system/open_results.h>
#include <zo/system/sys_obj.h>
#include <zo/text/containers/iterator.h>
#include <zo/text/not_negative.h>

#include <concepts>
#include <cstdint>
#include <vector>

class ZoFile;
template <class T>
class ZoSequence;

// Where a file was found.
struct ZoFound {
  enum Place : unsigned int {
    kNowhere = 0,
    kAsNamed = 1,   // where its name says
    kMacro = 2,     // where its name says, below the value of a macro
    kFolder = 3,    // a folder that was added
    kLibrary = 4,   // a library that was added, or that the name gives
    kDisc = 5,      // a disc by its label
    kDownload = 6,  // the cache's copy of what a server has
  };

  // The full name. Of a member LIBRARY|MEMBER; of a server's file its URL, with the cache's copy as
  // the local alias, which ZoFile::open() opens.
  ZoFileName name;
  ZoFileName library, member;  // of a member, as the library spells it; else empty
  Place place = kNowhere;
  ZoString module;  // that added the place; empty for none
};

// Names one by one, from a list of its own: what is added or goes meanwhile changes nothing.
//
//   for (const ZoFileName& name : search.findAll(L"*.dwg")) use(name);
class ZO_COM_API ZoFoundNames final : public ZoCIterator<ZoFileName> {
 public:
  ZoFoundNames() = default;
  explicit ZoFoundNames(const ZoSequence<ZoFileName>& names);

  void reset() override { at_ = 0; }
  bool toFirst() override {
    at_ = 0;
    return isValid();
  }
  [[nodiscard]] bool atFirst() const override { return at_ == 0 && isValid(); }
  [[nodiscard]] bool isValid() const override { return at_ < entries(); }
  bool next() override {
    if (isValid()) ++at_;
    return isValid();
  }
  [[nodiscard]] unsigned int entries() const noexcept {
    return static_cast<unsigned int>(names_.size());
  }

 protected:
  [[nodiscard]] const ZoFileName* element() const override {
    return isValid() ? &names_[at_] : nullptr;
  }

 private:
  std::vector<ZoFileName> names_;
  unsigned int at_ = 0;
};

class ZO_COM_API ZoFileSearch : public ZoSysObj {
 public:
  // ---- What a service of one's own must give; the rest has a meaning already ----
  // Adds a folder with priority 0, without those below it.
  [[nodiscard]] virtual int addPath(const ZoFileName& folder, const wchar_t* module) = 0;
  // The full name of the file, as in ZoFound.
  [[nodiscard]] virtual int find(const ZoFileName& name, ZoFileName& found) = 0;

  // ---- The order of the virtual functions is part of the interface ----
  // With `below` the folders below it are searched, too, but for links to folders: what lies
  // highest counts, and of several there what its path sorts first. Here: addPath when it is asked
  // for neither priority nor below, else refused.
  [[nodiscard]] virtual int addFolder(const ZoFileName& folder, const wchar_t* module, int priority,
                                      bool below);
  // Adds a library file, whose members are found by their names. It is open only while it is read.
  // Here: refused.
  [[nodiscard]] virtual int addLibrary(const ZoFileName& library, const wchar_t* module,
                                       int priority = 0);
  int addLibrary(const ZoFileName&, const wchar_t*, bool) = delete;  // the priority is an int
  // Adds a folder of a server, "https://host/parts/": a relative name is asked for there when all
  // other places were asked, through the cache, or for ftp by the file-system service, which
  // fetches it each time. Here: refused.
  [[nodiscard]] virtual int addServer(const ZoFileName& url, const wchar_t* module,
                                      int priority = 0);
  int addServer(const ZoFileName&, const wchar_t*, bool) = delete;  // the priority is an int
  // Where copies of servers' files and of members are kept: a folder, which is made; the most bytes
  // that it may hold; and how many seconds a copy serves before the server is asked again. An empty
  // name ends it; what the folder holds stays. Clients call setCache. Here: refused.
  [[nodiscard]] virtual int setCacheFolder(const ZoFileName& folder, std::uint64_t limit,
                                           unsigned int maxAge);
  // Where a file is. Here: what find gives, as named.
  [[nodiscard]] virtual int locate(const ZoFileName& name, ZoFound& found);
  // Adds all names that fit a pattern of * and ? in its last component, each as find() gives it, in
  // the order of the places and by path within each. Of several names that differ in their place
  // alone, the first counts. `kinds` is a sum of ZoFindFile::kind(...), 0 for all. Servers are not
  // asked. An absolute pattern names its place itself: a folder, or LIBRARY|PATTERN. Here: refused.
  [[nodiscard]] virtual int findNames(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                                      unsigned int kinds = 0);
  template <class Kinds>
    requires(!std::integral<Kinds> || std::same_as<Kinds, bool>)
  int findNames(const ZoFileName&, ZoSequence<ZoFileName>&,
                Kinds) = delete;  // a sum of ZoFindFile::kind
  // Finds and opens, a member as a ZoLibFile. For writing only what lies in a file of its own is
  // opened; of others 1. Here: finds it and opens what find gave.
  [[nodiscard]] virtual int openFile(const ZoFileName& name, ZoFile& file, int access, int share);
  // A file of the disk with the content: the file itself, or a copy of a member or of a server's
  // file in the cache. A copy belongs to the cache: read it, never write it. Here: what find gives.
  [[nodiscard]] virtual int toDisk(const ZoFileName& name, ZoFileName& file);
  // What find does, in lines for people: each place asked and its answer. 0 also for what is not
  // found. Passwords are left out. Here: refused.
  [[nodiscard]] virtual int explain(const ZoFileName& name, ZoString& report);
  // Forgets what is known of folders and libraries, so that they are read anew: for file systems
  // whose changes nobody tells. Here: refused.
  [[nodiscard]] virtual int refresh();

  // ---- No slots ----
  [[nodiscard]] int addPath(const ZoFileName& folder, const wchar_t* module, int priority,
                            bool below = false) {
    return addFolder(folder, module, priority, below);
  }
  template <class T>
    requires(!std::same_as<T, bool>)
  int addPath(const ZoFileName&, const wchar_t*, int, T) = delete;  // below is a bool
  int addPath(const ZoFileName&, const wchar_t*, bool) = delete;    // the priority comes first
  [[nodiscard]] int setCache(const ZoFileName& folder, zo::NotNegative<std::uint64_t> limit,
                             zo::NotNegative<unsigned int> maxAge) {
    return setCacheFolder(folder, limit, maxAge);
  }
  [[nodiscard]] int find(const ZoFileName& name, ZoFound& found) { return locate(name, found); }
  [[nodiscard]] int findAll(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                            unsigned int kinds = 0) {
    return findNames(pattern, names, kinds);
  }
  // The same, one by one; none for a failure.
  [[nodiscard]] ZoFoundNames findAll(const ZoFileName& pattern, unsigned int kinds = 0);
  template <class Kinds>
    requires(std::is_enum_v<Kinds> || std::same_as<Kinds, bool>)
  int findAll(const ZoFileName&, ZoSequence<ZoFileName>&,
              Kinds) = delete;  // a sum of ZoFindFile::kind
  template <class Kinds>
    requires(std::is_enum_v<Kinds> || std::same_as<Kinds, bool>)
  ZoFoundNames findAll(const ZoFileName&, Kinds) = delete;  // a sum of ZoFindFile::kind
  // access and share as ZoFile::open has them: kRead, and others may read.
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file);
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file, int access);
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file, int access, int share) {
    return openFile(name, file, access, share);
  }
  // ZoFile, which need not be known here.
  template <class File, class Access, class Share = int>
  // NOLINTNEXTLINE(misc-redundant-expression): the check does not see the arguments differ
    requires(!File::template kMayBe<Access, typename File::Access> ||
             !File::template kMayBe<Share, typename File::Share>)
  int open(const ZoFileName&, File&, Access, Share = {}) = delete;  // access, then share
};
