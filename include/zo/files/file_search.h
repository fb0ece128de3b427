// The file search service: finds a file that is not where its name says, over search paths that
// modules add.
//
// Errors:  0 success; 1 not found, a folder that is not there or was added before, or the guard was
//          not obtained within timeOut(); 2 out of memory. Nothing has changed then, and what was to
//          be filled stays as it was.
// Threads: any.
#pragma once

#include <zo/files/file_name.h>
#include <zo/system/reactor.h>
#include <zo/system/sys_obj.h>
#include <zo/text/containers/list.h>

class ZO_COM_API ZoFileSearch : public ZoSysObj {
 public:
  // Adds a folder behind those added before, until the module is released.
  virtual int addPath(const ZoFileName& folder, const wchar_t* module) = 0;
  // The full name of the file: where its name says, or else, for a relative name, in the first of
  // the folders that has it.
  virtual int find(const ZoFileName& name, ZoFileName& found) = 0;
};

// Searches folders of the file system only. ZoSysNotice::moduleLoaded with the module "zo_com" makes
// it register a reactor with the dispatcher, once, which tells the search in force of released
// modules: so an installed search, too, drops their folders.
class ZO_COM_API ZoStdFileSearch : public ZoFileSearch {
 public:
  void onReactor(ZoSysNotice notice, const ZoVariant& data) override;
  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

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
