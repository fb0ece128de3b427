// The standard file search.
//
// ZoSysNotice::moduleLoaded with the module "zo_com" makes it register a reactor with the
// dispatcher, once, which tells the search in force of released modules: so an installed search,
// too, drops their places.
//
// Folders  are asked directly at first, and read once they were asked for some time; from then on
//          they are asked no more until the platform tells of a change in them, and neither is the
//          current directory. Each folder below that is watched by itself, and a file that is known
//          is looked at once more before it is given. A place that was exchanged for another of
//          its name by renaming is noticed within a second. Folders on a network and those that
//          cannot be watched are asked each time. A folder that is watched can be removed; where
//          the platform lets it vanish only when nobody has it open, that is at the next search,
//          and what removes a tree and waits for each level to vanish waits until then: release the
//          place first.
// Members  are given as their library is known: with what this process changed in it at once, and
//          with what others did as soon as the platform tells of it, a second later at the latest.
//          A member that has gone when it is to be opened is looked for once more.
//          Those that are to be files of the disk are copied to the cache's folder, "members";
//          without a cache to "zo_members" in the folder for temporary files. A copy is made once
//          for each state of its library, and stays.
//
// Errors, Threads: as in zo/system/file_search.h.
// Cost:    what is known is found in some microseconds, however many places there are; what is not,
//          by one call of the platform for each folder. A library is read once after each change.
// Bounds:  of a folder with more than 250,000 names none is kept, nor of one that is searched with
//          more than 1023 folders below it: each search goes over all of them.
#pragma once

#include <zo/names/file_name.h>
#include <zo/system/file_search.h>
#include <zo/system/reactor.h>

#include <memory>

namespace zo {
class FileSearchImp;
}

class ZO_COM_API ZoStdFileSearch : public ZoFileSearch {
 public:
  ZoStdFileSearch();
  ~ZoStdFileSearch() override;
  ZoStdFileSearch(const ZoStdFileSearch&) = delete;
  ZoStdFileSearch& operator=(const ZoStdFileSearch&) = delete;

  void onReactor(ZoSysNotice notice, const ZoVariant& data) override;
  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  using ZoFileSearch::addLibrary;
  using ZoFileSearch::addPath;
  using ZoFileSearch::addServer;
  using ZoFileSearch::find;
  using ZoFileSearch::findNames;
  int addPath(const ZoFileName& folder, const wchar_t* module) override;
  int find(const ZoFileName& name, ZoFileName& found) override;
  int addFolder(const ZoFileName& folder, const wchar_t* module, int priority, bool below) override;
  int addLibrary(const ZoFileName& library, const wchar_t* module, int priority = 0) override;
  int addServer(const ZoFileName& url, const wchar_t* module, int priority = 0) override;
  int setCacheFolder(const ZoFileName& folder, std::uint64_t limit, unsigned int maxAge) override;
  int locate(const ZoFileName& name, ZoFound& found) override;
  int findNames(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                unsigned int kinds = 0) override;
  int openFile(const ZoFileName& name, ZoFile& file, int access, int share) override;
  int toDisk(const ZoFileName& name, ZoFileName& file) override;
  int explain(const ZoFileName& name, ZoString& report) override;
  int refresh() override;

 private:
  std::unique_ptr<zo::FileSearchImp> imp_;
};

// The library's own reactor.
class ZO_COM_API ZoFileSearchReactor : public ZoSystemReactor {
 public:
  ZoFileSearchReactor() noexcept;
  ZoFileSearchReactor(const ZoFileSearchReactor&) = delete;
  ZoFileSearchReactor& operator=(const ZoFileSearchReactor&) = delete;
  ~ZoFileSearchReactor() override;

  void onNotice(ZoSysNotice notice, const ZoVariant& data) override;
  double priority() override;  // 1
  int release(const wchar_t* module) override;

  // Whether one exists.
  [[nodiscard]] static bool isAlive() noexcept;
};
