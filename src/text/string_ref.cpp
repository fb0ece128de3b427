#include <zo/text/string_ref.h>

#include <cwchar>
#include <new>

#include "text/hash.h"
#include "text/search.h"

constinit ZoStringRef::EmptyBlock ZoStringRef::s_empty;

namespace {

std::wstring_view viewOf(const ZoStringRef& block) noexcept {
  return {block.data(), block.length()};
}

unsigned int toPosition(size_t found) noexcept {
  return found < ZoStringRef::npos ? static_cast<unsigned int>(found) : ZoStringRef::npos;
}

}  // namespace

ZoStringRef* ZoStringRef::getRep(unsigned int capacity, unsigned int length) {
  if (capacity == 0 && length == 0) {
    emptyRep()->addReference();
    return emptyRep();
  }
  const size_t bytes = sizeof(ZoStringRef) + (size_t{capacity} + 1) * sizeof(wchar_t);
  auto* block = new (::operator new(bytes)) ZoStringRef(capacity, length);
  block->data()[length] = 0;
  return block;
}

void ZoStringRef::freeBlock() noexcept {
  // Threads that take and drop the empty block at the same time may lose counts.
  if (this == emptyRep()) return;
  this->~ZoStringRef();
  ::operator delete(this);
}

unsigned int ZoStringRef::first(wchar_t c) const noexcept {
  return toPosition(zo::findAnyOf(viewOf(*this), {&c, 1}));
}

unsigned int ZoStringRef::first(const wchar_t* set) const noexcept {
  return set ? toPosition(zo::findAnyOf(viewOf(*this), set)) : npos;
}

unsigned int ZoStringRef::last(wchar_t c) const noexcept {
  return toPosition(zo::findBack(viewOf(*this), {&c, 1}));
}

unsigned int ZoStringRef::hash() const noexcept { return zo::hashExact(viewOf(*this)); }

unsigned int ZoStringRef::hashFoldCase() const noexcept {
  return zo::hashFolded(data(), length()).hash();
}

int ZoStringRef::collate(const wchar_t* text) const noexcept {
  return std::wcscoll(data(), text ? text : L"");
}
