// What both directions need first: whether a format is one, and which unit it means. And what needs
// neither: converting between units, and their names.
#include <zo/results.h>
#include <zo/system/unit_text.h>

#include <cmath>
#include <string_view>

#include "system/units/unit_format.h"
#include "system/units/unit_table.h"
#include "text/code_units.h"

namespace zo {

const wchar_t* defaultUnitOf(const ZoUnitFormat& format, ZoTypeCode code) noexcept {
  switch (format.form) {
    case ZoUnitFormat::DegMinSec:
      return kDegree;
    case ZoUnitFormat::FeetInch:
    case ZoUnitFormat::FeetInchFraction:
      return kInch;
    case ZoUnitFormat::Fraction:
      if (!format.unit && isLength(code)) return kInch;
      return format.unit;
    default:
      return format.unit;
  }
}

bool resolve(ZoTypeCode code, const ZoUnitFormat& format, ResolvedFormat& resolved) noexcept {
  const int index = quantityIndex(code);
  if (index < 0 || !ZoIsUnitSeparators(format.decimal, format.grouping)) return false;
  if (format.precision < ZoUnitFormat::kExact || format.precision > ZoUnitFormat::kMaxPrecision)
    return false;
  if (format.form < ZoUnitFormat::Decimal || format.form > ZoUnitFormat::FeetInchFraction)
    return false;
  if (format.form == ZoUnitFormat::DegMinSec && code != ZoTypeCode::Angle) return false;
  if (format.form >= ZoUnitFormat::FeetInch && !isLength(code)) return false;
  resolved.quantity = &quantity(index);
  const wchar_t* const name = defaultUnitOf(format, code);
  resolved.unit = name ? findUnit(*resolved.quantity, name) : internalUnit(*resolved.quantity);
  return static_cast<bool>(resolved.unit);
}

}  // namespace zo

bool ZoIsUnitSeparators(wchar_t decimal, wchar_t grouping) noexcept {
  constexpr std::wstring_view kTaken = L"+-/%^*\"\u00B0\u00B2\u00B3\u00B5\u00B7\u2032\u2033\u2126";
  const auto canPart = [&](wchar_t c) {
    return c >= L' ' && !zo::isDigit(c) && !zo::isLetter(c) &&
           kTaken.find(c) == std::wstring_view::npos;
  };
  const bool decimalParts = canPart(decimal) && decimal != L' ' && decimal != L'\'';
  return decimalParts && decimal != grouping && (grouping == 0 || canPart(grouping));
}

int ZoConvertUnits(double number, ZoTypeCode code, const wchar_t* from, const wchar_t* to,
                   double& result) noexcept {
  const int index = zo::quantityIndex(code);
  if (index < 0) return ZoResult::refused;
  const zo::Quantity& quantity = zo::quantity(index);
  const auto find = [&](const wchar_t* name) {
    return name ? zo::findUnit(quantity, name) : zo::internalUnit(quantity);
  };
  const zo::NamedUnit source = find(from);
  const zo::NamedUnit target = find(to);
  if (!source || !target) return ZoResult::refused;
  const double magnitude = std::fabs(number);
  if (source.unit == target.unit || magnitude == 0 || !std::isfinite(number)) {
    result = number;
  } else if (magnitude < 1e-250 || magnitude > 1e250) {
    result = number * (source.factor / target.factor).hi;
  } else {
    result = (zo::Wide(number) * source.factor / target.factor).hi;
  }
  return std::isinf(result) && !std::isinf(number) ? ZoResult::overflow : ZoResult::ok;
}

const wchar_t* ZoUnitName(ZoTypeCode code, unsigned int index) noexcept {
  const int which = zo::quantityIndex(code);
  if (which < 0) return nullptr;
  const auto units = zo::quantity(which).units;
  return index < units.size() ? units[index].names[0] : nullptr;
}

const wchar_t* ZoFindUnit(ZoTypeCode code, const wchar_t* name) noexcept {
  const int which = zo::quantityIndex(code);
  return which < 0 || !name ? nullptr : zo::findUnit(zo::quantity(which), name).name;
}
