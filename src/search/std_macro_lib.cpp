#include <windows.h>
#include <zo/files/text_file.h>
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/search/std_macro_lib.h>
#include <zo/system/cfg.h>
#include <zo/text/containers/array.h>
#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <string>

#include "platform/system_path.h"
#include "search/macro_table.h"
#include "search/macro_text.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

constexpr std::wstring_view kSettings = L"macros@";

std::wstring_view viewOf(const wchar_t* text) noexcept { return text ? text : L""; }

// A name with the sign between levels of settings would be the name of another setting.
bool findSetting(std::wstring_view name, std::wstring& value) {
  auto* const settings = zo::serviceOrNull<ZoCfg>();
  if (!settings || name.find_first_of(L"@\\") != name.npos) return false;
  const std::wstring key = std::wstring(kSettings).append(name);
  value = settings->get(key.c_str(), ZoString()).view();
  return !value.empty();
}

bool findVariable(std::wstring_view name, std::wstring& value) {
  const std::wstring text(name);
  value = zo::platformText([&](DWORD size, wchar_t* buffer) {
    return GetEnvironmentVariableW(text.c_str(), buffer, size);
  });
  return !value.empty();
}

bool findMacro(const zo::MacroState& state, std::wstring_view name, std::wstring& value) {
  if (const std::wstring* const found = state.find(name)) {
    value = *found;
    return true;
  }
  if (!zo::mayBeMacro(name)) return false;
  return findSetting(name, value) || (state.usesEnvironment && findVariable(name, value));
}

}  // namespace

ZoStdMacroLib::ZoStdMacroLib() : table_(std::make_unique<zo::MacroTable>()) {}
ZoStdMacroLib::~ZoStdMacroLib() = default;

int ZoStdMacroLib::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

void ZoStdMacroLib::poolRelease(const wchar_t* module) {
  if (!module) return;
  const zo::Writing writing(*this);
  if (writing) table_->change([&](zo::MacroState& state) { zo::releaseMacros(state, module); });
}

int ZoStdMacroLib::getMacro(const ZoString& name, ZoString& value) {
  std::wstring found;
  if (!findMacro(*table_->current(), name.view(), found)) return ZoResult::refused;
  value = std::wstring_view(found);
  return ZoResult::ok;
}

int ZoStdMacroLib::setMacro(const ZoString& name, const ZoString& value, const wchar_t* module) {
  const zo::Writing writing(*this);
  if (!writing || !zo::mayBeMacro(name.view()) || value.isEmpty()) return ZoResult::refused;
  table_->change([&](zo::MacroState& state) {
    zo::setMacro(state, name.view(), value.view(), viewOf(module));
  });
  return ZoResult::ok;
}

int ZoStdMacroLib::removeMacro(const ZoString& name, const wchar_t* module) {
  const zo::Writing writing(*this);
  bool isRemoved = false;
  if (writing)
    table_->change([&](zo::MacroState& state) {
      isRemoved = zo::removeMacro(state, name.view(), viewOf(module));
    });
  return isRemoved ? ZoResult::ok : ZoResult::refused;
}

int ZoStdMacroLib::getMacros(ZoSequence<ZoString>& names) {
  std::vector<std::wstring> found;
  const auto state = table_->current();  // which keeps the names
  for (const auto& macro : state->macros) found.push_back(macro.first);
  if (auto* const settings = zo::serviceOrNull<ZoCfg>()) {
    const ZoVariant all = settings->at(L"macros", false);
    for (const auto setting : all.elements())
      if (setting.key) found.emplace_back(setting.key->view());
  }
  std::ranges::sort(
      found, [](std::wstring_view a, std::wstring_view b) { return zo::orderNames(a, b) < 0; });
  found.erase(std::ranges::unique(found, zo::NameEqual()).begin(), found.end());
  ZoArray<ZoString> list;
  for (const std::wstring& name : found)
    if (const int code = list.append(ZoString(name))) return code;
  return names.copyFrom(list);
}

int ZoStdMacroLib::expand(ZoFileName& name) {
  if (!*name.macro()) return ZoResult::ok;
  const auto state = table_->current();
  std::wstring value;
  const auto find = [&](std::wstring_view macro, std::wstring& text) {
    return findMacro(*state, macro, text);
  };
  if (!zo::resolveMacro(name.macro(), kMaxDepth, value, find)) return ZoResult::refused;
  return name.setMacro(name.macro(), value.c_str()) == ZoResult::refused ? ZoResult::refused
                                                                         : ZoResult::ok;
}

int ZoStdMacroLib::addFile(const ZoFileName& file, const wchar_t* module) {
  ZoString text;
  zo::MacroLines lines;
  if (const int code = zoReadText(file, text)) return code;
  if (!zo::readMacroLines(text.view(), lines)) return ZoResult::refused;
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  table_->change([&](zo::MacroState& state) {
    for (const auto& [name, value] : lines) zo::setMacro(state, name, value, viewOf(module));
  });
  return ZoResult::ok;
}

int ZoStdMacroLib::useEnvironment(bool use) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  table_->change([&](zo::MacroState& state) { state.usesEnvironment = use; });
  return ZoResult::ok;
}
