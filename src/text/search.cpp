#include "text/search.h"

#include <algorithm>
#include <bit>
#include <cwctype>

#include "text/code_units.h"
#include "text/eight_units.h"
#include "text/unit_set.h"

namespace zo {
namespace {

// The runtime is asked only about what is not ASCII.
wchar_t foldForSearch(wchar_t c) noexcept {
  return c < 0x80 ? lowerAscii(c) : static_cast<wchar_t>(std::towlower(c));
}

// What the search loops ask of a matcher:
//   candidates(at)  two bits for each of eight positions from at that can start a match
//   matches(at)     whether the pattern stands at a candidate
//   startsAt(at)    the same for any position
class ExactMatcher {
 public:
  explicit ExactMatcher(std::wstring_view pattern) noexcept
      : pattern_(pattern), first_(fill8(pattern.front())), last_(fill8(pattern.back())) {}

  unsigned int candidates(const wchar_t* at) const noexcept {
    return mask8(_mm_and_si128(_mm_cmpeq_epi16(load8(at), first_),
                               _mm_cmpeq_epi16(load8(at + pattern_.size() - 1), last_)));
  }
  bool matches(const wchar_t* at) const noexcept {
    return pattern_.size() <= 2 || equalUnits(at + 1, pattern_.data() + 1, pattern_.size() - 2);
  }
  bool startsAt(const wchar_t* at) const noexcept {
    return *at == pattern_.front() && equalUnits(at, pattern_.data(), pattern_.size());
  }

 private:
  std::wstring_view pattern_;
  __m128i first_;
  __m128i last_;
};

class FoldedMatcher {
 public:
  explicit FoldedMatcher(std::wstring_view pattern) noexcept
      : pattern_(pattern),
        first_(fill8(foldForSearch(pattern.front()))),
        last_(fill8(foldForSearch(pattern.back()))) {}

  unsigned int candidates(const wchar_t* at) const noexcept {
    return mask8(_mm_and_si128(candidate(load8(at), first_),
                               candidate(load8(at + pattern_.size() - 1), last_)));
  }
  bool matches(const wchar_t* at) const noexcept {
    return equalFolded({at, pattern_.size()}, pattern_);
  }
  bool startsAt(const wchar_t* at) const noexcept { return matches(at); }

 private:
  // A unit that is not ASCII is a candidate for anything: only the runtime knows what it folds to.
  static __m128i candidate(__m128i v, __m128i wanted) noexcept {
    const __m128i other = _mm_cmpgt_epi16(_mm_srli_epi16(v, 7), _mm_setzero_si128());
    return _mm_or_si128(other, _mm_cmpeq_epi16(lowerAscii8(v), wanted));
  }

  std::wstring_view pattern_;
  __m128i first_;
  __m128i last_;
};

template <class Matcher>
size_t scanForward(std::wstring_view text, size_t patternSize, const Matcher& matcher) noexcept {
  if (patternSize > text.size()) return kNotFound;
  const wchar_t* const data = text.data();
  const size_t positions = text.size() - patternSize + 1;
  size_t i = 0;
  for (; i + kLane <= positions; i += kLane) {
    // Each position has two bits in the mask.
    for (unsigned int mask = matcher.candidates(data + i); mask != 0;
         mask &= mask - 1, mask &= mask - 1) {
      const size_t at = i + static_cast<size_t>(std::countr_zero(mask)) / 2;
      if (matcher.matches(data + at)) return at;
    }
  }
  for (; i < positions; ++i) {
    if (matcher.startsAt(data + i)) return i;
  }
  return kNotFound;
}

template <class Matcher>
size_t scanBackward(std::wstring_view text, size_t patternSize, const Matcher& matcher) noexcept {
  if (patternSize > text.size()) return kNotFound;
  const wchar_t* const data = text.data();
  size_t left = text.size() - patternSize + 1;  // positions not looked at yet
  for (; left >= kLane; left -= kLane) {
    const size_t base = left - kLane;
    unsigned int mask = matcher.candidates(data + base);
    while (mask != 0) {
      const unsigned int bit = 31u - static_cast<unsigned int>(std::countl_zero(mask));
      if (matcher.matches(data + base + bit / 2)) return base + bit / 2;
      mask &= (1u << (bit & ~1u)) - 1u;
    }
  }
  while (left-- > 0) {
    if (matcher.startsAt(data + left)) return left;
  }
  return kNotFound;
}

}  // namespace

size_t find(std::wstring_view text, std::wstring_view pattern) noexcept {
  return scanForward(text, pattern.size(), ExactMatcher(pattern));
}

size_t findBack(std::wstring_view text, std::wstring_view pattern) noexcept {
  return scanBackward(text, pattern.size(), ExactMatcher(pattern));
}

size_t findFolded(std::wstring_view text, std::wstring_view pattern) noexcept {
  return scanForward(text, pattern.size(), FoldedMatcher(pattern));
}

size_t findBackFolded(std::wstring_view text, std::wstring_view pattern) noexcept {
  return scanBackward(text, pattern.size(), FoldedMatcher(pattern));
}

bool equalFolded(std::wstring_view a, std::wstring_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), [](wchar_t x, wchar_t y) {
    return x == y || foldForSearch(x) == foldForSearch(y);
  });
}

size_t findAnyOf(std::wstring_view text, std::wstring_view set) noexcept {
  size_t first = kNotFound;
  UnitSet(set).eachIn(text, [&](size_t at) {
    first = at;
    return false;
  });
  return first;
}

}  // namespace zo
