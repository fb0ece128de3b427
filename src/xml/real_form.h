// The values that XML and JSON write alike beside their digits. Needs no platform.
#pragma once

#include <zo/results.h>
#include <zo/text/number_text.h>

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

// "0x" and up to 16 hexadecimal digits.
[[nodiscard]] inline bool readAddress(std::wstring_view text, void*& address) noexcept {
  std::uint64_t number = 0;
  if (!text.starts_with(L"0x") || !readHex(text.substr(2), number)) return false;
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
    if (text != L"nan" && !(text.starts_with(L"nan:") && readHex(text.substr(4), bits)))
      return false;
    value = std::bit_cast<double>(bits);
    return std::isnan(value);
  }
  unsigned int end = 0;
  return ZoStrToReal(text, value, &end) == ZoResult::ok && end == text.size();
}

// A head that is all of a text.
[[nodiscard]] inline bool readWholeHead(std::wstring_view text, FormHead& head) noexcept {
  FormHeadReader reader(text, 0);
  return reader.read(head) && reader.position() == text.size();
}

}  // namespace zo
