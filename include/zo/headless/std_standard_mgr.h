// The standard standards manager: keeps in memory what modules add. It begins without standards.
//
// Errors, Threads, Cost: as in zo/system/standard_mgr.h. The settings are those of the
//          configuration service.
#pragma once

#include <zo/system/standard_mgr.h>

#include <memory>

namespace zo {
class StandardStore;
}

class ZO_COM_API ZoStdStandardMgr : public ZoStandardMgr {
 public:
  ZoStdStandardMgr();
  ~ZoStdStandardMgr() override;
  ZoStdStandardMgr(const ZoStdStandardMgr&) = delete;
  ZoStdStandardMgr& operator=(const ZoStdStandardMgr&) = delete;

  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  int getStandard(const ZoString& name, ZoVariant& standard) override;
  int add(const ZoVariant& standards, const wchar_t* module) override;
  int addFile(const ZoFileName& file, const wchar_t* module) override;
  int addOpenFile(ZoFile& file, const ZoFileName& called, const wchar_t* module) override;
  int remove(const ZoString& name, const wchar_t* module) override;
  int find(const ZoStandardFilter& filter, ZoSequence<ZoString>& names) override;
  int getName(const ZoString& spelling, ZoString& name) override;
  int getEditions(const ZoString& name, ZoSequence<ZoString>& editions) override;
  int getSuccessor(const ZoString& name, ZoString& successor) override;
  int getOrigin(const ZoString& name, ZoString& module, ZoFileName& file) override;
  int getTables(const ZoString& name, ZoSequence<ZoString>& tables) override;
  int getSizes(const ZoString& name, const ZoString& table, ZoSequence<ZoString>& sizes) override;
  int getRow(const ZoString& name, const ZoString& table, const ZoString& size,
             ZoVariant& row) override;
  int getPreferred(const ZoString& standardClass, ZoString& name) override;
  int setPreferred(const ZoString& standardClass, const ZoString& name) override;

 private:
  int addFrom(const ZoVariant& standards, const wchar_t* module, const ZoFileName& file);

  std::unique_ptr<zo::StandardStore> store_;
};
