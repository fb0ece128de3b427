// Eight UTF-16 units at a time: the vector steps that searching, comparing and hashing share.
//
// ASCII case is folded here; what is not ASCII is left to the caller. SSE2 is part of every 64-bit
// x86 processor.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstring>

namespace zo {

inline constexpr size_t kLane = 8;  // units in one vector

inline __m128i load8(const wchar_t* at) noexcept {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}
inline __m128i fill8(wchar_t c) noexcept { return _mm_set1_epi16(static_cast<short>(c)); }

// 0xFFFF where low <= unit <= high, compared as unsigned numbers.
inline __m128i between8(__m128i v, wchar_t low, wchar_t high) noexcept {
  const __m128i outside =
      _mm_or_si128(_mm_subs_epu16(fill8(low), v), _mm_subs_epu16(v, fill8(high)));
  return _mm_cmpeq_epi16(outside, _mm_setzero_si128());
}
inline __m128i lowerAscii8(__m128i v) noexcept {
  return _mm_or_si128(v, _mm_and_si128(between8(v, L'A', L'Z'), fill8(0x20)));
}
inline __m128i upperAscii8(__m128i v) noexcept {
  return _mm_andnot_si128(_mm_and_si128(between8(v, L'a', L'z'), fill8(0x20)), v);
}
inline unsigned int mask8(__m128i v) noexcept {
  return static_cast<unsigned int>(_mm_movemask_epi8(v));
}

inline bool equalUnits(const wchar_t* a, const wchar_t* b, size_t n) noexcept {
  if (n < kLane) {
    for (size_t i = 0; i < n; ++i) {
      if (a[i] != b[i]) return false;
    }
    return true;
  }
  size_t i = 0;
  for (; i + kLane <= n; i += kLane) {
    if (mask8(_mm_cmpeq_epi16(load8(a + i), load8(b + i))) != 0xFFFF) return false;
  }
  // The last vector may overlap what was compared already.
  return i == n || mask8(_mm_cmpeq_epi16(load8(a + n - kLane), load8(b + n - kLane))) == 0xFFFF;
}

}  // namespace zo
