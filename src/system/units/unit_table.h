// The units of each physical type code.
#pragma once

#include <zo/variant/type_code.h>

#include <span>
#include <string_view>

#include "system/units/wide_real.h"

namespace zo {

// One unit is (numerator / denominator) * 10^exponent internal units, times pi where angles ask it.
struct Unit {
  static constexpr int kNames = 4;
  const wchar_t*
      names[kNames];  // the first is its own, the others are read as well; null at the end
  std::int64_t numerator = 1;
  int exponent = 0;
  std::int64_t denominator = 1;
  bool timesPi = false;
  // The name of the smaller unit that may follow it in one value: 5 ft 3 in.
  const wchar_t* smaller = nullptr;

  // Numbers in it and in the internal unit differ by the decimal point only.
  [[nodiscard]] constexpr bool isPowerOfTen() const noexcept {
    return numerator == 1 && denominator == 1 && !timesPi;
  }
  [[nodiscard]] constexpr Wide factor() const noexcept {
    constexpr Wide kPi{3.141592653589793116, 1.2246467991473532072e-16};
    const Wide value = timesTenTo(wideOf(numerator) / wideOf(denominator), exponent);
    return timesPi ? value * kPi : value;
  }
};

// One physical quantity: the internal unit comes first.
struct Quantity {
  std::span<const Unit> units;
  std::span<const Wide> factors;  // of each unit
};

// How many quantities there are; one per code from Real to Resistance.
inline constexpr int kQuantities = 19;
// Which quantity a code measures, or -1 when it is not a real code. Reals without a meaning of their
// own are pure numbers.
[[nodiscard]] int quantityIndex(ZoTypeCode code) noexcept;
[[nodiscard]] const Quantity& quantity(int index) noexcept;

// A unit as it is called by one of its names; names are told apart by case where that matters (MN
// and mN), and otherwise not.
struct NamedUnit {
  const Unit* unit = nullptr;  // null: there is none
  Wide factor;
  const wchar_t* name = nullptr;

  explicit operator bool() const noexcept { return unit != nullptr; }
};
[[nodiscard]] NamedUnit internalUnit(const Quantity& quantity) noexcept;
[[nodiscard]] NamedUnit findUnit(const Quantity& quantity, std::wstring_view name) noexcept;
// The unit with the longest name at the front of text, which no letter follows.
[[nodiscard]] NamedUnit unitAt(const Quantity& quantity, std::wstring_view text) noexcept;

}  // namespace zo
