// The units of strings as PCRE2 has them.
#pragma once

#include <string_view>

namespace zo {

[[nodiscard]] inline std::u16string_view unitsOf(std::wstring_view text) noexcept {
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  return {reinterpret_cast<const char16_t*>(text.data()), text.size()};
}
[[nodiscard]] inline std::wstring_view wideOf(std::u16string_view text) noexcept {
  return {reinterpret_cast<const wchar_t*>(text.data()), text.size()};
}

}  // namespace zo
