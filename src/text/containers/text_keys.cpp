#include <zo/text/containers/text_keys.h>

#include "platform/collation.h"
#include "text/hash.h"
#include "text/units.h"

namespace zo {
namespace {

bool equalFolded8(const wchar_t* a, const wchar_t* b) noexcept {
  return mask8(_mm_cmpeq_epi16(upperAscii8(load8(a)), upperAscii8(load8(b)))) == 0xFFFF;
}

bool equalPlain(std::wstring_view a, std::wstring_view b) noexcept {
  const size_t n = a.size();
  if (n != b.size()) return false;
  const wchar_t* const x = a.data();
  const wchar_t* const y = b.data();
  if (x == y) return true;
  if (n < kLane) {
    for (size_t i = 0; i < n; ++i) {
      if (upperAscii(x[i]) != upperAscii(y[i])) return false;
    }
    return true;
  }
  // Up to 24 units in three steps that overlap, without a branch on the length; what lies between in longer texts.
  const size_t last = n - kLane;
  const size_t second = last < kLane ? last : kLane;
  if (!(equalFolded8(x, y) & equalFolded8(x + second, y + second) & equalFolded8(x + last, y + last))) return false;
  for (size_t i = 2 * kLane; i < last; i += kLane) {
    if (!equalFolded8(x + i, y + i)) return false;
  }
  return true;
}

}  // namespace

HashedKey hashText(std::wstring_view text) noexcept {
  const FoldedHash folded = hashFolded(text);
  return {folded.hash, folded.printableAscii};
}

bool equalTexts(std::wstring_view a, std::wstring_view b, bool bothPlain) noexcept {
  return bothPlain ? equalPlain(a, b) : equalIgnoreCase(a, b);
}

}  // namespace zo
