#include "text/plain_order.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "text/eight_units.h"

namespace zo {
namespace {

// All bits set for each unit that is not printable ASCII, or a hyphen or an apostrophe.
__m128i irregular8(__m128i v) noexcept {  // units from 0x8000 on count as negative
  const __m128i outside =
      _mm_or_si128(_mm_cmplt_epi16(v, fill8(L' ')), _mm_cmpgt_epi16(v, fill8(L'~')));
  return _mm_or_si128(
      outside, _mm_or_si128(_mm_cmpeq_epi16(v, fill8(L'-')), _mm_cmpeq_epi16(v, fill8(L'\''))));
}

// Whether none of n units, 8 or more, is so. Up to 32 in four steps that overlap: to foresee where
// a loop ends would cost the processor more.
bool isRegular(const wchar_t* text, std::size_t n) noexcept {
  const std::size_t last = n - kLane;
  const auto at = [=](std::size_t i) noexcept {
    return irregular8(load8(text + std::min(i, last)));
  };
  __m128i found =
      _mm_or_si128(_mm_or_si128(at(0), at(kLane)), _mm_or_si128(at(2 * kLane), at(last)));
  for (std::size_t i = 3 * kLane; i < last; i += kLane) found = _mm_or_si128(found, at(i));
  return mask8(found) == 0;
}

// The first of n positions where two texts differ after folding a to z, or n.
std::size_t firstDifference(const wchar_t* a, const wchar_t* b, std::size_t n) noexcept {
  std::size_t i = 0;
  for (; i + kLane <= n; i += kLane) {
    const unsigned same =
        mask8(_mm_cmpeq_epi16(lowerAscii8(load8(a + i)), lowerAscii8(load8(b + i))));
    if (same != 0xFFFF) return i + static_cast<std::size_t>(std::countr_one(same)) / 2;
  }
  const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? c + (L'a' - L'A') : c; };
  while (i < n && lower(a[i]) == lower(b[i])) ++i;
  return i;
}

}  // namespace

bool PlainOrder::isPlain(std::wstring_view text) const noexcept {
  if (isRegular_ && text.size() >= kLane) return isRegular(text.data(), text.size());
  unsigned units = 0;
  unsigned faults = 0;
  unsigned before = 0;
  for (const wchar_t c : text) {
    units |= c;
    const unsigned traits = traits_[c % kCharacters];
    faults |= traits & (before / kBegins | kOdd);
    before = traits;
  }
  return units < kCharacters && (faults & (kEnds | kOdd)) == 0;
}

int PlainOrder::compare(std::wstring_view a, std::wstring_view b) const noexcept {
  if (!isPlain(a) || !isPlain(b)) return kUnknown;
  const std::size_t common = std::min(a.size(), b.size());
  std::size_t i = isRegular_ ? firstDifference(a.data(), b.data(), common) : 0;
  for (; i < common; ++i) {
    const int x = weights_[a[i] % kCharacters];
    const int y = weights_[b[i] % kCharacters];
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

std::uint32_t PlainOrder::frontOf(std::wstring_view text) const noexcept {
  constexpr unsigned kRankBits = 7;
  if (!isPlain(text)) return 0;
  std::uint32_t front = 0;
  for (std::size_t i = 0; i < kFrontBits / kRankBits; ++i)
    front = front << kRankBits | (i < text.size() ? ranks_[text[i] % kCharacters] : 0u);
  return front;
}

void PlainOrder::writeKey(std::wstring_view plain, unsigned char* key) const noexcept {
  for (const wchar_t c : plain) {
    const unsigned weight = weights_[c % kCharacters];
    *key++ = static_cast<unsigned char>(weight >> 8);
    *key++ = static_cast<unsigned char>(weight);
  }
  std::memcpy(key, tail_, kTailBytes);
}

}  // namespace zo
