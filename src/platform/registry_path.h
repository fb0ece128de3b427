// Paths of registry keys.
#pragma once

#include <string>
#include <string_view>

namespace zo {

// The path without its empty levels, which count for nothing wherever they stand.
[[nodiscard]] std::wstring withoutEmptyLevels(std::wstring_view path);

}  // namespace zo
