#include "search/macro_text.h"

#include <algorithm>

#include "text/code_units.h"

namespace zo {
namespace {

std::wstring_view trimmed(std::wstring_view text) noexcept {
  while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
  while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

bool mayBeMacro(std::wstring_view name) noexcept {
  return !name.empty() && name.find_first_of(std::wstring_view(L"'\"\0", 3)) == name.npos;
}

bool readMacroLines(std::wstring_view text, MacroLines& lines) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(L"\r\n"), text.size());
    const std::wstring_view line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line[0] == L';' || line[0] == L'#') continue;
    const std::size_t equals = std::min(line.find(L'='), line.size());
    const std::wstring_view name = trimmed(line.substr(0, equals));
    const std::wstring_view value = trimmed(line.substr(std::min(equals + 1, line.size())));
    if (!mayBeMacro(name) || value.empty() || value.find(L'\0') != value.npos) return false;
    lines.emplace_back(name, value);
  }
  return true;
}

}  // namespace zo
