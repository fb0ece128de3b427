#include "text/collation.h"

#include <windows.h>

#include "text/eight_units.h"
#include "text/plain_order.h"

namespace zo {
namespace {

// CompareStringW takes no null pointer, even for no characters.
const wchar_t* nonNull(std::wstring_view text) noexcept { return text.data() ? text.data() : L""; }

// The units of a short stretch in one vector, the rest filled with blanks.
__m128i loadPartial(const wchar_t* at, size_t n) noexcept {
  wchar_t units[kLane] = {L' ', L' ', L' ', L' ', L' ', L' ', L' ', L' '};
  for (size_t i = 0; i < n; ++i) units[i] = at[i];
  return load8(units);
}

// What a stretch of two texts of the same length showed: all bits set where it holds for every
// unit.
struct Findings {
  __m128i printable = _mm_set1_epi16(-1);
  __m128i same = _mm_set1_epi16(-1);   // after folding a to z
  __m128i alike = _mm_set1_epi16(-1);  // as they stand

  void look(__m128i a, __m128i b) noexcept {
    printable =
        _mm_and_si128(printable, _mm_and_si128(between8(a, L' ', L'~'), between8(b, L' ', L'~')));
    same = _mm_and_si128(same, _mm_cmpeq_epi16(lowerAscii8(a), lowerAscii8(b)));
    alike = _mm_and_si128(alike, _mm_cmpeq_epi16(a, b));
  }
};

bool printableAscii(std::wstring_view text) noexcept {
  Findings found;
  size_t i = 0;
  for (; i + kLane <= text.size(); i += kLane) {
    const __m128i v = load8(text.data() + i);
    found.look(v, v);
  }
  const __m128i rest = loadPartial(text.data() + i, text.size() - i);
  found.look(rest, rest);
  return mask8(found.printable) == 0xFFFF;
}

int askPlatform(std::wstring_view a, std::wstring_view b) noexcept {
  constexpr LCID kUserLocale = 0x400;
  const int order =
      CompareStringW(kUserLocale, NORM_IGNORECASE, nonNull(a), static_cast<int>(a.size()),
                     nonNull(b), static_cast<int>(b.size()));
  if (order == CSTR_LESS_THAN) return -1;
  return order == CSTR_EQUAL ? 0 : 1;
}

}  // namespace

int compareIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept {
  if (const PlainOrder* const order = PlainOrder::ofUser()) {
    const int known = order->compare(a, b);
    if (known != PlainOrder::kUnknown) return known;
  }
  return a == b ? 0 : askPlatform(a, b);
}

bool equalIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept {
  if (a.size() != b.size()) {
    return !(printableAscii(a) && printableAscii(b)) && compareIgnoreCase(a, b) == 0;
  }
  Findings found;
  const size_t n = a.size();
  size_t i = 0;
  for (; i + kLane <= n; i += kLane) found.look(load8(a.data() + i), load8(b.data() + i));
  if (i < n) {
    if (n >= kLane) {  // overlapping what was looked at already
      found.look(load8(a.data() + n - kLane), load8(b.data() + n - kLane));
    } else {
      found.look(loadPartial(a.data(), n), loadPartial(b.data(), n));
    }
  }
  if (mask8(found.alike) == 0xFFFF) return true;
  if (mask8(found.printable) == 0xFFFF) {
    if (mask8(found.same) != 0xFFFF) return false;
    const PlainOrder* const order = PlainOrder::ofUser();
    if (order && order->foldsByLetter()) return true;
  }
  return compareIgnoreCase(a, b) == 0;
}

}  // namespace zo
