// Decimal numbers between text and doubles: how the units service holds what it prints and reads.
#pragma once

#include <cstdint>
#include <string_view>

#include "system/units/unit_table.h"

namespace zo {

// digits * 10^exponent.
struct Decimal {
  static constexpr int kDigits = 18;
  std::int64_t digits = 0;  // below 10^kDigits
  int exponent = 0;

  // Whether it and its products with factors of units lie in the range of Wide.
  [[nodiscard]] bool fitsWide() const noexcept { return exponent >= -285 && exponent <= 270; }
  [[nodiscard]] Wide wide() const noexcept { return timesTenTo(wideOf(digits), exponent); }
};

// ---- All magnitudes are 0 or more, and finite ----

// The decimal that is nearest to a magnitude in a unit, with so many decimals. False when it takes
// more than kDigits digits.
[[nodiscard]] bool toFixed(double magnitude, const NamedUnit& unit, int decimals,
                           Decimal& number) noexcept;
// The shortest decimal that toInternal turns back into exactly this magnitude.
[[nodiscard]] Decimal toShortest(double magnitude, const NamedUnit& unit) noexcept;
// The magnitude that a decimal in a unit stands for, rounded to nearest.
[[nodiscard]] double toInternal(const Decimal& number, const NamedUnit& unit) noexcept;

// How a decimal is written.
struct DecimalLayout {
  wchar_t decimal = L'.';
  wchar_t grouping = 0;
  bool trimZeros = false;
  bool exponents = false;  // for numbers from 1e21 on and below 1e-7
};
inline constexpr unsigned int kDecimalText = 64;
// Writes to a buffer of kDecimalText characters; returns the length.
unsigned int writeDecimal(const Decimal& number, const DecimalLayout& layout,
                          wchar_t* buffer) noexcept;

// The decimal of a number's text that ZoStrToReal took, without its sign.
[[nodiscard]] Decimal readDecimal(std::wstring_view text, wchar_t decimal) noexcept;

}  // namespace zo
