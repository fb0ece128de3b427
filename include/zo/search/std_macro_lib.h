// The standard macro libraries: what modules set, then the settings "macros@NAME"
// (zo/system/cfg.h), then, on request, variables of the environment. docs/macros.md.
//
// Errors, Threads: as in zo/system/macro_lib.h.
// Cost:    a macro that a module set is found in well under a microsecond; settings and environment
//          are asked each time.
#pragma once

#include <zo/system/macro_lib.h>

#include <memory>

namespace zo {
class MacroTable;
}

class ZO_COM_API ZoStdMacroLib : public ZoMacroLib {
 public:
  ZoStdMacroLib();
  ~ZoStdMacroLib() override;
  ZoStdMacroLib(const ZoStdMacroLib&) = delete;
  ZoStdMacroLib& operator=(const ZoStdMacroLib&) = delete;

  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  using ZoMacroLib::setMacro;
  using ZoMacroLib::useEnvironment;
  int getMacro(const ZoString& name, ZoString& value) override;
  int setMacro(const ZoString& name, const ZoString& value, const wchar_t* module) override;
  int removeMacro(const ZoString& name, const wchar_t* module) override;
  int getMacros(ZoSequence<ZoString>& names) override;
  int expand(ZoFileName& name) override;
  int addFile(const ZoFileName& file, const wchar_t* module) override;
  int useEnvironment(bool use) override;

 private:
  std::unique_ptr<zo::MacroTable> table_;
};
