// ZoVariant: what it owns, and its elements.
#include <zo/names/file_name.h>
#include <zo/variant/variant.h>

#include "variant/containers.h"

using zo::copyOf;
using zo::OwnArray;
using zo::OwnDict;
using zo::OwnList;

namespace {

std::unique_ptr<ZoVariant::Sequence> newSequence(ZoTypeCode code) {
  if (code == ZoTypeCode::List) return std::make_unique<OwnList>();
  return std::make_unique<OwnArray>();
}

}  // namespace

// ---- Owning ----

ZoVariant::ZoVariant(const ZoFileName& name, ZoTypeCode code, unsigned int flags)
    : ZoVariant(name.view(), code, flags) {}

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

ZoVariant::ZoVariant(ZoList<ZoVariant>&& list, ZoTypeCode code, unsigned int flags)
    : ZoVariant(kEmpty, code, 0, Payload{}) {
  payload_.sequence = new OwnList(std::move(list));
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

ZoHashDict<ZoVariant, ZoString> ZoVariant::takeDict() {
  if (type() != kDict) return OwnDict();
  return OwnDict(std::move(static_cast<OwnDict&>(*payload_.dict)));
}

ZoArray<ZoVariant> ZoVariant::takeArray() {
  if (type() != kSequence) return {};
  if (auto* const own = dynamic_cast<OwnArray*>(payload_.sequence)) return std::move(*own);
  OwnArray taken;
  if (taken.resize(entries()) != ZoResult::ok) throw std::bad_alloc();
  for (ZoVariant& element : *payload_.sequence) (void)taken.append(std::move(element));
  (void)payload_.sequence->removeAll(true);
  return taken;
}

unsigned int ZoVariant::entries() const noexcept {
  // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a sequence has its block
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
