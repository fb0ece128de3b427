#include <zo/text/containers/text_keys.h>

#include "text/hash.h"
#include "text/units.h"

namespace zo {
namespace {

// 0xFFFF for each of eight units that are equal.
__m128i equal8(const wchar_t* a, const wchar_t* b) noexcept {
  return _mm_cmpeq_epi16(upperAscii8(load8(a)), upperAscii8(load8(b)));
}

}  // namespace

HashedKey hashText(const wchar_t* text, std::size_t length) noexcept {
  return hashFolded(text, length);
}

bool equalPlainTexts(const wchar_t* a, const wchar_t* b, std::size_t length) noexcept {
  if (a == b) return true;
  if (length < kLane) {
    for (std::size_t i = 0; i < length; ++i) {
      if (upperAscii(a[i]) != upperAscii(b[i])) return false;
    }
    return true;
  }
  // Up to 24 units in three steps that overlap, without a branch on the length; then what lies
  // between.
  const std::size_t last = length - kLane;
  const std::size_t second = last < kLane ? last : kLane;
  __m128i equal = _mm_and_si128(equal8(a, b), equal8(a + last, b + last));
  equal = _mm_and_si128(equal, equal8(a + second, b + second));
  for (std::size_t i = 2 * kLane; i < last; i += kLane)
    equal = _mm_and_si128(equal, equal8(a + i, b + i));
  return mask8(equal) == 0xFFFF;
}

}  // namespace zo
