// ZoString: searching, substrings, comparing, and what the text is like.
#include <zo/text/string.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "text/collation.h"
#include "text/search.h"

// ---- Searching ----

namespace {

using Search = size_t (*)(std::wstring_view, std::wstring_view) noexcept;

// The searched range starts at start; an empty pattern is found at the given end of it.
unsigned int search(std::wstring_view text, const wchar_t* pattern, size_t patlen,
                    unsigned int start, Search find, bool emptyAtEnd) noexcept {
  if (!pattern) patlen = 0;
  if (start > text.size() || patlen > text.size() - start) return ZoString::npos;
  if (patlen == 0) return emptyAtEnd ? static_cast<unsigned int>(text.size()) : start;
  const size_t at = find(text.substr(start), {pattern, patlen});
  return at == zo::kNotFound ? ZoString::npos : start + static_cast<unsigned int>(at);
}

}  // namespace

unsigned int ZoString::index(const wchar_t* pattern, unsigned int patlen, unsigned int start,
                             caseCompare cmp) const noexcept {
  return search(view(), pattern, patlen, start, cmp == exact ? zo::find : zo::findFolded, false);
}

unsigned int ZoString::index(const wchar_t* pattern, unsigned int start,
                             caseCompare cmp) const noexcept {
  return index(pattern, lengthOf(zo::textOf(pattern)), start, cmp);
}

unsigned int ZoString::indexBack(const wchar_t* pattern, unsigned int patlen, unsigned int start,
                                 caseCompare cmp) const noexcept {
  return search(view(), pattern, patlen, start, cmp == exact ? zo::findBack : zo::findBackFolded,
                true);
}

unsigned int ZoString::indexBack(const wchar_t* pattern, unsigned int start,
                                 caseCompare cmp) const noexcept {
  return indexBack(pattern, lengthOf(zo::textOf(pattern)), start, cmp);
}

bool ZoString::standsAt(size_t pos, std::wstring_view text, caseCompare cmp) const noexcept {
  if (pos > length() || text.size() > length() - pos) return false;
  const std::wstring_view here = view().substr(pos, text.size());
  return cmp == exact ? here == text : zo::equalFolded(here, text);
}

unsigned int ZoString::firstOf(std::wstring_view set, unsigned int from) const noexcept {
  if (from > length()) return npos;
  const size_t at = zo::findAnyOf(view().substr(from), set);
  return at == zo::kNotFound ? npos : from + static_cast<unsigned int>(at);
}

// ---- Substrings ----

ZoSubString ZoString::part(unsigned int start, unsigned int len) const noexcept {
  if (start > length()) {
    ZoSubString::subStringError(length(), start, len);
    return found(npos, 0);
  }
  return found(start, std::min(len, length() - start));
}

ZoSubString ZoString::rightPart(unsigned int n) const noexcept {
  n = std::min(n, length());
  return found(length() - n, n);
}

ZoSubString ZoString::strippedPart(stripType type, std::wstring_view set) const noexcept {
  const auto inSet = [&](wchar_t c) { return set.find(c) != std::wstring_view::npos; };
  unsigned int begin = 0;
  unsigned int end = length();
  if (type & leading) {
    while (begin < end && inSet(data_[begin])) ++begin;
  }
  if (type & trailing) {
    while (end > begin && inSet(data_[end - 1])) --end;
  }
  return begin == end ? found(npos, 0) : found(begin, end - begin);
}

ZoSubString ZoString::occurrence(std::wstring_view pattern, unsigned int start,
                                 caseCompare cmp) const noexcept {
  return found(index(pattern, start, cmp), lengthOf(pattern));
}

// ---- Comparing ----

int ZoString::codeUnitOrder(std::wstring_view other) const noexcept {
  const int order = view().compare(other);
  return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

int ZoString::compareTo(const ZoString& other, caseCompare cmp) const noexcept {
  if (cmp == ignoreCase) return zo::compareIgnoreCase(view(), other.view());
  const unsigned int common = std::min(length(), other.length());
  const int order = std::memcmp(data_, other.data_, size_t{common} * sizeof(wchar_t));
  if (order != 0) return order;
  return length() < other.length() ? -1 : (length() > other.length() ? 1 : 0);
}

int ZoString::order(std::wstring_view other, caseCompare cmp) const noexcept {
  if (cmp == exact) return codeUnitOrder(other);
  return zo::compareIgnoreCase(view(), other);
}

bool ZoString::isEqual(std::wstring_view other, caseCompare cmp) const noexcept {
  return cmp == exact ? view() == other : zo::equalIgnoreCase(view(), other);
}

// ---- What the text is like ----

bool ZoString::isAscii() const noexcept {
  const std::wstring_view text = view();
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < 0x80; });
}

unsigned int ZoString::mbLength() const noexcept {
  if (MB_CUR_MAX == 1) return length();
  std::mbstate_t state{};
  char bytes[MB_LEN_MAX];
  size_t total = 0;
  for (const wchar_t c : *this) {
    const size_t n = std::wcrtomb(bytes, c, &state);
    total += n == static_cast<size_t>(-1) ? 1 : n;
  }
  return total < npos ? static_cast<unsigned int>(total) : npos;
}
