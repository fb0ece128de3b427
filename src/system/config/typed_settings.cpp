// Settings by type, over whatever service is installed: by its public operations only.
#include <zo/system/cfg.h>
#include <zo/text/number_text.h>

#include <cmath>

bool ZoCfg::readWhole(const wchar_t* key, std::int64_t& value) {
  ZoVariant setting;
  if (getAt(key, setting, false) != ZoResult::ok) return false;
  switch (setting.type()) {
    case ZoVariant::kInt:
    case ZoVariant::kBigInt:
      value = setting.asBigInt();
      return true;
    case ZoVariant::kReal: {  // of a service that keeps reals
      const double real = setting.asReal();
      constexpr double kEnd = 0x1p63;
      if (real != std::trunc(real) || real < -kEnd || real >= kEnd) return false;
      value = static_cast<std::int64_t>(real);
      return true;
    }
    default: {
      const ZoString text = setting.asString();
      unsigned int end = 0;
      return setting.isTypeOf(ZoVariant::kString) &&
             ZoStrToInt(text, value, &end) == ZoResult::ok && end == text.length();
    }
  }
}

bool ZoCfg::readReal(const wchar_t* key, double& value) {
  ZoVariant setting;
  if (getAt(key, setting, false) != ZoResult::ok) return false;
  switch (setting.type()) {
    case ZoVariant::kInt:
    case ZoVariant::kBigInt:
    case ZoVariant::kReal:
      value = setting.asReal();
      return true;
    default: {
      const ZoString text = setting.asString();
      unsigned int end = 0;
      return setting.isTypeOf(ZoVariant::kString) &&
             ZoStrToReal(text, value, &end) == ZoResult::ok && end == text.length();
    }
  }
}

ZoString ZoCfg::readText(const wchar_t* key, const ZoString& otherwise) {
  ZoVariant setting;
  if (getAt(key, setting, false) != ZoResult::ok) return otherwise;
  switch (setting.type()) {
    case ZoVariant::kString:
    case ZoVariant::kInt:
    case ZoVariant::kBigInt:
    case ZoVariant::kReal:
      return setting.asString();
    default:
      return otherwise;
  }
}

int ZoCfg::putWhole(const wchar_t* key, std::int64_t value) {
  if (std::in_range<int>(value)) return replaceAt(key, ZoVariant(static_cast<int>(value)));
  return replaceAt(key, ZoVariant(value));
}

int ZoCfg::putReal(const wchar_t* key, double value) { return put(key, ZoRealToStr(value)); }

int ZoCfg::put(const wchar_t* key, const ZoString& text) { return replaceAt(key, ZoVariant(text)); }
