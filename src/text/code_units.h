// UTF-16 units one at a time: the classes, case and digits of ASCII, and the halves of pairs. No
// locale is asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zo {

[[nodiscard]] constexpr bool isDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
[[nodiscard]] constexpr bool isUpper(wchar_t c) noexcept { return c >= L'A' && c <= L'Z'; }
[[nodiscard]] constexpr bool isLetter(wchar_t c) noexcept {
  return (c >= L'a' && c <= L'z') || isUpper(c);
}
[[nodiscard]] constexpr bool isWhite(wchar_t c) noexcept {
  return c == L' ' || (c >= L'\t' && c <= L'\r');
}

[[nodiscard]] constexpr wchar_t lowerAscii(wchar_t c) noexcept {
  return isUpper(c) ? static_cast<wchar_t>(c | 0x20) : c;
}
[[nodiscard]] constexpr wchar_t upperAscii(wchar_t c) noexcept {
  return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c & ~0x20) : c;
}

// ---- Hexadecimal digits ----

inline constexpr std::wstring_view kHexDigits = L"0123456789ABCDEF";
inline constexpr std::wstring_view kLowerHexDigits = L"0123456789abcdef";

// The value of a digit in either case; 16 for any other unit.
[[nodiscard]] constexpr unsigned int hexDigit(wchar_t c) noexcept {
  if (isDigit(c)) return static_cast<unsigned int>(c - L'0');
  const wchar_t upper = upperAscii(c);
  return upper >= L'A' && upper <= L'F' ? static_cast<unsigned int>(upper - L'A') + 10 : 16;
}

// Writes the lowest `count` digits of the value; returns the end of what it wrote.
constexpr wchar_t* writeHex(wchar_t* to, std::uint64_t value, int count,
                            std::wstring_view digits = kHexDigits) noexcept {
  for (int shift = 4 * (count - 1); shift >= 0; shift -= 4) *to++ = digits[value >> shift & 15];
  return to;
}

// ---- Surrogates ----

[[nodiscard]] constexpr bool isHighSurrogate(wchar_t c) noexcept { return (c & 0xFC00) == 0xD800; }
[[nodiscard]] constexpr bool isLowSurrogate(wchar_t c) noexcept { return (c & 0xFC00) == 0xDC00; }
[[nodiscard]] constexpr bool isSurrogate(wchar_t c) noexcept { return (c & 0xF800) == 0xD800; }

// The units of the first character of a text that is not empty: a pair, or one unit.
[[nodiscard]] constexpr std::wstring_view firstCharacter(std::wstring_view text) noexcept {
  const bool isPair = text.size() > 1 && isHighSurrogate(text[0]) && isLowSurrogate(text[1]);
  return text.substr(0, isPair ? 2 : 1);
}

}  // namespace zo
