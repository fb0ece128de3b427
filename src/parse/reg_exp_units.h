// Places of a text that a search must not stop at.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/code_units.h"

namespace zo {

// The two halves of a pair, or a line's end of two units.
[[nodiscard]] constexpr bool isOneStep(char16_t first, char16_t second) noexcept {
  return (isHighSurrogate(first) && isLowSurrogate(second)) || (first == u'\r' && second == u'\n');
}
[[nodiscard]] constexpr bool isInPair(std::u16string_view text, std::size_t at) noexcept {
  return at > 0 && at < text.size() && isHighSurrogate(text[at - 1]) && isLowSurrogate(text[at]);
}
[[nodiscard]] constexpr bool isLoneSurrogate(std::u16string_view text, std::size_t at) noexcept {
  return isSurrogate(text[at]) && !isInPair(text, at) && !isInPair(text, at + 1);
}
[[nodiscard]] constexpr bool hasLoneSurrogate(std::u16string_view text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i)
    if (isLoneSurrogate(text, i)) return true;
  return false;
}

}  // namespace zo
