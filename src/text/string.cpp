// ZoString: construction, storage and editing.
#include <zo/text/string.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <cwchar>

#include "text/search.h"
#include "text/text_buffer.h"

unsigned int ZoString::s_initialCapac = 15;
unsigned int ZoString::s_resizeInc = 16;
unsigned int ZoString::s_freeboard = 15;

namespace {

void copyUnits(wchar_t* to, const wchar_t* from, size_t n) noexcept {
  if (n > 0) std::memcpy(to, from, n * sizeof(wchar_t));
}

bool pointsInto(const wchar_t* p, const wchar_t* data, unsigned int length) noexcept {
  const auto at = reinterpret_cast<std::uintptr_t>(p);
  const auto begin = reinterpret_cast<std::uintptr_t>(data);
  return at - begin < size_t{length} * sizeof(wchar_t);
}

}  // namespace

ZoStringRef* ZoString::blockFor(size_t length) {
  if (length == 0 || length > maxLength()) return ZoStringRef::getRep(0, 0);
  const auto n = static_cast<unsigned int>(length);
  return ZoStringRef::getRep(adjustCapacity(n), n);
}

ZoStringRef* ZoString::blockOf(std::wstring_view text) {
  ZoStringRef* block = blockFor(text.size());
  copyUnits(block->data(), text.data(), block->length());
  return block;
}

ZoStringRef* ZoString::blockOf(const wchar_t* text) { return blockOf(zo::textOf(text)); }

ZoString::ZoString(const wchar_t* text, unsigned int length)
    : ZoString(blockOf({text, text ? length : 0u})) {}
ZoString::ZoString(const ZoSubString& text) : ZoString(blockOf(text.view())) {}

ZoString::ZoString(const wchar_t* a, unsigned int lengthA, const wchar_t* b, unsigned int lengthB) {
  if (!a) lengthA = 0;
  if (!b) lengthB = 0;
  // Two lengths of up to 2^32 - 1 do not wrap in 64 bits; blockFor refuses what is too long.
  ZoStringRef* block = blockFor(std::uint64_t{lengthA} + lengthB);
  if (block->length() != 0) {
    copyUnits(block->data(), a, lengthA);
    copyUnits(block->data() + lengthA, b, lengthB);
  }
  data_ = block->data();
}

ZoString ZoString::concat(std::wstring_view a, std::wstring_view b) {
  return ZoString(a.data(), lengthOf(a), b.data(), lengthOf(b));
}

void ZoString::initChar(wchar_t c) {
  ZoStringRef* block = ZoStringRef::getRep(std::max(s_initialCapac, 1u), 1);
  block->data()[0] = c;
  data_ = block->data();
}

ZoString& ZoString::operator=(const ZoString& other) noexcept {
  if (this != &other) {
    ZoStringRef* block = addedReference(other.pref());
    pref()->release();
    data_ = block->data();
  }
  return *this;
}

ZoString& ZoString::operator=(const ZoSubString& text) { return replace(0, npos, text.view()); }

ZoString& ZoString::operator=(const wchar_t* text) {
  if (!text) return resize(0);
  if (*text == 0) {
    if (pref()->isShared()) {
      adopt(ZoStringRef::getRep(0, 0));
    } else {
      pref()->setLength(0);
    }
    return *this;
  }
  return replace(0, length(), text);
}

ZoString ZoString::copy() const {
  ZoString result(*this);
  result.clone();
  return result;
}

// ---- Storage ----

unsigned int ZoString::adjustCapacity(unsigned int n) noexcept {
  if (n <= s_initialCapac) return std::min(s_initialCapac, maxLength());
  const std::uint64_t increment = std::max(s_resizeInc, 1u);
  const std::uint64_t steps = (n - s_initialCapac + increment - 1) / increment;
  // Near the limit the step would lead past it; the capacity then is the limit.
  return static_cast<unsigned int>(
      std::min<std::uint64_t>(s_initialCapac + steps * increment, std::max(n, maxLength())));
}

// Takes over one reference of block.
void ZoString::adopt(ZoStringRef* block) noexcept {
  pref()->release();
  data_ = block->data();
}

void ZoString::clone() { clone(length()); }

void ZoString::clone(unsigned int n) {
  n = std::min(n, maxLength());
  const unsigned int kept = std::min(n, length());
  ZoStringRef* block = ZoStringRef::getRep(n, kept);
  copyUnits(block->data(), data_, kept);
  adopt(block);
}

void ZoString::cow() {
  if (pref()->isShared()) clone();
}

void ZoString::cow(unsigned int n) {
  if (pref()->isShared() || capacity() < n) clone(n);
}

void ZoString::clobber(unsigned int n) {
  if (!pref()->isShared() && capacity() >= n) {
    pref()->setLength(0);
  } else {
    adopt(ZoStringRef::getRep(std::min(n, maxLength()), 0));
  }
}

unsigned int ZoString::capacity(unsigned int n) {
  if (n > length() && n != capacity() && n <= maxLength()) clone(n);
  return capacity();
}

wchar_t& ZoString::charRef(unsigned int i) {
  static thread_local wchar_t scratch;
  if (i >= length()) return scratch;
  cow();
  return data_[i];
}

// ---- Editing ----

// The frame of every edit: makes a gap of textLength characters in the place of n characters at pos
// and has it filled. fill(gap) runs while the old characters still stand when the text to fill in
// may be among them (aliased).
template <class Fill>
ZoString& ZoString::splice(unsigned int pos, unsigned int n, unsigned int textLength, bool aliased,
                           Fill fill) {
  ZoStringRef* const block = pref();
  const unsigned int length = block->length();
  pos = std::min(pos, length);
  n = std::min(n, length - pos);
  const unsigned int rest = length - pos - n;
  if (textLength > maxLength() - (length - n)) return *this;
  const unsigned int total = length - n + textLength;

  if (!aliased && !block->isShared() && block->capacity() >= total &&
      block->capacity() - total <= s_freeboard) {
    std::memmove(data_ + pos + textLength, data_ + pos + n, size_t{rest} * sizeof(wchar_t));
    fill(data_ + pos);
    block->setLength(total);
    return *this;
  }
  ZoStringRef* const fresh = ZoStringRef::getRep(adjustCapacity(total), total);
  copyUnits(fresh->data(), data_, pos);
  fill(fresh->data() + pos);
  copyUnits(fresh->data() + pos + textLength, data_ + pos + n, rest);
  adopt(fresh);
  return *this;
}

ZoString& ZoString::replace(unsigned int pos, unsigned int n, const wchar_t* text,
                            unsigned int textLength) {
  if (!text) textLength = 0;
  return splice(pos, n, textLength, pointsInto(text, data_, length()),
                [=](wchar_t* gap) { copyUnits(gap, text, textLength); });
}

ZoString& ZoString::replace(unsigned int pos, unsigned int n, const wchar_t* text) {
  return replace(pos, n, text, lengthOf(zo::textOf(text)));
}

ZoString& ZoString::replaceEach(std::wstring_view what, std::wstring_view by, caseCompare cmp) {
  const auto find = cmp == exact ? zo::find : zo::findFolded;
  std::wstring_view rest = view();
  size_t at = what.empty() ? zo::kNotFound : find(rest, what);
  if (at == zo::kNotFound) return *this;
  zo::TextBuffer text;
  for (; at != zo::kNotFound; at = find(rest, what)) {
    text << rest.substr(0, at) << by;
    rest.remove_prefix(at + what.size());
  }
  text << rest;
  return replace(0, npos, text.view());
}

ZoString& ZoString::insertChars(unsigned int pos, wchar_t c, unsigned int count) {
  return splice(pos, 0, count, false, [=](wchar_t* gap) { std::fill_n(gap, count, c); });
}

ZoString& ZoString::resize(unsigned int n) {
  if (n <= length()) return remove(n);
  return insertChars(npos, L' ', n - length());
}

ZoString& ZoString::stripAnyOf(stripType type, std::wstring_view set) {
  const ZoSubString kept = strippedPart(type, set);
  if (kept.isEmpty()) return remove(0);
  remove(kept.start() + kept.length());
  return remove(0, kept.start());
}

namespace {

// Converts a text piece by piece: the runtime stops at a zero character, the text may not.
void convertPieces(wchar_t* text, size_t length, errno_t (*convert)(wchar_t*, size_t)) noexcept {
  for (size_t i = 0; i < length; i += std::wcslen(text + i) + 1) convert(text + i, length - i + 1);
}

}  // namespace

ZoString& ZoString::toLower() {
  cow();
  convertPieces(data_, length(), _wcslwr_s);
  return *this;
}

ZoString& ZoString::toUpper() {
  cow();
  convertPieces(data_, length(), _wcsupr_s);
  return *this;
}
