#include <zo/text/containers/text_keys.h>

#include "platform/collation.h"
#include "text/hash.h"
#include "text/units.h"

namespace zo {
namespace {

constexpr wchar_t kFirstPlain = L' ';
constexpr wchar_t kLastPlain = L'~';

bool isPlain(std::wstring_view text) noexcept {
  const wchar_t* const at = text.data();
  const size_t n = text.size();
  if (n < kLane) {
    for (size_t i = 0; i < n; ++i) {
      if (at[i] < kFirstPlain || at[i] > kLastPlain) return false;
    }
    return true;
  }
  // The last vector may overlap what was looked at already.
  for (size_t i = 0; i + kLane < n; i += kLane) {
    if (mask8(between8(load8(at + i), kFirstPlain, kLastPlain)) != 0xFFFF) return false;
  }
  return mask8(between8(load8(at + n - kLane), kFirstPlain, kLastPlain)) == 0xFFFF;
}

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
  for (size_t i = 0; i + kLane < n; i += kLane) {
    if (!equalFolded8(x + i, y + i)) return false;
  }
  return equalFolded8(x + n - kLane, y + n - kLane);
}

}  // namespace

HashedKey hashText(std::wstring_view text) noexcept { return {hashFolded(text), isPlain(text)}; }

bool equalTexts(std::wstring_view a, std::wstring_view b, bool bothPlain) noexcept {
  return bothPlain ? equalPlain(a, b) : equalIgnoreCase(a, b);
}

}  // namespace zo
