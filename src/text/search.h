// Finding a pattern in a text: forwards and backwards, exact and ignoring case.
//
// A vector of candidate positions is found by comparing the first and the last unit of the pattern,
// then each candidate is verified. Worst case is length times pattern length, as in every plain
// search.
#pragma once

#include <cstddef>
#include <string_view>

namespace zo {

inline constexpr size_t kNotFound = static_cast<size_t>(-1);

// The first or last position of a pattern that is not empty.
[[nodiscard]] size_t find(std::wstring_view text, std::wstring_view pattern) noexcept;
[[nodiscard]] size_t findBack(std::wstring_view text, std::wstring_view pattern) noexcept;
// The same ignoring case, unit by unit as the runtime's towlower has it.
[[nodiscard]] size_t findFolded(std::wstring_view text, std::wstring_view pattern) noexcept;
[[nodiscard]] size_t findBackFolded(std::wstring_view text, std::wstring_view pattern) noexcept;

// Whether two texts of one length are the same so compared.
[[nodiscard]] bool equalFolded(std::wstring_view a, std::wstring_view b) noexcept;

// The first position of any unit of a set.
[[nodiscard]] size_t findAnyOf(std::wstring_view text, std::wstring_view set) noexcept;

}  // namespace zo
