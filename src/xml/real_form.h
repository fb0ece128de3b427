// The values that XML and JSON write alike beside their digits. Needs no platform.
#pragma once

#include <zo/results.h>
#include <zo/text/number_text.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "text/code_units.h"
#include "variant/form_head.h"

namespace zo {

// Up to 16 hexadecimal digits and nothing else.
[[nodiscard]] inline bool readHex(std::wstring_view digits, std::uint64_t& number) noexcept {
  if (digits.empty() || digits.size() > 16) return false;
  number = 0;
  for (const wchar_t c : digits) {
    if (hexDigit(c) > 15) return false;
    number = number << 4 | hexDigit(c);
  }
  return true;
}

inline constexpr std::size_t kDigitsOfBits = 16;

// A number as JSON has them: no blanks, no plus sign, no zeros in front, and digits on both sides
// of a point. A whole one has neither point nor exponent.
[[nodiscard]] inline bool isPlainNumber(std::wstring_view text, bool isWhole) noexcept {
  std::size_t at = text.starts_with(L'-') ? 1 : 0;
  const auto take = [&](wchar_t a, wchar_t b) {
    const bool isThere = at < text.size() && (text[at] == a || text[at] == b);
    if (isThere) ++at;
    return isThere;
  };
  const auto digits = [&] {
    const std::size_t first = at;
    while (at < text.size() && isDigit(text[at])) ++at;
    return at > first;
  };
  if (!take(L'0', L'0') && !digits()) return false;
  if (isWhole) return at == text.size();
  if (take(L'.', L'.') && !digits()) return false;
  if (take(L'e', L'E')) {
    (void)take(L'+', L'-');
    if (!digits()) return false;
  }
  return at == text.size();
}

// "0x" and 16 hexadecimal digits.
[[nodiscard]] inline bool readAddress(std::wstring_view text, void*& address) noexcept {
  std::uint64_t number = 0;
  if (!text.starts_with(L"0x") || text.size() != 2 + kDigitsOfBits ||
      !readHex(text.substr(2), number))
    return false;
  address = reinterpret_cast<void*>(static_cast<std::uintptr_t>(number));
  return true;
}

inline constexpr std::uint64_t kPlainNan = 0x7FF8000000000000;

// A real with all its bits: as ZoRealToStr, and a not-a-number of other bits than the usual ones as
// "nan:" and 16 hexadecimal digits. Returns the length; the buffer has room for numbers.
[[nodiscard]] inline unsigned int writeReal(double value, wchar_t* buffer) noexcept {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  if (!std::isnan(value) || bits == kPlainNan) return ZoRealToStr(value, buffer);
  constexpr std::wstring_view kMark = L"nan:";
  kMark.copy(buffer, kMark.size());
  return static_cast<unsigned int>(writeHex(buffer + kMark.size(), bits, 16) - buffer);
}
[[nodiscard]] inline bool readReal(std::wstring_view text, double& value) noexcept {
  if (text.starts_with(L"nan")) {
    std::uint64_t bits = kPlainNan;
    if (text != L"nan" && !(text.starts_with(L"nan:") && text.size() == 4 + kDigitsOfBits &&
                            readHex(text.substr(4), bits)))
      return false;
    value = std::bit_cast<double>(bits);
    return std::isnan(value);
  }
  const bool isNegative = text.starts_with(L'-');
  if (text.substr(isNegative ? 1 : 0) == L"inf") {
    value = isNegative ? -HUGE_VAL : HUGE_VAL;
    return true;
  }
  return isPlainNumber(text, false) && ZoStrToReal(text, value) == ZoResult::ok;
}

// A head that is all of a text, with each flag once.
[[nodiscard]] inline bool readWholeHead(std::wstring_view text, FormHead& head) noexcept {
  FormHeadReader reader(text, 0);
  const std::size_t colon = std::min(text.find(L':'), text.size() - 1);
  return reader.read(head) && reader.position() == text.size() &&
         static_cast<std::size_t>(std::popcount(head.flags)) == text.size() - 1 - colon;
}

}  // namespace zo
