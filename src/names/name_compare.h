// How file names compare: unit by unit after lowerCase, so ignoring case, in every locale alike.
#pragma once

#include <cstddef>
#include <string_view>

namespace zo {

[[nodiscard]] bool equalOfSize(const wchar_t* a, const wchar_t* b, std::size_t size) noexcept;
[[nodiscard]] inline bool equalNames(std::wstring_view a, std::wstring_view b) noexcept {
  return a.size() == b.size() && equalOfSize(a.data(), b.data(), a.size());
}
// Negative, 0 or positive; 0 exactly when equalNames.
[[nodiscard]] int orderNames(std::wstring_view a, std::wstring_view b) noexcept;
// Equal names have equal hashes.
[[nodiscard]] std::size_t hashName(std::wstring_view name) noexcept;

}  // namespace zo
