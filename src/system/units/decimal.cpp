// A real is printed in a unit with the fewest digits that read back as the same real, and read with
// one rounding. Units that are powers of ten only move the decimal point, which costs no digit;
// all others are multiplied in Wide, which keeps more digits than are ever shown.
#include "system/units/decimal.h"

#include <zo/text/number_text.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "text/code_units.h"

namespace zo {
namespace {

constexpr double kSmallest = 1e-270;  // of what Wide is trusted with
constexpr double kLargest = 1e270;
constexpr std::int64_t kLimit = 1'000'000'000'000'000'000;  // 10^Decimal::kDigits

void dropZeros(Decimal& number) noexcept {
  while (number.digits != 0 && number.digits % 10 == 0) {
    number.digits /= 10;
    ++number.exponent;
  }
}

// digits * 10^exponent, rounded to nearest whatever the size.
double nearestReal(const Decimal& number) noexcept {
  const auto digits = static_cast<double>(number.digits);
  if (number.digits < (std::int64_t{1} << 53) &&
      std::abs(number.exponent) <= detail::TenPowers::kExact) {
    const double power = detail::kTenPowers.exact[std::abs(number.exponent)];
    return number.exponent < 0 ? digits / power : digits * power;
  }
  wchar_t text[2 * ZoNumberTextSize];
  unsigned int length = ZoIntToStr(number.digits, text);
  text[length++] = L'e';
  length += ZoIntToStr(number.exponent, text + length);
  double value = 0;
  static_cast<void>(ZoStrToReal({text, length}, value));
  return value;
}

Decimal shortestOf(double magnitude) noexcept {
  wchar_t text[ZoNumberTextSize];
  const unsigned int length = ZoRealToStr(magnitude, text);
  return readDecimal({text, length}, L'.');
}

// The nearest decimal of kDigits digits to a wide number, which is not 0.
Decimal longestOf(Wide number) noexcept {
  const int magnitude = static_cast<int>(std::floor(std::log10(number.hi)));
  Decimal result;
  result.exponent = magnitude - (Decimal::kDigits - 1);
  result.digits = nearestWhole(timesTenTo(number, -result.exponent));
  // The logarithm may be one too small next to a power of ten.
  if (result.digits >= kLimit) {
    ++result.exponent;
    result.digits = nearestWhole(timesTenTo(number, -result.exponent));
  }
  return result;
}

Decimal rounded(Decimal number, int dropped) noexcept {
  std::int64_t unit = 1;
  for (int i = 0; i < dropped; ++i) unit *= 10;
  number.digits = (number.digits + unit / 2) / unit;
  number.exponent += dropped;
  dropZeros(number);
  return number;
}

}  // namespace

bool toFixed(double magnitude, const NamedUnit& unit, int decimals, Decimal& number) noexcept {
  if (magnitude > kLargest) return false;
  // So little is nothing in any unit and at any precision.
  if (magnitude < kSmallest) {
    number = {0, -decimals};
    return true;
  }
  const Wide scaled = unit.unit->isPowerOfTen()
                          ? timesTenTo(Wide(magnitude), decimals - unit.unit->exponent)
                          : timesTenTo(Wide(magnitude) / unit.factor, decimals);
  if (scaled.hi >= static_cast<double>(kLimit)) return false;
  number = {nearestWhole(scaled), -decimals};
  return number.digits < kLimit;
}

Decimal toShortest(double magnitude, const NamedUnit& unit) noexcept {
  if (magnitude == 0) return {};
  Decimal longest;
  if (unit.unit->isPowerOfTen()) {
    longest = shortestOf(magnitude);
    longest.exponent -= unit.unit->exponent;
    // Large whole numbers come with all their digits.
    if (longest.digits < kLimit / 10) return longest;
  } else {
    if (magnitude < kSmallest || magnitude > kLargest)
      return shortestOf(magnitude / unit.factor.hi);
    longest = longestOf(Wide(magnitude) / unit.factor);
  }
  for (int dropped = 3; dropped > 0; --dropped) {
    const Decimal shorter = rounded(longest, dropped);
    if (toInternal(shorter, unit) == magnitude) return shorter;
  }
  return rounded(longest, 0);
}

double toInternal(const Decimal& number, const NamedUnit& unit) noexcept {
  if (unit.unit->isPowerOfTen())
    return nearestReal({number.digits, number.exponent + unit.unit->exponent});
  if (!number.fitsWide()) return nearestReal(number) * unit.factor.hi;
  return (number.wide() * unit.factor).hi;
}

unsigned int writeDecimal(const Decimal& number, const DecimalLayout& layout,
                          wchar_t* buffer) noexcept {
  Decimal shown = number;
  if (layout.trimZeros && shown.exponent < 0) {
    while (shown.exponent < 0 && shown.digits % 10 == 0) {
      shown.digits /= 10;
      ++shown.exponent;
    }
  }
  wchar_t digits[ZoNumberTextSize];
  const int count = static_cast<int>(ZoIntToStr(shown.digits, digits));
  const int point = count + shown.exponent;  // digits before the decimal character
  wchar_t* out = buffer;
  const auto put = [&](int from, int to) {
    for (int i = from; i < to; ++i) *out++ = i < count ? digits[i] : L'0';
  };
  if (layout.exponents && (point > 21 || point < -6)) {
    put(0, 1);
    if (count > 1) {
      *out++ = layout.decimal;
      put(1, count);
    }
    *out++ = L'e';
    *out++ = point > 0 ? L'+' : L'-';
    out += ZoIntToStr(std::abs(point - 1), out);
    return static_cast<unsigned int>(out - buffer);
  }
  if (point <= 0) *out++ = L'0';
  for (int i = 0; i < point; ++i) {
    if (i > 0 && layout.grouping && (point - i) % 3 == 0) *out++ = layout.grouping;
    put(i, i + 1);
  }
  if (shown.exponent < 0) {
    *out++ = layout.decimal;
    for (int i = point; i < 0; ++i) *out++ = L'0';
    put(std::max(point, 0), count);
  }
  *out = 0;
  return static_cast<unsigned int>(out - buffer);
}

Decimal readDecimal(std::wstring_view text, wchar_t decimal) noexcept {
  Decimal number;
  bool fraction = false;
  size_t i = 0;
  for (; i < text.size() && lowerAscii(text[i]) != L'e'; ++i) {
    const wchar_t c = text[i];
    if (c == decimal) {
      fraction = true;
    } else if (isDigit(c)) {  // anything else is white space or a grouping character
      if (number.digits < kLimit / 10) {
        number.digits = number.digits * 10 + (c - L'0');
        number.exponent -= fraction;
      } else {
        number.exponent += !fraction;
      }
    }
  }
  if (i < text.size()) {
    std::int64_t exponent = 0;
    static_cast<void>(ZoStrToInt(text.substr(i + 1), exponent));
    number.exponent += static_cast<int>(std::clamp<std::int64_t>(exponent, -100'000, 100'000));
  }
  return number;
}

}  // namespace zo
