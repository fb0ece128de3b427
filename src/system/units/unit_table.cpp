// The units themselves, as constants, and how names are found. Factors are whole numbers and powers
// of ten, as the definitions have them, so that none is rounded before it is used.
// docs/units.md lists the table for users, with the sources of the factors.
#include "system/units/unit_table.h"

#include <array>
#include <cwchar>

#include "text/code_units.h"

namespace zo {
namespace {

constexpr std::int64_t kPound = 45359237;             // * 10^-8 kg
constexpr std::int64_t kPoundForce = 44482216152605;  // * 10^-13 N
constexpr std::int64_t kKilopond = 980665;            // * 10^-5 N

constexpr Unit kNumber[] = {{{L""}, 1}, {{L"%"}, 1, -2}};

constexpr Unit kLength[] = {
    {{L"mm"}, 1},
    {{L"um", L"\u00B5m", L"\u03BCm"}, 1, -3},
    {{L"nm"}, 1, -6},
    {{L"cm"}, 1, 1},
    {{L"dm"}, 1, 2},
    {{L"m"}, 1, 3},
    {{L"km"}, 1, 6},
    {{L"in", L"\"", L"\u2033", L"''"}, 254, -1},
    {{L"ft", L"'", L"\u2032"}, 3048, -1, 1, false, L"in"},
    {{L"yd"}, 9144, -1},
    {{L"mi"}, 1609344},
    {{L"mil", L"thou"}, 254, -4},
};
constexpr Unit kAngle[] = {
    {{L"rad"}, 1},
    {{L"mrad"}, 1, -3},
    {{L"deg", L"\u00B0", L"d"}, 1, 0, 180, true, L"'"},
    {{L"'", L"\u2032", L"arcmin"}, 1, 0, 10800, true, L"\""},
    {{L"\"", L"\u2033", L"''", L"arcsec"}, 1, 0, 648000, true},
    {{L"gon", L"grad"}, 1, 0, 200, true},
    {{L"rev", L"turn"}, 2, 0, 1, true},
};
constexpr Unit kTime[] = {
    {{L"s", L"sec"}, 1},
    {{L"ms"}, 1, -3},
    {{L"us", L"\u00B5s", L"\u03BCs"}, 1, -6},
    {{L"ns"}, 1, -9},
    {{L"min"}, 60, 0, 1, false, L"s"},
    {{L"h", L"hr"}, 3600, 0, 1, false, L"min"},
    {{L"d", L"day"}, 86400, 0, 1, false, L"h"},
};
constexpr Unit kMass[] = {
    {{L"kg"}, 1},
    {{L"g"}, 1, -3},
    {{L"mg"}, 1, -6},
    {{L"t"}, 1, 3},
    {{L"lb", L"lbm"}, kPound, -8, 1, false, L"oz"},
    {{L"oz"}, kPound, -8, 16},
};
constexpr Unit kArea[] = {
    {{L"mm2", L"mm\u00B2", L"mm^2"}, 1},
    {{L"cm2", L"cm\u00B2", L"cm^2"}, 1, 2},
    {{L"dm2", L"dm\u00B2", L"dm^2"}, 1, 4},
    {{L"m2", L"m\u00B2", L"m^2"}, 1, 6},
    {{L"ha"}, 1, 10},
    {{L"in2", L"in\u00B2", L"in^2"}, 64516, -2},
    {{L"ft2", L"ft\u00B2", L"ft^2"}, 9290304, -2},
    {{L"yd2", L"yd\u00B2", L"yd^2"}, 83612736, -2},
};
constexpr Unit kVolume[] = {
    {{L"mm3", L"mm\u00B3", L"mm^3"}, 1},
    {{L"cm3", L"cm\u00B3", L"cm^3", L"ml"}, 1, 3},
    {{L"dm3", L"dm\u00B3", L"dm^3", L"l"}, 1, 6},
    {{L"m3", L"m\u00B3", L"m^3"}, 1, 9},
    {{L"in3", L"in\u00B3", L"in^3"}, 16387064, -3},
    {{L"ft3", L"ft\u00B3", L"ft^3"}, 28316846592, -3},
    {{L"gal"}, 3785411784, -3},
};
constexpr Unit kForce[] = {
    {{L"N"}, 1},
    {{L"mN"}, 1, -3},
    {{L"daN"}, 1, 1},
    {{L"kN"}, 1, 3},
    {{L"MN"}, 1, 6},
    {{L"kgf", L"kp"}, kKilopond, -5},
    {{L"lbf"}, kPoundForce, -13},
    {{L"kip"}, kPoundForce, -10},
};
constexpr Unit kSpringRate[] = {
    {{L"N/mm"}, 1},
    {{L"N/m"}, 1, -3},
    {{L"kN/m"}, 1, 0},
    {{L"kN/mm"}, 1, 3},
    {{L"kgf/mm", L"kp/mm"}, kKilopond, -5},
    {{L"lbf/in"}, kPoundForce, -12, 254},
    {{L"lbf/ft"}, kPoundForce, -12, 3048},
};
constexpr Unit kPressure[] = {
    {{L"N/mm2", L"N/mm\u00B2", L"N/mm^2"}, 1},
    {{L"MPa"}, 1, 0},
    {{L"Pa", L"N/m2", L"N/m\u00B2", L"N/m^2"}, 1, -6},
    {{L"hPa"}, 1, -4},
    {{L"kPa"}, 1, -3},
    {{L"GPa"}, 1, 3},
    {{L"bar"}, 1, -1},
    {{L"mbar"}, 1, -4},
    {{L"atm"}, 101325, -6},
    {{L"psi", L"lbf/in2", L"lbf/in\u00B2", L"lbf/in^2"}, kPoundForce, -11, 64516},
    {{L"ksi"}, kPoundForce, -8, 64516},
};
constexpr Unit kDensity[] = {
    {{L"kg/mm3", L"kg/mm\u00B3", L"kg/mm^3"}, 1},
    {{L"kg/dm3", L"kg/dm\u00B3", L"kg/dm^3", L"kg/l"}, 1, -6},
    {{L"kg/m3", L"kg/m\u00B3", L"kg/m^3"}, 1, -9},
    {{L"g/cm3", L"g/cm\u00B3", L"g/cm^3"}, 1, -6},
    {{L"t/m3", L"t/m\u00B3", L"t/m^3"}, 1, -6},
    {{L"lb/in3", L"lb/in\u00B3", L"lb/in^3"}, kPound, -5, 16387064},
    {{L"lb/ft3", L"lb/ft\u00B3", L"lb/ft^3"}, kPound, -5, 28316846592},
};
constexpr Unit kSpeed[] = {
    {{L"mm/s"}, 1},
    {{L"mm/min"}, 1, -1, 6},
    {{L"m/s"}, 1, 3},
    {{L"m/min"}, 1, 2, 6},
    {{L"km/h"}, 1, 4, 36},
    {{L"in/s"}, 254, -1},
    {{L"in/min"}, 254, -2, 6},
    {{L"ft/s"}, 3048, -1},
    {{L"ft/min"}, 3048, -2, 6},
    {{L"mph", L"mi/h"}, 1609344, -2, 36},
    {{L"kn"}, 1852, 1, 36},
};
constexpr Unit kPower[] = {
    {{L"W"}, 1},
    {{L"mW"}, 1, -3},
    {{L"kW"}, 1, 3},
    {{L"MW"}, 1, 6},
    {{L"PS"}, 75 * kKilopond, -5},
    {{L"hp"}, 74569987158227022, -14},
};
constexpr Unit kTorque[] = {
    {{L"Nmm", L"N*mm", L"N\u00B7mm"}, 1},
    {{L"Ncm", L"N*cm", L"N\u00B7cm"}, 1, 1},
    {{L"Nm", L"N*m", L"N\u00B7m"}, 1, 3},
    {{L"kNm", L"kN*m", L"kN\u00B7m"}, 1, 6},
    {{L"kgf*m", L"kgf\u00B7m", L"kpm"}, kKilopond, -2},
    {{L"lbf*in", L"lbf\u00B7in", L"in*lbf"}, kPoundForce * 254, -14},
    {{L"lbf*ft", L"lbf\u00B7ft", L"ft*lbf"}, kPoundForce * 3048, -14},
};
constexpr Unit kLinearDensity[] = {
    {{L"kg/mm"}, 1},
    {{L"kg/m"}, 1, -3},
    {{L"g/mm"}, 1, -3},
    {{L"g/m"}, 1, -6},
    {{L"lb/in"}, kPound, -7, 254},
    {{L"lb/ft"}, kPound, -7, 3048},
};
constexpr Unit kVoltage[] = {
    {{L"V"}, 1},
    {{L"uV", L"\u00B5V", L"\u03BCV"}, 1, -6},
    {{L"mV"}, 1, -3},
    {{L"kV"}, 1, 3},
};
constexpr Unit kCurrent[] = {
    {{L"A"}, 1},
    {{L"uA", L"\u00B5A", L"\u03BCA"}, 1, -6},
    {{L"mA"}, 1, -3},
    {{L"kA"}, 1, 3},
};
constexpr Unit kResistance[] = {
    {{L"Ohm", L"\u2126", L"\u03A9"}, 1},
    {{L"mOhm", L"m\u2126", L"m\u03A9"}, 1, -3},
    {{L"kOhm", L"k\u2126", L"k\u03A9"}, 1, 3},
    {{L"MOhm", L"M\u2126", L"M\u03A9"}, 1, 6},
};

template <const auto& units>
constexpr auto kFactors = [] {
  std::array<Wide, std::size(units)> factors;
  for (size_t i = 0; i < factors.size(); ++i) factors[i] = units[i].factor();
  return factors;
}();

template <const auto& units>
constexpr Quantity kQuantity{.units = units, .factors = kFactors<units>};

// In the order of the codes.
constexpr Quantity kTable[] = {
    kQuantity<kNumber>,     kQuantity<kLength>,   kQuantity<kAngle>,      kQuantity<kTime>,
    kQuantity<kMass>,       kQuantity<kArea>,     kQuantity<kVolume>,     kQuantity<kForce>,
    kQuantity<kSpringRate>, kQuantity<kPressure>, kQuantity<kDensity>,    kQuantity<kSpeed>,
    kQuantity<kPower>,      kQuantity<kTorque>,   kQuantity<kNumber>,     kQuantity<kLinearDensity>,
    kQuantity<kVoltage>,    kQuantity<kCurrent>,  kQuantity<kResistance>,
};
static_assert(std::size(kTable) == kQuantities);
static_assert(static_cast<int>(ZoTypeCode::Resistance) - static_cast<int>(ZoTypeCode::Real) + 1 ==
              kQuantities);

constexpr bool isWordCharacter(wchar_t c) noexcept { return isLetter(c) || c >= 0x370; }

enum class Match { None, Folded, Exact };

Match frontMatch(std::wstring_view text, const wchar_t* name) noexcept {
  Match match = Match::Exact;
  for (size_t i = 0; name[i] != 0; ++i) {
    if (i == text.size() || lowerAscii(text[i]) != lowerAscii(name[i])) return Match::None;
    if (text[i] != name[i]) match = Match::Folded;
  }
  return match;
}

// The unit with the longest name at the front of text; of equally long ones the exact one, and none
// when that leaves a choice.
NamedUnit longestAt(const Quantity& quantity, std::wstring_view text) noexcept {
  NamedUnit best;
  size_t bestLength = 0;
  Match bestMatch = Match::None;
  bool ambiguous = false;
  for (size_t i = 0; i < quantity.units.size(); ++i) {
    for (const wchar_t* const name : quantity.units[i].names) {
      if (!name) break;
      const Match match = frontMatch(text, name);
      if (match == Match::None) continue;
      const size_t length = std::wcslen(name);
      const bool cutsWord = length > 0 && length < text.size() && isWordCharacter(text[length]) &&
                            isWordCharacter(name[length - 1]);
      if (cutsWord || length < bestLength || (length == bestLength && match < bestMatch)) continue;
      ambiguous = length == bestLength && match == bestMatch && best.unit != &quantity.units[i];
      best = {.unit = &quantity.units[i], .factor = quantity.factors[i], .name = name};
      bestLength = length;
      bestMatch = match;
    }
  }
  return ambiguous ? NamedUnit() : best;
}

}  // namespace

int quantityIndex(ZoTypeCode code) noexcept {
  switch (code) {
    case ZoTypeCode::XDistance:
      return static_cast<int>(ZoTypeCode::Length) - static_cast<int>(ZoTypeCode::Real);
    case ZoTypeCode::XReal:
    case ZoTypeCode::XScale:
      return 0;
    default: {
      const int index = static_cast<int>(code) - static_cast<int>(ZoTypeCode::Real);
      if (index < 0 || index > 0xFF) return -1;
      return index < kQuantities ? index : 0;
    }
  }
}

const Quantity& quantity(int index) noexcept { return kTable[index]; }

NamedUnit internalUnit(const Quantity& quantity) noexcept {
  const Unit& first = quantity.units.front();
  return {.unit = &first, .factor = quantity.factors.front(), .name = first.names[0]};
}

NamedUnit findUnit(const Quantity& quantity, std::wstring_view name) noexcept {
  const NamedUnit found = longestAt(quantity, name);
  return found && std::wcslen(found.name) == name.size() ? found : NamedUnit();
}

NamedUnit unitAt(const Quantity& quantity, std::wstring_view text) noexcept {
  const NamedUnit found = longestAt(quantity, text);
  return found && *found.name != 0 ? found : NamedUnit();
}

}  // namespace zo
