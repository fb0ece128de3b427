// Numbers as text and back, the same in every locale and on every machine.
//
// Reading takes the longest number that stands at the front of a text and says where it ends; a
// real is rounded to the nearest, ties to even, whatever its length. Writing gives the shortest
// text that reads back as exactly the same number; of two equally short ones, that without an
// exponent.
//
//   number   = [white space] [sign] ( digits [decimal [digits]] | decimal digits ) [exponent]
//            | [white space] [sign] ( "inf" | "infinity" | "nan" )      in any case
//   exponent = ("e" | "E") [sign] digits
//
// White space is blank, tab and the line ends; digits are 0 to 9. A grouping character is taken
// only inside the digits before the decimal character, after one to three of them and before every
// further three ("1,234,567"): a decimal comma written by mistake is not swallowed ("1,5" reads as
// 1).
//
// Errors:  the readers return 0; ZoResult::refused when no number stands there (the value is
//          untouched, the end 0); ZoResult::overflow when there is one but it is too large (the
//          value is then the nearest that there is: an infinity, or the largest integer of its
//          sign, and the end lies behind the number). What is too small for a real reads as zero.
// Threads: any.
// Cost:    linear in the length of the number; nothing is allocated.
#pragma once

#include <zo/config.h>
#include <zo/text/not_negative.h>
#include <zo/text/string.h>

#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace ZoResult {
inline constexpr int overflow = 4;  // a number, but too large
}

// end, where given, receives the position of the first character that was not taken.
[[nodiscard]] ZO_COM_API int ZoStrToReal(std::wstring_view text, double& value,
                                         unsigned int* end = nullptr, wchar_t decimal = L'.',
                                         wchar_t grouping = 0) noexcept;
// Likewise for whole numbers: no decimal character and no exponent are taken.
[[nodiscard]] ZO_COM_API int ZoStrToInt(std::wstring_view text, std::int64_t& value,
                                        unsigned int* end = nullptr, wchar_t grouping = 0) noexcept;

// Room for every number's text with its terminating zero.
inline constexpr unsigned int ZoNumberTextSize = 32;

// Write the text, zero-terminated, to a buffer of ZoNumberTextSize characters and return its
// length. What is not a number is "nan", without a sign; infinities are "inf" and "-inf".
ZO_COM_API unsigned int ZoRealToStr(double value, wchar_t* buffer, wchar_t decimal = L'.') noexcept;
ZO_COM_API unsigned int ZoIntToStr(std::int64_t value, wchar_t* buffer) noexcept;

[[nodiscard]] inline ZoString ZoRealToStr(double value, wchar_t decimal = L'.') {
  wchar_t buffer[ZoNumberTextSize];
  const unsigned int length = ZoRealToStr(value, buffer, decimal);
  return ZoString(buffer, length);
}
[[nodiscard]] inline ZoString ZoIntToStr(std::int64_t value) {
  wchar_t buffer[ZoNumberTextSize];
  const unsigned int length = ZoIntToStr(value, buffer);
  return ZoString(buffer, length);
}

// Unsigned numbers of 64 bits, up to the largest.
template <zo::PlainInteger Integer>
  requires(std::unsigned_integral<Integer> && sizeof(Integer) == sizeof(std::uint64_t))
unsigned int ZoIntToStr(Integer value, wchar_t* buffer) noexcept {
  const auto front = static_cast<std::int64_t>(value / 10);
  unsigned int length = front != 0 ? ZoIntToStr(front, buffer) : 0;
  buffer[length++] = static_cast<wchar_t>(L'0' + value % 10);
  buffer[length] = 0;
  return length;
}
template <zo::PlainInteger Integer>
  requires(std::unsigned_integral<Integer> && sizeof(Integer) == sizeof(std::uint64_t))
[[nodiscard]] ZoString ZoIntToStr(Integer value) {
  wchar_t buffer[ZoNumberTextSize];
  const unsigned int length = ZoIntToStr(value, buffer);
  return ZoString(buffer, length);
}

// clang-format off: the compiler shows the comment of the line that it refuses
template <class T, class... More>
  requires(std::is_arithmetic_v<T> && !zo::PlainInteger<T>)
void ZoIntToStr(T, More...) = delete;  // of a real ZoRealToStr; letters, truth values are no numbers
template <class T, class... More>
  requires(std::integral<T> && !zo::PlainInteger<T>)
void ZoRealToStr(T, More...) = delete;  // letters and truth values are no numbers
// clang-format on
