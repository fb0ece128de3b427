// Helpers of the geometry headers: square root and magnitude that compile to single instructions,
// and the switch for the SSE2 forms. Internal.
//
// Errors:  none; nothing throws.
// Threads: any.
#pragma once

#include <zo/config.h>

#include <cmath>

// Every x86-64 processor has SSE2; elsewhere the plain forms serve.
#if defined(__SSE2__) || defined(_M_X64)
#define ZO_GEOMETRY_SSE2 1
#include <emmintrin.h>
#else
#define ZO_GEOMETRY_SSE2 0
#endif

namespace zo {

// NaN stays NaN, and -0 becomes 0. (std::abs is no constant expression yet.)
[[nodiscard]] constexpr double magnitude(double value) noexcept {
  return value <= 0.0 ? 0.0 - value : value;
}

[[nodiscard]] constexpr double squared(double value) noexcept { return value * value; }

// The square root without the branch that std::sqrt needs to set errno: as pure arithmetic it can
// leave a loop.
[[nodiscard]] inline double squareRoot(double value) noexcept {
#if ZO_GEOMETRY_SSE2
  const __m128d lane = _mm_set_sd(value);
  return _mm_cvtsd_f64(_mm_sqrt_sd(lane, lane));
#else
  return std::sqrt(value);
#endif
}

#if ZO_GEOMETRY_SSE2
#if defined(__GNUC__)
// By index GCC sees through the lanes; through the intrinsics it takes vectors apart that it then
// puts together again.
[[nodiscard]] inline double lowLane(__m128d v) noexcept { return v[0]; }
[[nodiscard]] inline double highLane(__m128d v) noexcept { return v[1]; }
#else
[[nodiscard]] inline double lowLane(__m128d v) noexcept { return _mm_cvtsd_f64(v); }
[[nodiscard]] inline double highLane(__m128d v) noexcept {
  return _mm_cvtsd_f64(_mm_unpackhi_pd(v, v));
}
#endif
#endif

}  // namespace zo
