// Surrogates that stand alone: texts that no other form of Unicode can hold.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/code_units.h"
#include "text/eight_units.h"

namespace zo {

// Whether a place is between the halves of a pair.
[[nodiscard]] constexpr bool isInPair(std::u16string_view text, std::size_t at) noexcept {
  return at > 0 && at < text.size() && isHighSurrogate(text[at - 1]) && isLowSurrogate(text[at]);
}
[[nodiscard]] constexpr bool isLoneSurrogate(std::u16string_view text, std::size_t at) noexcept {
  return isSurrogate(text[at]) && !isInPair(text, at) && !isInPair(text, at + 1);
}

// The place of the first one from a place on, or the text's length. Quick where there is none.
[[nodiscard]] inline std::size_t loneSurrogate(std::u16string_view text,
                                               std::size_t from = 0) noexcept {
  const auto in8 = [text](std::size_t at) {
    const __m128i v = load8(reinterpret_cast<const wchar_t*>(text.data() + at));
    return _mm_cmpeq_epi16(_mm_and_si128(v, fill8(0xF800)), fill8(0xD800));
  };
  const auto in16 = [in8](std::size_t at) { return _mm_or_si128(in8(at), in8(at + kLane)); };
  constexpr std::size_t kStep = 4 * kLane;
  for (std::size_t i = from; i < text.size(); ++i) {
    while (i + kStep <= text.size() && mask8(_mm_or_si128(in16(i), in16(i + kStep / 2))) == 0)
      i += kStep;
    while (i + kLane <= text.size() && mask8(in8(i)) == 0) i += kLane;
    if (i < text.size() && isLoneSurrogate(text, i)) return i;
  }
  return text.size();
}

}  // namespace zo
