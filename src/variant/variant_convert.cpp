// ZoVariant: reading and writing across kinds. docs/variant.md has the table that stands here in
// code.
#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <limits>

#include "text/code_units.h"

namespace {

bool onlyBlanks(std::wstring_view text) noexcept {
  for (const wchar_t c : text) {
    if (!zo::isWhite(c)) return false;
  }
  return true;
}

// The whole text has to be the number; white space around it does not count.
template <class Number, class Read>
int readWhole(std::wstring_view text, Number& out, Read read) noexcept {
  Number value = 0;
  unsigned int end = 0;
  if (read(text, value, end) != ZoResult::ok || !onlyBlanks(text.substr(end)))
    return ZoResult::refused;
  out = value;
  return ZoResult::ok;
}

int toReal(std::wstring_view text, double& out) noexcept {
  return readWhole(text, out, [](std::wstring_view t, double& value, unsigned int& end) noexcept {
    return ZoStrToReal(t, value, &end);
  });
}

int toBigInt(std::wstring_view text, std::int64_t& out) noexcept {
  return readWhole(text, out,
                   [](std::wstring_view t, std::int64_t& value, unsigned int& end) noexcept {
                     return ZoStrToInt(t, value, &end);
                   });
}

// To the nearest whole number, halves away from zero. (std::round of this platform's runtime adds a
// half and cuts, which takes 0.49999999999999994 for 1.)
int toBigInt(double value, std::int64_t& out) noexcept {
  const double whole = std::trunc(value);
  const double rounded = std::abs(value - whole) < 0.5 ? whole : whole + std::copysign(1.0, value);
  if (!(rounded >= -0x1p63 && rounded < 0x1p63)) return ZoResult::refused;
  out = static_cast<std::int64_t>(rounded);
  return ZoResult::ok;
}

int toInt(std::int64_t value, int& out) noexcept {
  if (!std::in_range<int>(value)) return ZoResult::refused;
  out = static_cast<int>(value);
  return ZoResult::ok;
}

// "(1, 2.5, 3)", with white space wherever it may stand.
int toComponents(std::wstring_view text, double (&out)[3]) noexcept {
  double read[3] = {};
  const auto take = [&](wchar_t wanted) noexcept {
    while (!text.empty() && zo::isWhite(text.front())) text.remove_prefix(1);
    if (text.empty() || text.front() != wanted) return false;
    text.remove_prefix(1);
    return true;
  };
  for (int i = 0; i < 3; ++i) {
    unsigned int end = 0;
    if (!take(i == 0 ? L'(' : L',') || ZoStrToReal(text, read[i], &end) != ZoResult::ok)
      return ZoResult::refused;
    text.remove_prefix(end);
  }
  if (!take(L')') || !onlyBlanks(text)) return ZoResult::refused;
  std::copy(read, read + 3, out);
  return ZoResult::ok;
}

ZoString textOf(double x, double y, double z) {
  wchar_t buffer[3 * ZoNumberTextSize + 8];
  wchar_t* to = buffer;
  *to++ = L'(';
  to += ZoRealToStr(x, to);
  *to++ = L',';
  *to++ = L' ';
  to += ZoRealToStr(y, to);
  *to++ = L',';
  *to++ = L' ';
  to += ZoRealToStr(z, to);
  *to++ = L')';
  return ZoString(buffer, static_cast<unsigned int>(to - buffer));
}

ZoString textOf(const void* pointer) {
  wchar_t buffer[] = L"0x0000000000000000";
  zo::writeHex(buffer + 2, reinterpret_cast<std::uintptr_t>(pointer), 16);
  return ZoString(buffer);
}

// The new text of a wchar_t* variable.
wchar_t* newText(std::wstring_view text) {
  auto* const copy = new wchar_t[text.size() + 1];
  text.copy(copy, text.size());
  copy[text.size()] = 0;
  return copy;
}

}  // namespace

// ---- The value as it is stored ----

std::int64_t ZoVariant::integer() const noexcept {
  if (!isReference()) return payload_.bigInt;
  return type() == kInt ? *payload_.integerRef : *payload_.bigIntRef;
}

double ZoVariant::real() const noexcept {
  return isReference() ? *payload_.realRef : payload_.real;
}

std::wstring_view ZoVariant::view() const noexcept {
  if (!isReference()) return ownText().view();
  const wchar_t* const text = *payload_.textRef;
  return text ? std::wstring_view(text) : std::wstring_view();
}

// ---- Reading ----

int ZoVariant::get(std::int64_t& out) const noexcept {
  switch (type()) {
    case kInt:
    case kBigInt:
      out = integer();
      return ZoResult::ok;
    case kReal:
      return toBigInt(real(), out);
    case kString:
      return toBigInt(view(), out);
    default:
      return ZoResult::refused;
  }
}

int ZoVariant::get(int& out) const noexcept {
  std::int64_t value = 0;
  const int result = get(value);
  return result == ZoResult::ok ? toInt(value, out) : result;
}

int ZoVariant::get(double& out) const noexcept {
  switch (type()) {
    case kInt:
    case kBigInt:
      out = static_cast<double>(integer());
      return ZoResult::ok;
    case kReal:
      out = real();
      return ZoResult::ok;
    case kString:
      return toReal(view(), out);
    default:
      return ZoResult::refused;
  }
}

int ZoVariant::get(ZoString& out) const {
  switch (type()) {
    case kEmpty:
      return ZoResult::refused;
    case kInt:
    case kBigInt:
      out = ZoIntToStr(integer());
      return ZoResult::ok;
    case kReal:
      out = ZoRealToStr(real());
      return ZoResult::ok;
    case kString:
      out = isReference() ? ZoString(view()) : ownText();
      return ZoResult::ok;
    case kPointer:
      out = textOf(payload_.pointer);
      return ZoResult::ok;
    case kPoint:
      out = textOf(payload_.point->x, payload_.point->y, payload_.point->z);
      return ZoResult::ok;
    case kVector:
      out = textOf(payload_.vector->x, payload_.vector->y, payload_.vector->z);
      return ZoResult::ok;
    case kGuid:
      ZoGuid2String(*payload_.guid, out);
      return ZoResult::ok;
    default: {
      ZoString form;
      const int result = format(form);
      if (result == ZoResult::ok) out = std::move(form);
      return result;
    }
  }
}

int ZoVariant::get(void*& out) const noexcept {
  if (type() != kPointer) return ZoResult::refused;
  out = payload_.pointer;
  return ZoResult::ok;
}

int ZoVariant::get(ZoPoint& out) const noexcept {
  double components[3];
  if (type() == kPoint) {
    out = *payload_.point;
  } else if (type() == kVector) {
    out = ZoPoint(*payload_.vector);
  } else if (type() == kString && toComponents(view(), components) == ZoResult::ok) {
    out = ZoPoint(components[0], components[1], components[2]);
  } else {
    return ZoResult::refused;
  }
  return ZoResult::ok;
}

int ZoVariant::get(ZoVector& out) const noexcept {
  ZoPoint point;
  if (get(point) != ZoResult::ok) return ZoResult::refused;
  out = ZoVector(point.x, point.y, point.z);
  return ZoResult::ok;
}

int ZoVariant::get(_GUID& out) const noexcept {
  if (type() == kString && !isReference()) return ZoString2Guid(ownText(), out);
  if (type() == kString) return ZoString2Guid(ZoString(view()), out);
  if (type() != kGuid) return ZoResult::refused;
  out = *payload_.guid;
  return ZoResult::ok;
}

int ZoVariant::get(Sequence& out) const {
  const Sequence* const own = asSequence();
  return own ? out.copyFrom(*own) : ZoResult::refused;
}

int ZoVariant::get(Dict& out) const {
  const Dict* const own = asDict();
  if (!own) return ZoResult::refused;
  if (own == &out) return ZoResult::ok;
  // The copy first: what is emptied may hold this very variant.
  const ZoVariant copy(*own);
  out.removeAll();
  return out.insertAll(*copy.payload_.dict);
}

// ---- Writing ----

// A value of the kind, made of this one.
int ZoVariant::convertTo(Type kind, ZoVariant& out) const {
  const auto converted = [&](auto value) {
    const int result = get(value);
    if (result == ZoResult::ok) out = ZoVariant(std::move(value));
    return result;
  };
  switch (kind) {
    case kInt:
      return converted(int{});
    case kBigInt:
      return converted(std::int64_t{});
    case kReal:
      return converted(double{});
    case kString:
      return converted(ZoString{});
    case kPointer:
      return converted(static_cast<void*>(nullptr));
    case kPoint:
      return converted(ZoPoint{});
    case kVector:
      return converted(ZoVector{});
    case kGuid:
      return converted(_GUID{});
    default:  // containers come from nothing but their own kind
      if (type() != kind) return ZoResult::refused;
      out = *this;
      return ZoResult::ok;
  }
}

int ZoVariant::set(const ZoVariant& value) {
  if (isReference()) return writeReference(value);
  if (isEmpty()) {
    if (value.isEmpty()) return ZoResult::ok;
    ZoVariant taken;
    if (const int result = value.convertTo(value.type(), taken)) return result;
    taken.code_ = value.code_;
    taken.setFlags(flags());
    swap(taken);
    return ZoResult::ok;
  }
  ZoVariant converted;
  if (const int result = value.convertTo(type(), converted)) return result;
  std::swap(payload_, converted.payload_);
  return ZoResult::ok;
}

int ZoVariant::writeReference(const ZoVariant& value) {
  switch (type()) {
    case kInt:
      return value.get(*payload_.integerRef);
    case kBigInt:
      return value.get(*payload_.bigIntRef);
    case kReal:
      return value.get(*payload_.realRef);
    default: {
      ZoString text;
      if (const int result = value.get(text)) return result;
      if (text.first(L'\0') != ZoString::npos) return ZoResult::refused;  // it would be cut there
      *payload_.textRef = newText(text.view());
      return ZoResult::ok;
    }
  }
}

void ZoVariant::assign(ZoVariant value) {
  if (isReference()) {
    (void)writeReference(value);
    return;
  }
  if (type() == value.type()) value.code_ = code_;
  value.setFlags(flags());
  swap(value);
}
