// Whether a file name fits a pattern of * and ?, ignoring case as file names do.
//
// As the platform has it: "*.*" fits every name, a final ".*" also a name without an extension, and
// a final "." only such a name. Other than there, names alone are asked, never short aliases.
#pragma once

#include <string_view>

namespace zo {

// Of any other names: * is any number of any characters, ? any one, the rest itself in either case.
[[nodiscard]] bool fitsPattern(std::wstring_view name, std::wstring_view pattern) noexcept;

[[nodiscard]] bool fitsWildcard(std::wstring_view name, std::wstring_view pattern) noexcept;
// One of several patterns with semicolons between them; of none, nothing fits.
[[nodiscard]] bool fitsAnyWildcard(std::wstring_view name, std::wstring_view patterns) noexcept;

}  // namespace zo
