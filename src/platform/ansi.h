// Text to and from an 8-bit code page. Code page 0 is the system's ANSI code page.
#pragma once

#include <string>
#include <string_view>

namespace zo {

inline constexpr unsigned int kAnsiCodePage = 0;

// Bytes for text, best fit allowed (flags 0), without a terminator. Throws std::bad_alloc;
// std::length_error where the text or its bytes pass the platform's limit of 2^31 - 1.
[[nodiscard]] std::string toMultiByte(std::wstring_view text,
                                      unsigned int codePage = kAnsiCodePage);
// Text for bytes; what the code page does not define becomes its replacement.
[[nodiscard]] std::wstring fromMultiByte(std::string_view bytes,
                                         unsigned int codePage = kAnsiCodePage);

// Whether the code page holds this one character (a unit, or a surrogate pair): it comes back as it
// was, without best fit. A lone surrogate fits in no code page.
[[nodiscard]] bool fitsCodePage(std::wstring_view character,
                                unsigned int codePage = kAnsiCodePage) noexcept;

}  // namespace zo
