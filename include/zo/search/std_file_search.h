// The standard file search: searches folders of the file system only.
//
// ZoSysNotice::moduleLoaded with the module "zo_com" makes it register a reactor with the
// dispatcher, once, which tells the search in force of released modules: so an installed search,
// too, drops their folders.
//
// Errors, Threads: as in zo/system/file_search.h.
// Cost:    a search asks the platform about each folder in turn.
#pragma once

#include <zo/names/file_name.h>
#include <zo/system/file_search.h>
#include <zo/system/reactor.h>
#include <zo/text/containers/list.h>

class ZO_COM_API ZoStdFileSearch : public ZoFileSearch {
 public:
  void onReactor(ZoSysNotice notice, const ZoVariant& data) override;
  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  using ZoFileSearch::addPath;
  using ZoFileSearch::find;
  int addPath(const ZoFileName& folder, const wchar_t* module) override;
  int find(const ZoFileName& name, ZoFileName& found) override;

 private:
  struct Path {
    ZoFileName folder;
    ZoString module;
  };
  ZoList<Path> paths_;
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
