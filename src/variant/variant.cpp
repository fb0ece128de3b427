// ZoVariant: what it owns, how it is copied and how it is compared.
#include <zo/variant/variant.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

using OwnDict = ZoHashDict<ZoVariant, ZoString>;
using OwnArray = ZoArray<ZoVariant>;
using OwnList = ZoList<ZoVariant>;

std::unique_ptr<ZoVariant::Sequence> copyOf(const ZoVariant::Sequence& from) {
  if (const auto* const array = dynamic_cast<const OwnArray*>(&from))
    return std::make_unique<OwnArray>(*array);
  if (dynamic_cast<const OwnList*>(&from)) return std::make_unique<OwnList>(from);
  return std::make_unique<OwnArray>(from);
}

// A variant's own dictionary is always of this type.
std::unique_ptr<OwnDict> copyOf(const ZoVariant::Dict& from) {
  if (const auto* const dict = dynamic_cast<const OwnDict*>(&from))
    return std::make_unique<OwnDict>(*dict);
  return std::make_unique<OwnDict>(from);
}

std::unique_ptr<ZoVariant::Sequence> newSequence(ZoTypeCode code) {
  if (code == ZoTypeCode::List) return std::make_unique<OwnList>();
  return std::make_unique<OwnArray>();
}

}  // namespace

// ---- Owning ----

ZoVariant::ZoVariant(const _GUID& guid, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.guid = new _GUID(guid);
  become(kGuid, code, flags);
}

ZoVariant::ZoVariant(const ZoPoint& point, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.point = new ZoPoint(point);
  become(kPoint, code, flags);
}

ZoVariant::ZoVariant(const ZoVector& vector, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.vector = new ZoVector(vector);
  become(kVector, code, flags);
}

ZoVariant::ZoVariant(const Sequence& sequence, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.sequence = copyOf(sequence).release();
  become(kSequence, code, flags);
}

ZoVariant::ZoVariant(const Dict& dict, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.dict = copyOf(dict).release();
  become(kDict, code, flags);
}

ZoVariant::ZoVariant(ZoArray<ZoVariant>&& array, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.sequence = new OwnArray(std::move(array));
  become(kSequence, code, flags);
}

ZoVariant::ZoVariant(ZoHashDict<ZoVariant, ZoString>&& dict, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.dict = new OwnDict(std::move(dict));
  become(kDict, code, flags);
}

ZoVariant::ZoVariant(Type kind, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  switch (kind) {
    case kString:
      ::new (static_cast<void*>(&payload_)) ZoString;
      break;
    case kPoint:
      payload_.point = new ZoPoint;
      break;
    case kVector:
      payload_.vector = new ZoVector;
      break;
    case kDict:
      payload_.dict = new OwnDict;
      break;
    case kSequence:
      payload_.sequence = newSequence(code).release();
      break;
    case kGuid:
      payload_.guid = new _GUID();
      break;
    default:
      break;
  }
  become(kind, code, flags);
}

void ZoVariant::become(Type kind, ZoTypeCode code, unsigned int flags) noexcept {
  code_ = isFitting(code, kind) ? static_cast<unsigned int>(code) : 0;
  word_ = kind | flags << kFlagShift;
}

void ZoVariant::copyBlock(const ZoVariant& other) {
  switch (other.type()) {
    case kPoint:
      payload_.point = new ZoPoint(*other.payload_.point);
      break;
    case kVector:
      payload_.vector = new ZoVector(*other.payload_.vector);
      break;
    case kDict:
      payload_.dict = copyOf(*other.payload_.dict).release();
      break;
    case kSequence:
      payload_.sequence = copyOf(*other.payload_.sequence).release();
      break;
    default:
      payload_.guid = new _GUID(*other.payload_.guid);
      break;
  }
}

void ZoVariant::freeBlock() noexcept {
  switch (type()) {
    case kPoint:
      delete payload_.point;
      break;
    case kVector:
      delete payload_.vector;
      break;
    case kDict:
      delete payload_.dict;
      break;
    case kSequence:
      delete payload_.sequence;
      break;
    default:
      delete payload_.guid;
      break;
  }
}

int ZoVariant::setCode(ZoTypeCode code) noexcept {
  if (!isFitting(code, type())) return ZoResult::refused;
  code_ = static_cast<unsigned int>(code);
  return ZoResult::ok;
}

// ---- Containers ----

namespace {

// A container without elements that belongs to no variant. It is reached through a pointer and
// never freed: a thread's end frees thread_local objects before their destructors run (GCC for
// Windows).
template <class Container>
Container& scratchContainer() {
  static thread_local Container* scratch;
  if (!scratch) scratch = new Container;
  scratch->removeAll(true);
  return *scratch;
}

}  // namespace

ZoVariant::operator Sequence&() {
  if (isEmpty()) *this = ZoVariant(kSequence, ZoTypeCode::Sequence, flags());
  if (Sequence* const own = asSequence()) return *own;
  return scratchContainer<OwnArray>();
}

ZoVariant::operator const Sequence&() const noexcept {
  static const OwnArray none;
  const Sequence* const own = asSequence();
  return own ? *own : none;
}

ZoVariant::operator Dict&() {
  if (isEmpty()) *this = ZoVariant(kDict, ZoTypeCode::Dict, flags());
  if (Dict* const own = asDict()) return *own;
  return scratchContainer<OwnDict>();
}

ZoVariant::operator const Dict&() const noexcept {
  static const OwnDict none;
  const Dict* const own = asDict();
  return own ? *own : none;
}

unsigned int ZoVariant::entries() const noexcept {
  if (type() == kSequence) return payload_.sequence->entries();
  return type() == kDict ? payload_.dict->entries() : 0;
}

const ZoVariant* ZoVariant::at(unsigned int i) const noexcept {
  const Sequence* const own = asSequence();
  return own ? own->at(i) : nullptr;
}

ZoVariant* ZoVariant::at(unsigned int i) noexcept {
  return const_cast<ZoVariant*>(std::as_const(*this).at(i));
}

const ZoVariant* ZoVariant::at(std::wstring_view key) const {
  return type() == kDict ? static_cast<const OwnDict*>(payload_.dict)->at(key) : nullptr;
}

ZoVariant* ZoVariant::at(std::wstring_view key) {
  return const_cast<ZoVariant*>(std::as_const(*this).at(key));
}

// ---- Comparing ----

namespace {

// Whether two numbers are the same one, not-a-number included.
bool identical(double a, double b) noexcept { return a == b || (std::isnan(a) && std::isnan(b)); }

template <class Geometry>
bool sameComponents(const Geometry& a, const Geometry& b) noexcept {
  return identical(a.x, b.x) && identical(a.y, b.y) && identical(a.z, b.z);
}

template <class Equal>
bool sameElements(const ZoVariant::Sequence& a, const ZoVariant::Sequence& b,
                  Equal equal) noexcept {
  if (a.entries() != b.entries()) return false;
  auto other = b.begin();
  for (const ZoVariant& element : a) {
    if (!equal(element, *other)) return false;
    ++other;
  }
  return true;
}

template <class Equal>
bool sameEntries(const ZoVariant::Dict& a, const ZoVariant::Dict& b, Equal equal) noexcept {
  if (a.entries() != b.entries()) return false;
  for (const auto [key, value] : a) {
    const ZoVariant* const other = b.at(key);
    if (!other || !equal(value, *other)) return false;
  }
  return true;
}

}  // namespace

bool operator==(const ZoVariant& a, const ZoVariant& b) noexcept {
  if (a.type() != b.type() || a.code_ != b.code_ || a.flags() != b.flags()) return false;
  const auto equal = [](const ZoVariant& x, const ZoVariant& y) noexcept { return x == y; };
  switch (a.type()) {
    case ZoVariant::kInt:
    case ZoVariant::kBigInt:
      return a.integer() == b.integer();
    case ZoVariant::kReal:
      return identical(a.real(), b.real());
    case ZoVariant::kString:
      return a.text() == b.text();
    case ZoVariant::kPointer:
      return a.payload_.pointer == b.payload_.pointer;
    case ZoVariant::kPoint:
      return sameComponents(*a.payload_.point, *b.payload_.point);
    case ZoVariant::kVector:
      return sameComponents(*a.payload_.vector, *b.payload_.vector);
    case ZoVariant::kDict:
      return sameEntries(*a.payload_.dict, *b.payload_.dict, equal);
    case ZoVariant::kSequence:
      return sameElements(*a.payload_.sequence, *b.payload_.sequence, equal);
    case ZoVariant::kGuid:
      return std::memcmp(a.payload_.guid, b.payload_.guid, sizeof(_GUID)) == 0;
    default:
      return true;
  }
}

bool ZoVariant::isEqualTo(const ZoVariant& other, const ZoTol& tol) const noexcept {
  if (isNumber() && other.isNumber()) {
    if (type() != kReal && other.type() != kReal) {  // as reals, large ones would lose digits
      const auto a = static_cast<std::uint64_t>(std::max(integer(), other.integer()));
      const auto b = static_cast<std::uint64_t>(std::min(integer(), other.integer()));
      return a == b || static_cast<double>(a - b) <= tol.getPntTol();
    }
    const double a = asReal();
    const double b = other.asReal();
    return identical(a, b) || std::abs(a - b) <= tol.getPntTol();
  }
  if (type() != other.type()) return false;
  const auto equal = [&](const ZoVariant& a, const ZoVariant& b) noexcept {
    return a.isEqualTo(b, tol);
  };
  switch (type()) {
    case kString:
      return text() == other.text();
    case kPointer:
      return payload_.pointer == other.payload_.pointer;
    case kPoint:
      return sameComponents(*payload_.point, *other.payload_.point) ||
             payload_.point->isEqualTo(*other.payload_.point, tol);
    case kVector:
      return sameComponents(*payload_.vector, *other.payload_.vector) ||
             payload_.vector->isEqualTo(*other.payload_.vector, tol);
    case kDict:
      return sameEntries(*payload_.dict, *other.payload_.dict, equal);
    case kSequence:
      return sameElements(*payload_.sequence, *other.payload_.sequence, equal);
    case kGuid:
      return std::memcmp(payload_.guid, other.payload_.guid, sizeof(_GUID)) == 0;
    default:
      return true;
  }
}
