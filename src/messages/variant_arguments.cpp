#include "messages/variant_arguments.h"

#include <zo/results.h>
#include <zo/system/units.h>
#include <zo/text/number_text.h>

#include <cmath>

#include "system/service_or_null.h"

namespace zo {
namespace {

// Whether the units service had a text for it: in the user's unit, with the user's decimals.
bool printUnits(const ZoVariant& value, ZoString& text) {
  if (!value.isNumber() || ZoType::baseCode(value.code()) != ZoTypeCode::Real) return false;
  auto* const units = serviceOrNull<ZoUnits>();
  return units && units->print(value.asReal(), value.code(), text) == ZoResult::ok;
}

}  // namespace

void VariantArguments::print(unsigned int number, ExpandedText& out) const {
  const ZoVariant& value = values_[number - 1];
  if (value.isTypeOf(ZoVariant::kInt) || value.isTypeOf(ZoVariant::kBigInt)) {
    wchar_t digits[ZoNumberTextSize];
    out.append(digits, ZoIntToStr(value.asBigInt(), digits));  // as asString() has it
    return;
  }
  ZoString text;
  if (!printUnits(value, text)) text = value.asString();
  out += text.view();
}

PluralNumber VariantArguments::numberOf(unsigned int number) const {
  const ZoVariant& value = values_[number - 1];
  if (!value.isNumber()) return {};
  if (!value.isTypeOf(ZoVariant::kReal)) {
    const auto whole = static_cast<std::uint64_t>(value.asBigInt());
    return {true, true, static_cast<std::int64_t>(whole) < 0 ? 0 - whole : whole};
  }
  const double magnitude = std::abs(value.asReal());
  if (!(magnitude < 0x1p64)) return {true, false, ~std::uint64_t{0}};  // an infinity, too
  const double whole = std::trunc(magnitude);
  return {true, whole == magnitude, static_cast<std::uint64_t>(whole)};
}

}  // namespace zo
