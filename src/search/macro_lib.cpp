// What macro libraries mean by themselves, over getMacro.
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/system/macro_lib.h>
#include <zo/text/string.h>

#include <string>
#include <string_view>

#include "search/macro_text.h"

int ZoMacroLib::setMacro(const ZoString&, const ZoString&, const wchar_t*) {
  return ZoResult::refused;
}
int ZoMacroLib::removeMacro(const ZoString&, const wchar_t*) { return ZoResult::refused; }
int ZoMacroLib::getMacros(ZoSequence<ZoString>&) { return ZoResult::refused; }
int ZoMacroLib::addFile(const ZoFileName&, const wchar_t*) { return ZoResult::refused; }
int ZoMacroLib::useEnvironment(bool) { return ZoResult::refused; }

int ZoMacroLib::expand(ZoFileName& name) {
  if (!*name.macro()) return ZoResult::ok;
  std::wstring value;
  const auto find = [&](std::wstring_view macro, std::wstring& text) {
    ZoString given;
    if (getMacro(ZoString(macro), given) != ZoResult::ok) return false;
    text = given.view();
    return true;
  };
  if (!zo::resolveMacro(name.macro(), kMaxDepth, value, find)) return ZoResult::refused;
  return name.setMacro(name.macro(), value.c_str()) == ZoResult::refused ? ZoResult::refused
                                                                         : ZoResult::ok;
}
