#include "dialogs/edit_texts.h"

#include <zo/dialogs/variant_edits.h>
#include <zo/results.h>
#include <zo/system/units.h>

#include "system/service_or_null.h"

namespace {

constexpr const wchar_t* kTrue = L"true";
constexpr const wchar_t* kFalse = L"false";

bool isPhysical(const ZoVariant& value) noexcept {
  return value.isTypeOf(ZoVariant::kReal) && ZoType::baseCode(value.code()) == ZoTypeCode::Real;
}

int readReal(std::wstring_view text, ZoTypeCode code, double& real) {
  if (auto* const units = zo::serviceOrNull<ZoUnits>())
    return units->parse(ZoString(text), code, real);
  return ZoParseUnits(text, code, ZoUnitFormat(), real);
}

bool readBool(const ZoString& text, bool& truth) {
  truth = text.compareTo(kTrue, ZoString::ignoreCase) == 0;
  return truth || text.compareTo(kFalse, ZoString::ignoreCase) == 0;
}

}  // namespace

int zo::readText(std::wstring_view text, ZoVariant& value) {
  if (value.isEmpty()) {
    value = ZoVariant(ZoString(text), ZoTypeCode::String, value.flags());
    return ZoResult::ok;
  }
  if (isPhysical(value)) {
    double real = 0;
    if (readReal(text, value.code(), real) != ZoResult::ok) return ZoResult::refused;
    return value.set(real);
  }
  bool truth = false;
  if (value.code() == ZoTypeCode::Bool && readBool(ZoString(text), truth))
    return value.set(static_cast<int>(truth));
  return value.set(ZoString(text));
}

ZoString ZoVariantEdits::textOf(const ZoVariant& value) {
  if (value.asDict() || value.asSequence() || value.isEmpty()) return {};
  ZoString text;
  auto* const units = isPhysical(value) ? zo::serviceOrNull<ZoUnits>() : nullptr;
  if (units && units->print(value.asReal(), value.code(), text) == ZoResult::ok) return text;
  const bool isTruth = value.code() == ZoTypeCode::Bool && value.isTypeOf(ZoVariant::kInt);
  if (isTruth && (value.asInt() == 0 || value.asInt() == 1))
    return ZoString(value.asInt() ? kTrue : kFalse);
  return value.asString();
}
