// Places of a text that a search must not stop at.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "text/code_units.h"
#include "text/eight_units.h"

namespace zo {

// The two halves of a pair, or a line's end of two units.
[[nodiscard]] constexpr bool isOneStep(char16_t first, char16_t second) noexcept {
  return (isHighSurrogate(first) && isLowSurrogate(second)) || (first == u'\r' && second == u'\n');
}
[[nodiscard]] constexpr bool isInPair(std::u16string_view text, std::size_t at) noexcept {
  return at > 0 && at < text.size() && isHighSurrogate(text[at - 1]) && isLowSurrogate(text[at]);
}
// Where a search that is to begin at a place does so: not within a pair, nor, where lines matter,
// within a line's end.
[[nodiscard]] constexpr std::size_t firstPlace(std::u16string_view text, std::size_t start,
                                               bool hasLines) noexcept {
  const bool isInLineEnd = hasLines && start > 0 && start < text.size() &&
                           text[start - 1] == u'\r' && text[start] == u'\n';
  return start + (isInLineEnd || isInPair(text, start));
}
[[nodiscard]] constexpr bool isLoneSurrogate(std::u16string_view text, std::size_t at) noexcept {
  return isSurrogate(text[at]) && !isInPair(text, at) && !isInPair(text, at + 1);
}
// The place of the first one from a place on, or the text's length. Quick where there is none.
[[nodiscard]] inline std::size_t loneSurrogate(std::u16string_view text,
                                               std::size_t from = 0) noexcept {
  const auto surrogatesIn8 = [text](std::size_t at) {
    const __m128i v = load8(reinterpret_cast<const wchar_t*>(text.data() + at));
    return _mm_cmpeq_epi16(_mm_and_si128(v, fill8(0xF800)), fill8(0xD800));
  };
  std::size_t i = from;
  while (i < text.size()) {
    if (i + 2 * kLane <= text.size() &&
        mask8(_mm_or_si128(surrogatesIn8(i), surrogatesIn8(i + kLane))) == 0) {
      i += 2 * kLane;
      continue;
    }
    for (const std::size_t end = std::min(i + 2 * kLane, text.size()); i < end; ++i)
      if (isLoneSurrogate(text, i)) return i;
  }
  return text.size();
}

}  // namespace zo
