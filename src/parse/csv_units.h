// The first of four units in a text: eight positions at a time. Needs no platform; where wchar_t is
// no UTF-16 unit (fuzz targets), one at a time.
#pragma once

#include <bit>

#include "text/eight_units.h"

namespace zo {

class FourUnits {
 public:
  FourUnits(wchar_t a, wchar_t b, wchar_t c, wchar_t d) noexcept
      : units_{a, b, c, d}, filled_{fill8(a), fill8(b), fill8(c), fill8(d)} {}

  // The first position of any of them; end where there is none.
  [[nodiscard]] const wchar_t* find(const wchar_t* at, const wchar_t* end) const noexcept {
    if constexpr (sizeof(wchar_t) == 2) {
      for (; end - at >= static_cast<std::ptrdiff_t>(kLane); at += kLane) {
        const __m128i v = load8(at);
        const unsigned int mask = mask8(_mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi16(v, filled_[0]), _mm_cmpeq_epi16(v, filled_[1])),
            _mm_or_si128(_mm_cmpeq_epi16(v, filled_[2]), _mm_cmpeq_epi16(v, filled_[3]))));
        if (mask != 0) return at + std::countr_zero(mask) / 2;  // two bits for each position
      }
    }
    while (at != end && *at != units_[0] && *at != units_[1] && *at != units_[2] &&
           *at != units_[3])
      ++at;
    return at;
  }

 private:
  wchar_t units_[4];   // NOLINT(modernize-use-default-member-init): of the parameters
  __m128i filled_[4];  // NOLINT(modernize-use-default-member-init)
};

}  // namespace zo
