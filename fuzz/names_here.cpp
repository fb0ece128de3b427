// What the library compares names by, for the building machine, whose characters are wider: letters
// of ASCII alone are alike in both cases.
#include <algorithm>

#include "names/name_compare.h"

namespace zo {
namespace {

wchar_t lower(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; }

}  // namespace

bool equalOfSize(const wchar_t* a, const wchar_t* b, std::size_t n) noexcept {
  return std::equal(a, a + n, b, [](wchar_t x, wchar_t y) { return lower(x) == lower(y); });
}

int orderNames(std::wstring_view a, std::wstring_view b) noexcept {
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
    if (lower(a[i]) != lower(b[i])) return lower(a[i]) < lower(b[i]) ? -1 : 1;
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

}  // namespace zo
