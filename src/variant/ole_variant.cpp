// The two directions of docs/variant.md's table. What crosses is always a copy, but for interface
// pointers; whoever holds something of Automation's here is an object that gives it back.
//
// An array that comes in is not trusted: its element size, its bounds and its depth are looked at
// before its data is. Nothing reaches the caller's value before all of it worked.
#include <zo/variant/ole_variant.h>
// windows.h before the headers of Automation
#include <windows.h>

#include <oleauto.h>
#include <zo/results.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// ---- What is owned ----

class OleValue {
 public:
  OleValue() noexcept { VariantInit(&value_); }
  ~OleValue() { VariantClear(&value_); }
  OleValue(const OleValue&) = delete;
  OleValue& operator=(const OleValue&) = delete;
  VARIANT* operator->() noexcept { return &value_; }
  VARIANT& operator*() noexcept { return value_; }
  [[nodiscard]] VARIANT release() noexcept {
    VARIANT released = value_;
    VariantInit(&value_);
    return released;
  }

 private:
  VARIANT value_;
};

struct DestroyArray {
  void operator()(SAFEARRAY* array) const noexcept { SafeArrayDestroy(array); }
};
using OleArray = std::unique_ptr<SAFEARRAY, DestroyArray>;

// Access to the elements of an array for as long as it lives. An array without elements may have no
// data.
class ArrayAccess {
 public:
  explicit ArrayAccess(SAFEARRAY* array) noexcept
      : array_(array), granted_(SUCCEEDED(SafeArrayAccessData(array, &data_))) {}
  ~ArrayAccess() {
    if (granted_) SafeArrayUnaccessData(array_);
  }
  [[nodiscard]] bool isGranted() const noexcept { return granted_; }
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;
  [[nodiscard]] void* data() const noexcept { return data_; }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
  bool granted_;
};

// ---- Dates: 100 ns since 1601 on one side, days since 30 December 1899 on the other ----

constexpr std::int64_t kTicksPerDay = 864'000'000'000;
constexpr std::int64_t kTicksOfDayZero = 94'353'120'000'000'000;  // 30 December 1899
// A date is as fine as 40 us near the year 9999. Both ways round to a tenth of a millisecond, so
// that what was one comes back exactly.
constexpr std::int64_t kTicksPerStep = 1000;

// Before day zero the fraction still counts forwards: -1.25 is 6 o'clock on 29 December 1899.
double dateOfTicks(std::int64_t ticks) noexcept {
  std::int64_t days = ticks / kTicksPerDay - kTicksOfDayZero / kTicksPerDay;
  std::int64_t rest = ticks % kTicksPerDay;
  if (rest < 0) {
    rest += kTicksPerDay;
    --days;
  }
  // Here, and not in the sum: before day zero a fraction that becomes whole would lead a day back.
  rest = (rest + kTicksPerStep / 2) / kTicksPerStep * kTicksPerStep;
  if (rest == kTicksPerDay) {
    rest = 0;
    ++days;
  }
  const double fraction = static_cast<double>(rest) / static_cast<double>(kTicksPerDay);
  return static_cast<double>(days) + (days < 0 ? -fraction : fraction);
}

// False for what Automation does not take for a date (the years 100 to 9999).
bool ticksOfDate(double date, std::int64_t& ticks) noexcept {
  if (!(date > -657435.0 && date < 2958466.0)) return false;
  const double days = std::trunc(date);
  constexpr std::int64_t kStepsPerDay = kTicksPerDay / kTicksPerStep;
  const std::int64_t steps =
      std::llround(std::abs(date - days) * static_cast<double>(kStepsPerDay));
  ticks = kTicksOfDayZero + static_cast<std::int64_t>(days) * kTicksPerDay + steps * kTicksPerStep;
  return true;
}

// ---- To OLE ----

int toOle(const ZoVariant& value, VARIANT& out, unsigned int depthLeft);

// out must be empty.
int textToOle(std::wstring_view text, VARIANT& out) {
  BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (!copy) throw std::bad_alloc();
  out.vt = VT_BSTR;
  out.bstrVal = copy;
  return ZoResult::ok;
}

template <class T>
int arrayToOle(VARTYPE type, OleArray array, VARIANT& out, T fill) {
  if (!array) throw std::bad_alloc();
  {
    const ArrayAccess access(array.get());
    if (!access.isGranted()) return ZoResult::refused;
    if (const int result = fill(access.data())) return result;
  }
  out.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  out.parray = array.release();
  return ZoResult::ok;
}

int componentsToOle(const ZoVariant& value, VARIANT& out) {
  const ZoVector vector = value.asVector();
  return arrayToOle(VT_R8, OleArray(SafeArrayCreateVector(VT_R8, 0, 3)), out, [&](void* data) {
    auto* const to = static_cast<double*>(data);
    to[0] = vector.x;
    to[1] = vector.y;
    to[2] = vector.z;
    return ZoResult::ok;
  });
}

int sequenceToOle(const ZoVariant::Sequence& sequence, VARIANT& out, unsigned int depthLeft) {
  OleArray array(SafeArrayCreateVector(VT_VARIANT, 0, sequence.entries()));
  return arrayToOle(VT_VARIANT, std::move(array), out, [&](void* data) {
    auto* to = static_cast<VARIANT*>(data);
    for (const ZoVariant& element : sequence) {
      if (const int result = toOle(element, *to++, depthLeft)) return result;
    }
    return ZoResult::ok;
  });
}

// A row for each entry: key and value.
int dictToOle(const ZoVariant::Dict& dict, VARIANT& out, unsigned int depthLeft) {
  const ULONG rows = dict.entries();
  SAFEARRAYBOUND bounds[2] = {{rows, 0}, {2, 0}};
  return arrayToOle(VT_VARIANT, OleArray(SafeArrayCreate(VT_VARIANT, 2, bounds)), out,
                    [&](void* data) {
                      // The first index runs fastest.
                      auto* to = static_cast<VARIANT*>(data);
                      for (const auto [key, element] : dict) {
                        textToOle(key.view(), *to);
                        if (const int result = toOle(element, to[rows], depthLeft)) return result;
                        ++to;
                      }
                      return ZoResult::ok;
                    });
}

int pointerToOle(const ZoVariant& value, VARIANT& out) {
  void* const pointer = value.asPointer();
  if (value.code() == ZoTypeCode::Unknown || value.code() == ZoTypeCode::Dispatch) {
    const bool dispatch = value.code() == ZoTypeCode::Dispatch;
    out.vt = dispatch ? VT_DISPATCH : VT_UNKNOWN;
    out.punkVal = static_cast<IUnknown*>(pointer);
    if (pointer) out.punkVal->AddRef();
  } else {
    out.vt = VT_UI8;
    out.ullVal = reinterpret_cast<std::uintptr_t>(pointer);
  }
  return ZoResult::ok;
}

int integerToOle(const ZoVariant& value, VARIANT& out) {
  const int number = value.asInt();
  switch (value.code()) {
    case ZoTypeCode::Bool:
      out.vt = VT_BOOL;
      out.boolVal = number ? VARIANT_TRUE : VARIANT_FALSE;
      return ZoResult::ok;
    case ZoTypeCode::Short:
    case ZoTypeCode::XShort:
      if (!std::in_range<short>(number)) break;
      out.vt = VT_I2;
      out.iVal = static_cast<short>(number);
      return ZoResult::ok;
    default:
      break;
  }
  out.vt = VT_I4;
  out.lVal = number;
  return ZoResult::ok;
}

// out must be empty. On failure it may hold what was done so far.
int toOle(const ZoVariant& value, VARIANT& out, unsigned int depthLeft) {
  switch (value.type()) {
    case ZoVariant::kEmpty:
      return ZoResult::ok;
    case ZoVariant::kInt:
      return integerToOle(value, out);
    case ZoVariant::kBigInt:
      if (value.code() == ZoTypeCode::Date) {
        std::int64_t back = 0;
        const double date = dateOfTicks(value.asBigInt());
        if (!ticksOfDate(date, back)) return ZoResult::refused;
        out.vt = VT_DATE;
        out.date = date;
      } else {
        out.vt = VT_I8;
        out.llVal = value.asBigInt();
      }
      return ZoResult::ok;
    case ZoVariant::kReal:
      out.vt = VT_R8;
      out.dblVal = value.asReal();
      return ZoResult::ok;
    case ZoVariant::kPointer:
      return pointerToOle(value, out);
    case ZoVariant::kPoint:
    case ZoVariant::kVector:
      return componentsToOle(value, out);
    case ZoVariant::kDict:
      return depthLeft > 0 ? dictToOle(*value.asDict(), out, depthLeft - 1) : ZoResult::refused;
    case ZoVariant::kSequence:
      return depthLeft > 0 ? sequenceToOle(*value.asSequence(), out, depthLeft - 1)
                           : ZoResult::refused;
    default:
      return textToOle(value.asString().view(), out);
  }
}

// ---- From OLE ----

int fromOle(const VARIANT& value, ZoVariant& out, unsigned int depthLeft);

std::wstring_view viewOf(BSTR text) noexcept {
  return text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view();
}

// An array of one element type, dimension by dimension.
class ArrayReader {
 public:
  ArrayReader(SAFEARRAY* array, VARTYPE type, unsigned int depthLeft) noexcept
      : array_(array), type_(type), depthLeft_(depthLeft) {}

  int read(ZoVariant& out) {
    const UINT dimensions = SafeArrayGetDim(array_);
    if (dimensions == 0) return ZoResult::refused;
    elementSize_ = SafeArrayGetElemsize(array_);
    if (elementSize_ < sizeOf(type_)) return ZoResult::refused;
    size_t stride = elementSize_;
    for (UINT d = 1; d <= dimensions; ++d) {
      LONG lower = 0;
      LONG upper = 0;
      if (FAILED(SafeArrayGetLBound(array_, d, &lower)) ||
          FAILED(SafeArrayGetUBound(array_, d, &upper)))
        return ZoResult::refused;
      const auto count = static_cast<size_t>(std::int64_t{upper} - lower + 1);
      dimensions_.push_back({count, stride});
      stride *= count;
    }
    const ArrayAccess access(array_);
    if (!access.isGranted()) return ZoResult::refused;
    const auto* const data = static_cast<const unsigned char*>(access.data());
    if (type_ == VT_R8 && dimensions == 1 && dimensions_[0].count == 3) return readPoint(data, out);
    if (type_ == VT_VARIANT && dimensions == 2 && dimensions_[1].count == 2) {
      const int result = readDict(data, out);
      if (result != kNoDict) return result;
    }
    if (dimensions > depthLeft_) return ZoResult::refused;  // a sequence for each
    // However many rows of nothing there are.
    if (stride == 0) {
      out = ZoVariant(ZoVariant::kSequence);
      return ZoResult::ok;
    }
    return readSequence(data, 0, depthLeft_ - 1, out);
  }

 private:
  static constexpr int kNoDict = -1;

  struct Dimension {
    size_t count;
    size_t stride;
  };

  // What is read of an element whatever the array says of its size.
  static size_t sizeOf(VARTYPE type) noexcept {
    if (type == VT_VARIANT) return sizeof(VARIANT);
    if (type == VT_DECIMAL) return sizeof(DECIMAL);
    return type == VT_R8 ? sizeof(double) : 1;
  }

  static int readPoint(const unsigned char* data, ZoVariant& out) {
    double c[3];
    std::memcpy(c, data, sizeof c);
    out = ZoVariant(ZoPoint(c[0], c[1], c[2]));
    return ZoResult::ok;
  }

  // Rows of a text and a value, no text twice.
  int readDict(const unsigned char* data, ZoVariant& out) const {
    ZoHashDict<ZoVariant, ZoString> dict(8);
    const auto* const keys = reinterpret_cast<const VARIANT*>(data);
    const size_t rows = dimensions_[0].count;
    for (size_t row = 0; row < rows; ++row) {
      if (keys[row].vt != VT_BSTR) return kNoDict;
    }
    // All keys before any value: no value is read twice, whatever becomes of the array.
    std::vector<ZoVariant*> places;
    for (size_t row = 0; row < rows; ++row) {
      const ZoString key(viewOf(keys[row].bstrVal));
      const int result = dict.insertAt(key, ZoVariant());
      if (result == ZoResult::refused) return kNoDict;
      if (result != ZoResult::ok) throw std::bad_alloc();
      places.push_back(dict.at(key));
    }
    for (size_t row = 0; row < rows; ++row) {
      if (const int result = fromOle(keys[rows + row], *places[row], depthLeft_ - 1)) return result;
    }
    out = ZoVariant(std::move(dict));
    return ZoResult::ok;
  }

  int readSequence(const unsigned char* data, size_t dimension, unsigned int depthLeft,
                   ZoVariant& out) const {
    ZoArray<ZoVariant> elements;
    const auto [count, stride] = dimensions_[dimension];
    const bool last = dimension + 1 == dimensions_.size();
    for (size_t i = 0; i < count; ++i, data += stride) {
      ZoVariant element;
      if (const int result = last ? readElement(data, depthLeft, element)
                                  : readSequence(data, dimension + 1, depthLeft - 1, element))
        return result;
      if (elements.append(std::move(element)) != ZoResult::ok) throw std::bad_alloc();
    }
    out = ZoVariant(std::move(elements));
    return ZoResult::ok;
  }

  int readElement(const unsigned char* data, unsigned int depthLeft, ZoVariant& out) const {
    if (type_ == VT_VARIANT)
      return fromOle(*reinterpret_cast<const VARIANT*>(data), out, depthLeft);
    // As a VARIANT that only looks at the element.
    VARIANT element{};
    if (type_ == VT_DECIMAL) {
      std::memcpy(&element, data, sizeof(DECIMAL));
    } else {
      if (elementSize_ > sizeof element.llVal) return ZoResult::refused;
      std::memcpy(&element.llVal, data, elementSize_);
    }
    element.vt = type_;
    return fromOle(element, out, depthLeft);
  }

  SAFEARRAY* array_;
  VARTYPE type_;
  unsigned int depthLeft_;
  size_t elementSize_ = 0;
  std::vector<Dimension> dimensions_;
};

int realFromOle(const VARIANT& value, ZoVariant& out) {
  VARIANT source = value;  // looked at only
  OleValue real;
  // The neutral locale: decimals do not depend on the user's settings.
  if (FAILED(VariantChangeTypeEx(&*real, &source, LOCALE_INVARIANT, 0, VT_R8)))
    return ZoResult::refused;
  out = ZoVariant(real->dblVal);
  return ZoResult::ok;
}

int byReferenceFromOle(const VARIANT& value, ZoVariant& out, unsigned int depthLeft) {
  if (value.vt == (VT_BYREF | VT_VARIANT)) {
    if (!value.pvarVal || depthLeft == 0) return ZoResult::refused;
    return fromOle(*value.pvarVal, out, depthLeft - 1);
  }
  if (!value.byref) return ZoResult::refused;
  VARIANT source = value;
  OleValue copy;
  if (FAILED(VariantCopyInd(&*copy, &source))) return ZoResult::refused;
  return fromOle(*copy, out, depthLeft);
}

// A value that fits a kind, or out of range.
template <class T>
int numberFromOle(T value, ZoVariant& out) {
  if (std::in_range<int>(value)) {
    out = ZoVariant(static_cast<int>(value));
  } else if (std::in_range<std::int64_t>(value)) {
    out = ZoVariant(static_cast<std::int64_t>(value));
  } else {
    return ZoResult::refused;
  }
  return ZoResult::ok;
}

int pointerFromOle(const VARIANT& value, ZoTypeCode code, ZoVariant& out) {
  out = ZoVariant(static_cast<void*>(value.punkVal), code);
  return ZoResult::ok;
}

int fromOle(const VARIANT& value, ZoVariant& out, unsigned int depthLeft) {
  if (value.vt & VT_BYREF) return byReferenceFromOle(value, out, depthLeft);
  if (value.vt & VT_ARRAY) {
    if (!value.parray || depthLeft == 0) return ZoResult::refused;
    return ArrayReader(value.parray, static_cast<VARTYPE>(value.vt & VT_TYPEMASK), depthLeft)
        .read(out);
  }
  std::int64_t ticks = 0;
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
      out = ZoVariant();
      return ZoResult::ok;
    case VT_I1:
      return numberFromOle(int{value.cVal}, out);
    case VT_UI1:
      return numberFromOle(int{value.bVal}, out);
    case VT_I2:
      out = ZoVariant(int{value.iVal}, ZoTypeCode::Short);
      return ZoResult::ok;
    case VT_UI2:
      return numberFromOle(int{value.uiVal}, out);
    case VT_I4:
    case VT_INT:
    case VT_ERROR:
      out = ZoVariant(static_cast<int>(value.lVal));
      return ZoResult::ok;
    case VT_UI4:
    case VT_UINT:
      return numberFromOle(value.ulVal, out);
    case VT_I8:
      out = ZoVariant(std::int64_t{value.llVal});
      return ZoResult::ok;
    case VT_UI8:
      if (!std::in_range<std::int64_t>(value.ullVal)) return ZoResult::refused;
      out = ZoVariant(static_cast<std::int64_t>(value.ullVal));
      return ZoResult::ok;
    case VT_BOOL:
      out = ZoVariant(value.boolVal != VARIANT_FALSE ? 1 : 0, ZoTypeCode::Bool);
      return ZoResult::ok;
    case VT_R4:
      out = ZoVariant(double{value.fltVal});
      return ZoResult::ok;
    case VT_R8:
      out = ZoVariant(value.dblVal);
      return ZoResult::ok;
    case VT_CY:
    case VT_DECIMAL:
      return realFromOle(value, out);
    case VT_DATE:
      if (!ticksOfDate(value.date, ticks)) return ZoResult::refused;
      out = ZoVariant(ticks, ZoTypeCode::Date);
      return ZoResult::ok;
    case VT_BSTR:
      out = ZoVariant(ZoString(viewOf(value.bstrVal)));
      return ZoResult::ok;
    case VT_UNKNOWN:
      return pointerFromOle(value, ZoTypeCode::Unknown, out);
    case VT_DISPATCH:
      return pointerFromOle(value, ZoTypeCode::Dispatch, out);
    default:
      return ZoResult::refused;
  }
}

}  // namespace

int ZoVariantToOle(const ZoVariant& value, tagVARIANT& out) {
  OleValue made;
  if (const int result = toOle(value, *made, ZoVariant::kMaxDepth)) return result;
  if (FAILED(VariantClear(&out))) return ZoResult::refused;
  out = made.release();
  return ZoResult::ok;
}

int ZoOleToVariant(const tagVARIANT& value, ZoVariant& out) {
  ZoVariant read;
  if (const int result = fromOle(value, read, ZoVariant::kMaxDepth)) return result;
  out = std::move(read);
  return ZoResult::ok;
}
