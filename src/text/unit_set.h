// A set of UTF-16 units, and where any of them stands in a text.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

#include "text/eight_units.h"

namespace zo {

class UnitSet {
 public:
  // The set must outlive this.
  explicit UnitSet(std::wstring_view set) noexcept : set_(set) {
    for (size_t k = 0; k < kFew; ++k)
      few_[k] = fill8(set.empty() ? 0 : set[k < set.size() ? k : 0]);
    for (const wchar_t c : set) {
      if (c < 128) ascii_[c / 64] |= std::uint64_t{1} << c % 64;
    }
  }

  [[nodiscard]] bool contains(wchar_t c) const noexcept {
    if (c < 128) return (ascii_[c / 64] >> c % 64 & 1) != 0;
    return set_.find(c) != std::wstring_view::npos;
  }

  // Calls found(position) for each place of the text with a unit of the set, from the front, until
  // it returns false.
  template <class Found>
  void eachIn(std::wstring_view text, Found found) const {
    if (set_.empty()) return;
    size_t i = 0;
    for (; i + kLane <= text.size(); i += kLane) {
      // Each position has two bits in the mask.
      for (unsigned int mask = hits(text.data() + i); mask != 0;
           mask &= mask - 1, mask &= mask - 1) {
        if (!found(i + static_cast<size_t>(std::countr_zero(mask)) / 2)) return;
      }
    }
    for (; i < text.size(); ++i) {
      if (contains(text[i]) && !found(i)) return;
    }
  }

 private:
  static constexpr size_t kFew = 4;  // so many are compared with eight positions at a time

  [[nodiscard]] unsigned int hits(const wchar_t* at) const noexcept {
    if (set_.size() <= kFew) {
      const __m128i v = load8(at);
      return mask8(
          _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, few_[0]), _mm_cmpeq_epi16(v, few_[1])),
                       _mm_or_si128(_mm_cmpeq_epi16(v, few_[2]), _mm_cmpeq_epi16(v, few_[3]))));
    }
    unsigned int mask = 0;
    for (size_t k = 0; k < kLane; ++k) mask |= contains(at[k]) ? 3u << 2 * k : 0u;
    return mask;
  }

  std::wstring_view set_;
  std::uint64_t ascii_[2] = {};
  __m128i few_[kFew];
};

}  // namespace zo
