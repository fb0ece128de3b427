#include "search/macro_table.h"

#include <iterator>

namespace zo {
namespace {

using Values = std::vector<MacroState::Value>;

bool dropModule(Values& values, std::wstring_view module) {
  return std::erase_if(values, [&](const MacroState::Value& value) {
           return equalNames(value.module, module);
         }) > 0;
}

}  // namespace

void setMacro(MacroState& state, std::wstring_view name, std::wstring_view value,
              std::wstring_view module) {
  const auto found = state.macros.find(name);
  Values& values = found == state.macros.end() ? state.macros[std::wstring(name)] : found->second;
  dropModule(values, module);
  values.push_back({std::wstring(value), std::wstring(module)});
}

bool removeMacro(MacroState& state, std::wstring_view name, std::wstring_view module) {
  const auto found = state.macros.find(name);
  if (found == state.macros.end() || !dropModule(found->second, module)) return false;
  if (found->second.empty()) state.macros.erase(found);
  return true;
}

void releaseMacros(MacroState& state, std::wstring_view module) {
  for (auto macro = state.macros.begin(); macro != state.macros.end();) {
    dropModule(macro->second, module);
    macro = macro->second.empty() ? state.macros.erase(macro) : std::next(macro);
  }
}

}  // namespace zo
