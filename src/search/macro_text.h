// Macros as texts: their names, what they stand for when they stand within one another, and the
// lines of a macro file (docs/macros.md).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "names/name_levels.h"
#include "names/name_parser.h"

namespace zo {

[[nodiscard]] bool mayBeMacro(std::wstring_view name) noexcept;

// Name and value of each line of a file; false when one is neither a macro, nor a comment, nor
// blank.
using MacroLines = std::vector<std::pair<std::wstring_view, std::wstring_view>>;
[[nodiscard]] bool readMacroLines(std::wstring_view text, MacroLines& lines);

// What a macro stands for in the end, `find(name, value)` telling what one stands for as it was
// given. False when that does not know one, and for a circle.
template <class Find>
[[nodiscard]] bool resolveMacro(std::wstring_view name, std::size_t maxDepth, std::wstring& value,
                                Find find) {
  if (!find(name, value)) return false;
  std::wstring scratch, inner;
  for (std::size_t depth = 1; value.starts_with(L'$'); ++depth) {
    const NameParts parts = parseName(value, {}, false, scratch);
    if (!parts.isSplit || parts.macro.empty()) return false;
    if (depth == maxDepth || !find(parts.macro, inner)) return false;
    std::wstring whole(withoutFinalDelimiters(inner));
    whole += parts.path;
    value = std::move(whole);
  }
  return !value.empty();
}

}  // namespace zo
