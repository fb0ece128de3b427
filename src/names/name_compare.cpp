#include "names/name_compare.h"

#include <algorithm>
#include <cstdint>

#include "text/eight_units.h"
#include "text/letter_case.h"

namespace zo {
namespace {

// The position of the first unit that differs after folding; n when none does. Vectors decide what
// ASCII folding makes the same, the rest is looked at unit by unit.
size_t firstDifference(const wchar_t* a, const wchar_t* b, size_t n) noexcept {
  size_t i = 0;
  while (i < n) {
    if (n - i >= kLane) {
      const __m128i same = _mm_cmpeq_epi16(lowerAscii8(load8(a + i)), lowerAscii8(load8(b + i)));
      if (mask8(same) == 0xFFFF) {
        i += kLane;
        continue;
      }
    }
    const size_t end = std::min(i + kLane, n);
    for (; i < end; ++i) {
      if (a[i] != b[i] && lowerCase(a[i]) != lowerCase(b[i])) return i;
    }
  }
  return n;
}

// Whether texts of n units, 8 or more, are written alike. All is looked at before that is told:
// names of one length mostly are, and to stop early would cost a branch for each step.
bool writtenAlike(const wchar_t* a, const wchar_t* b, size_t n) noexcept {
  const auto same = [=](size_t at) noexcept {
    return _mm_cmpeq_epi16(load8(a + at), load8(b + at));
  };
  const size_t last = n - kLane;
  __m128i alike = same(last);
  for (size_t i = 0; i < last; i += kLane) alike = _mm_and_si128(alike, same(i));
  return mask8(alike) == 0xFFFF;
}

}  // namespace

bool equalOfSize(const wchar_t* a, const wchar_t* b, size_t size) noexcept {
  // Equal names are mostly written alike, which is seen at a third of the cost.
  return (size >= kLane && writtenAlike(a, b, size)) || firstDifference(a, b, size) == size;
}

int orderNames(std::wstring_view a, std::wstring_view b) noexcept {
  const size_t common = std::min(a.size(), b.size());
  const size_t at = a.data() == b.data() ? common : firstDifference(a.data(), b.data(), common);
  if (at < common) return lowerCase(a[at]) < lowerCase(b[at]) ? -1 : 1;
  return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

std::size_t hashName(std::wstring_view name) noexcept {
  std::uint64_t h = 0xCBF29CE484222325;  // FNV-1a, a unit at a time
  for (const wchar_t c : name) h = (h ^ lowerCase(c)) * 0x100000001B3;
  return static_cast<std::size_t>(h ^ (h >> 32));
}

}  // namespace zo
