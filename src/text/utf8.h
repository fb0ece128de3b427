// Between UTF-16 and UTF-8, by fixed rules on every machine: each text has one result.
//
// Bytes that are no UTF-8 become U+FFFD: one for each longest beginning of a character that breaks
// off, one for each other byte. A surrogate that stands alone becomes U+FFFD, too. Sizes are
// counted first, so that the caller has room for exactly the result.
#pragma once

#include <cstddef>
#include <string_view>

namespace zo {

[[nodiscard]] std::size_t utf16Size(std::string_view bytes) noexcept;
void utf8ToUtf16(std::string_view bytes, wchar_t* out) noexcept;

// Stops at the first byte that belongs to no character, and returns how many bytes were taken: all
// of them, if all is well. `out` has room for as many units as there are bytes.
[[nodiscard]] std::size_t utf8ToUtf16Strictly(std::string_view bytes, wchar_t* out,
                                              std::size_t& units) noexcept;

[[nodiscard]] std::size_t utf8Size(std::wstring_view text) noexcept;
void utf16ToUtf8(std::wstring_view text, char* out) noexcept;

}  // namespace zo
