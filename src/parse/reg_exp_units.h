// Places of a text that a search must not stop at.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/code_units.h"
#include "text/lone_surrogate.h"

namespace zo {

// The two halves of a pair, or a line's end of two units.
[[nodiscard]] constexpr bool isOneStep(char16_t first, char16_t second) noexcept {
  return (isHighSurrogate(first) && isLowSurrogate(second)) || (first == u'\r' && second == u'\n');
}
// Where a search that is to begin at a place does so: not within a pair, nor, where lines matter,
// within a line's end.
[[nodiscard]] constexpr std::size_t firstPlace(std::u16string_view text, std::size_t start,
                                               bool hasLines) noexcept {
  const bool isInLineEnd = hasLines && start > 0 && start < text.size() &&
                           text[start - 1] == u'\r' && text[start] == u'\n';
  return start + (isInLineEnd || isInPair(text, start));
}

}  // namespace zo
