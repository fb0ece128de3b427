// Reals of twice the precision, as the sum of two doubles (about 106 bits): what a unit's factor is
// held and multiplied in, so that a conversion's only rounding is the last one.
//
// Good for magnitudes from 1e-280 to 1e280; nothing is checked. Rests on each operation being
// rounded to double: not for a compiler that is told to reorder or fuse them.
#pragma once

#include <cmath>
#include <cstdint>

namespace zo {

struct Wide {
  double hi = 0;
  double lo = 0;  // at most half a unit in the last place of hi
};

// a + b where |a| >= |b|, or a is 0.
constexpr Wide quickSum(double a, double b) noexcept {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

constexpr Wide exactSum(double a, double b) noexcept {
  const double sum = a + b;
  const double part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

// The factors are cut into halves of 26 bits, whose products are exact.
constexpr Wide exactProduct(double a, double b) noexcept {
  constexpr double kSplit = 134217729;  // 2^27 + 1
  const double aBig = a * kSplit;
  const double aHigh = aBig - (aBig - a);
  const double aLow = a - aHigh;
  const double bBig = b * kSplit;
  const double bHigh = bBig - (bBig - b);
  const double bLow = b - bHigh;
  const double product = a * b;
  return {product, ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
}

constexpr Wide operator+(Wide a, Wide b) noexcept {
  const Wide sum = exactSum(a.hi, b.hi);
  const Wide rest = exactSum(a.lo, b.lo);
  const Wide most = quickSum(sum.hi, sum.lo + rest.hi);
  return quickSum(most.hi, most.lo + rest.lo);
}

constexpr Wide operator-(Wide a) noexcept { return {-a.hi, -a.lo}; }

constexpr Wide operator*(Wide a, Wide b) noexcept {
  const Wide product = exactProduct(a.hi, b.hi);
  return quickSum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

constexpr Wide operator/(Wide a, Wide b) noexcept {
  const double first = a.hi / b.hi;
  const Wide rest = a + -(b * Wide{first});
  const double second = rest.hi / b.hi;
  const Wide rest2 = rest + -(b * Wide{second});
  return quickSum(first, second) + Wide{rest2.hi / b.hi};
}

// Exact.
constexpr Wide wideOf(std::int64_t n) noexcept {
  const double high = static_cast<double>(n / 4294967296) * 4294967296.0;
  return exactSum(high, static_cast<double>(n % 4294967296));
}

// The nearest whole number, halves away from zero; n >= 0 and below 9.2e18.
inline std::int64_t nearestWhole(Wide n) noexcept {
  const double high = std::floor(n.hi);
  const double low = std::floor(n.lo);
  const double rest = (n.hi - high) + (n.lo - low);
  const std::int64_t whole = static_cast<std::int64_t>(high) + static_cast<std::int64_t>(low);
  return whole + (rest >= 1.5 ? 2 : rest >= 0.5 ? 1 : 0);
}

namespace detail {
struct TenPowers {
  static constexpr int kExact = 22;  // 10^22 is the last power of ten that a double holds
  static constexpr int kCount = 9;
  double exact[kExact + 1];
  Wide power[kCount];  // 10^1, 10^2, 10^4, ... 10^256
  constexpr TenPowers() {
    exact[0] = 1;
    for (int i = 1; i <= kExact; ++i) exact[i] = exact[i - 1] * 10;
    power[0] = {10};
    for (int i = 1; i < kCount; ++i) power[i] = power[i - 1] * power[i - 1];
  }
};
inline constexpr TenPowers kTenPowers;

// exponent from 0 to 300.
constexpr Wide tenTo(int exponent) noexcept {
  if (exponent <= TenPowers::kExact) return {kTenPowers.exact[exponent]};
  Wide power{1};
  for (int i = 0; exponent != 0; ++i, exponent >>= 1)
    if (exponent & 1) power = power * kTenPowers.power[i];
  return power;
}
}  // namespace detail

// value * 10^exponent, for exponents from -300 to 300.
constexpr Wide timesTenTo(Wide value, int exponent) noexcept {
  return exponent < 0 ? value / detail::tenTo(-exponent) : value * detail::tenTo(exponent);
}

}  // namespace zo
