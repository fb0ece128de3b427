#include "dialogs/edit_texts.h"

#include <zo/dialogs/variant_edits.h>
#include <zo/results.h>
#include <zo/system/units.h>

#include <atomic>
#include <chrono>
#include <new>

#include "system/service_or_null.h"

namespace {

constexpr const wchar_t* kTrue = L"true";
constexpr const wchar_t* kFalse = L"false";

bool isPhysical(const ZoVariant& value) noexcept {
  return value.isTypeOf(ZoVariant::kReal) && ZoType::baseCode(value.code()) == ZoTypeCode::Real;
}

// What the units service answers; one of a client may throw.
template <class Ask>
int asked(Ask ask) {
  try {
    return ask();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return ZoResult::refused;
  }
}

// When the service may be asked again that was held elsewhere; 0 where it was not.
using Clock = std::chrono::steady_clock;
std::atomic<Clock::rep>& nextAsking() noexcept {
  static std::atomic<Clock::rep> next = 0;
  return next;
}

int readReal(std::wstring_view text, ZoTypeCode code, double& real) {
  auto* const units = zo::serviceOrNull<ZoUnits>();
  if (!units) return ZoParseUnits(text, code, ZoUnitFormat(), real);
  const int result = asked([&] { return units->parse(ZoString(text), code, real); });
  if (result == ZoResult::ok) nextAsking() = 0;
  return result;
}

int printReal(const ZoVariant& value, ZoString& text) {
  auto* const units = zo::serviceOrNull<ZoUnits>();
  if (!units) return ZoResult::refused;
  if (Clock::now().time_since_epoch().count() < nextAsking()) return ZoResult::timeOut;
  const int code = asked([&] { return units->print(value.asReal(), value.code(), text); });
  if (code == ZoResult::timeOut)
    nextAsking() = (Clock::now() + std::chrono::seconds(1)).time_since_epoch().count();
  return code;
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
    const int code = readReal(text, value.code(), real);
    if (code == ZoResult::timeOut) return code;
    return code == ZoResult::ok ? value.set(real) : ZoResult::refused;
  }
  bool truth = false;
  if (value.code() == ZoTypeCode::Bool && readBool(ZoString(text), truth))
    return value.set(static_cast<int>(truth));
  return value.set(ZoString(text));
}

int zo::printText(const ZoVariant& value, ZoString& text) {
  text = ZoString();
  if (value.asDict() || value.asSequence() || value.isEmpty()) return ZoResult::ok;
  const int code = isPhysical(value) ? printReal(value, text) : ZoResult::refused;
  if (code == ZoResult::ok) return code;
  const bool isTruth = value.code() == ZoTypeCode::Bool && value.isTypeOf(ZoVariant::kInt);
  if (isTruth && (value.asInt() == 0 || value.asInt() == 1))
    text = value.asInt() ? kTrue : kFalse;
  else
    text = value.asString();
  return code == ZoResult::timeOut ? code : ZoResult::ok;
}

ZoString ZoVariantEdits::textOf(const ZoVariant& value) {
  ZoString text;
  static_cast<void>(zo::printText(value, text));  // the bare number is better than nothing
  return text;
}
