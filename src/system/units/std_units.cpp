// The standard units service: a format for each quantity, and with it the functions of
// zo/system/unit_text.h.
#include <zo/results.h>
#include <zo/system/units.h>

#include "system/service_scope.h"
#include "system/units/unit_format.h"

ZoStdUnits::ZoStdUnits(wchar_t decimal, wchar_t grouping) noexcept {
  static_assert(kFormats == zo::kQuantities);
  if (!ZoIsUnitSeparators(decimal, grouping)) return;
  for (ZoUnitFormat& format : formats_) {
    format.decimal = decimal;
    format.grouping = grouping;
  }
}

int ZoStdUnits::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoStdUnits::print(double value, ZoTypeCode code, ZoString& text) {
  ZoUnitFormat format;
  if (const int result = getFormat(code, format)) return result;
  return ZoPrintUnits(value, code, format, text);
}

int ZoStdUnits::parse(const wchar_t* text, ZoTypeCode code, double& value) {
  ZoUnitFormat format;
  if (const int result = getFormat(code, format)) return result;
  return ZoParseUnits(text ? text : L"", code, format, value);
}

int ZoStdUnits::getFormat(ZoTypeCode code, ZoUnitFormat& format) {
  const int index = zo::quantityIndex(code);
  if (index < 0) return ZoResult::refused;
  const zo::Reading reading(*this);
  if (reading) format = formats_[index];
  return reading.result();
}

int ZoStdUnits::setFormat(ZoTypeCode code, const ZoUnitFormat& format) {
  zo::ResolvedFormat resolved;
  if (!zo::resolve(code, format, resolved)) return ZoResult::refused;
  const zo::Writing writing(*this);
  if (!writing) return writing.result();
  ZoUnitFormat& kept = formats_[zo::quantityIndex(code)];
  kept = format;
  kept.unit = ZoFindUnit(code, format.unit);  // the forms that do not use it keep it, too
  for (ZoUnitFormat& each : formats_) {
    each.decimal = format.decimal;
    each.grouping = format.grouping;
  }
  return ZoResult::ok;
}

int ZoStdUnits::getSeparators(wchar_t& decimal, wchar_t& grouping) {
  const zo::Reading reading(*this);
  if (reading) {
    decimal = formats_[0].decimal;
    grouping = formats_[0].grouping;
  }
  return reading.result();
}

int ZoStdUnits::setSeparators(wchar_t decimal, wchar_t grouping) {
  if (!ZoIsUnitSeparators(decimal, grouping)) return ZoResult::refused;
  const zo::Writing writing(*this);
  if (!writing) return writing.result();
  for (ZoUnitFormat& format : formats_) {
    format.decimal = decimal;
    format.grouping = grouping;
  }
  return ZoResult::ok;
}
