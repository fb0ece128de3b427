#include <limits>
#include <utility>

#include "c_interface/call.h"
#include "c_interface/value.h"

using namespace zo::c;

namespace {

constexpr std::uint32_t kAllFlags = (1U << 26) - 1;

// What the path names; refused where it leads nowhere.
ZoVariant& at(ZoVariant& variant, const ZocText& path) {
  ZoVariant* const found = variant.find(textOf(path).view());
  return found ? *found : throw Refusal{ZOC_REFUSED};
}

// A value with the code that was asked for, and no other in its place.
ZoVariant coded(ZoVariant value, std::uint32_t code) {
  if (code == ZOC_PLAIN) return value;
  if (value.setCode(static_cast<ZoTypeCode>(code))) throw Refusal{ZOC_BAD_ARGUMENT};
  return value;
}

ZoVariant integerOf(std::int64_t number, std::uint32_t code) {
  const bool isInt =
      number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
  const bool wantsBig =
      code != ZOC_PLAIN && ZoVariant::isFitting(static_cast<ZoTypeCode>(code), ZoVariant::kBigInt);
  if (isInt && !wantsBig) return coded(ZoVariant(static_cast<int>(number)), code);
  return coded(ZoVariant(number), code);
}

ZoVariant tripleOf(const double* numbers, std::uint32_t code) {
  (void)required(numbers);
  const auto wanted = static_cast<ZoTypeCode>(code);
  if (ZoType::baseCode(wanted) == ZoTypeCode::Vector)
    return coded(ZoVariant(ZoVector(numbers[0], numbers[1], numbers[2])), code);
  return coded(ZoVariant(ZoPoint(numbers[0], numbers[1], numbers[2])), code);
}

// Puts what is made by a function of no arguments, so that what it throws comes after the handle's
// own faults.
template <class Make>
int put(ZocValue value, const ZocText& path, const Make& make) noexcept {
  return call([&] {
    const Use<Value> into(value);
    return into->variant.put(textOf(path).view(), make());
  });
}

// Calls work for the element, with what it writes to.
template <class Work>
int look(ZocValue value, const ZocText& path, const Work& work) noexcept {
  return call([&] {
    const Use<Value> from(value);
    return work(at(from->variant, path));
  });
}

template <class T>
int get(ZocValue value, const ZocText& path, T* out) noexcept {
  return look(value, path, [&](const ZoVariant& found) { return found.get(required(out)); });
}

}  // namespace

int zocValueNew(ZocValue* out) noexcept {
  return make<Value>(out, [](Value&) { return 0; });
}

int zocValueParse(ZocValue value, ZocText text, uint32_t* errorAt) noexcept {
  return call([&] {
    const Use<Value> into(value);
    unsigned int end = 0;
    const int code = into->variant.parse(textOf(text).view(), &end);
    if (code && errorAt) *errorAt = end;
    return code;
  });
}

int zocValueFormat(ZocValue value, ZocString out) noexcept {
  return call([&] {
    const Use<Value> from(value);
    const Use<String> to(out);
    ZoString text;
    if (const int code = from->variant.format(text)) return code;
    to->set(text.view());
    return 0;
  });
}

int zocValueEqual(ZocValue a, ZocValue b, int* equal) noexcept {
  return call([&] {
    const Use<Value> one(a);
    const Use<Value> other(b);
    required(equal) = one->variant == other->variant ? 1 : 0;
    return 0;
  });
}

int zocValueInfo(ZocValue value, ZocText path, ZocValueInfo* out) noexcept {
  return look(value, path, [&](const ZoVariant& found) {
    required(out) = {found.type(), static_cast<std::uint32_t>(found.code()), found.flags(),
                     found.entries()};
    return 0;
  });
}

int zocValueGetInt(ZocValue value, ZocText path, int64_t* out) noexcept {
  return get(value, path, out);
}

int zocValueGetReal(ZocValue value, ZocText path, double* out) noexcept {
  return get(value, path, out);
}

int zocValueGetText(ZocValue value, ZocText path, ZocString out) noexcept {
  return look(value, path, [&](const ZoVariant& found) {
    const Use<String> to(out);
    ZoString text;
    if (const int code = found.get(text)) return code;
    to->set(text.view());
    return 0;
  });
}

int zocValueGetTriple(ZocValue value, ZocText path, double* out) noexcept {
  return look(value, path, [&](const ZoVariant& found) {
    (void)required(out);
    ZoPoint point;
    ZoVector vector;
    if (found.type() == ZoVariant::kVector) {
      if (const int code = found.get(vector)) return code;
      point = ZoPoint(vector.x, vector.y, vector.z);
    } else if (const int code = found.get(point)) {
      return code;
    }
    out[0] = point.x;
    out[1] = point.y;
    out[2] = point.z;
    return 0;
  });
}

int zocValueGet(ZocValue value, ZocText path, ZocValue out) noexcept {
  return look(value, path, [&](const ZoVariant& found) {
    const Use<Value> to(out);
    to->variant = found.copy();
    return 0;
  });
}

int zocValueKeys(ZocValue value, ZocText path, ZocValue out) noexcept {
  return look(value, path, [&](const ZoVariant& found) {
    const Use<Value> to(out);
    if (!found.asDict()) return ZOC_REFUSED;
    ZoArray<ZoVariant> keys;
    for (const auto [key, position, element] : std::as_const(found).elements())
      if (keys.append(ZoVariant(std::wstring_view(key->view())))) throw std::bad_alloc();
    to->variant = ZoVariant(std::move(keys));
    return ZOC_OK;
  });
}

int zocValuePutInt(ZocValue value, ZocText path, int64_t number, uint32_t code) noexcept {
  return put(value, path, [&] { return integerOf(number, code); });
}

int zocValuePutReal(ZocValue value, ZocText path, double number, uint32_t code) noexcept {
  return put(value, path, [&] { return coded(ZoVariant(number), code); });
}

int zocValuePutText(ZocValue value, ZocText path, ZocText text, uint32_t code) noexcept {
  return put(value, path, [&] { return coded(ZoVariant(textOf(text)), code); });
}

int zocValuePutTriple(ZocValue value, ZocText path, const double* numbers, uint32_t code) noexcept {
  return put(value, path, [&] { return tripleOf(numbers, code); });
}

int zocValuePut(ZocValue value, ZocText path, ZocValue element) noexcept {
  return put(value, path, [&] { return Use<Value>(element)->variant.copy(); });
}

int zocValuePutKind(ZocValue value, ZocText path, uint32_t kind, uint32_t code) noexcept {
  return put(value, path, [&] {
    require(kind <= ZoVariant::kGuid);
    const auto type = static_cast<ZoVariant::Type>(kind);
    if (code == ZOC_PLAIN) return ZoVariant(type);
    const auto wanted = static_cast<ZoTypeCode>(code);
    require(ZoVariant::isFitting(wanted, type));
    return ZoVariant(type, wanted);
  });
}

int zocValueSetFlags(ZocValue value, ZocText path, uint32_t flags) noexcept {
  return look(value, path, [&](ZoVariant& found) {
    require(flags <= kAllFlags);
    found.setFlags(flags);
    return 0;
  });
}

int zocValueRemoveKey(ZocValue value, ZocText path, ZocText key) noexcept {
  return look(value, path, [&](ZoVariant& found) {
    ZoVariant::Dict* const dict = found.asDict();
    return dict ? dict->removeAt(textOf(key)) : ZOC_REFUSED;
  });
}

int zocValueRemoveAt(ZocValue value, ZocText path, uint32_t position) noexcept {
  return look(value, path, [&](ZoVariant& found) {
    ZoVariant::Sequence* const sequence = found.asSequence();
    return sequence ? sequence->removeAt(position) : ZOC_REFUSED;
  });
}
