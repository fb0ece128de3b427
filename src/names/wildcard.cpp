#include "names/wildcard.h"

#include "text/letter_case.h"

namespace zo {

// Each * is tried with as little as it can take; one that fails takes a character more. Only the
// last one needs to be tried again, so this is O(name * pattern) at most.
bool fitsPattern(std::wstring_view name, std::wstring_view pattern) noexcept {
  constexpr size_t npos = std::wstring_view::npos;
  size_t n = 0, p = 0, star = npos, taken = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == L'*') {
      star = p++;
      taken = n;
    } else if (p < pattern.size() &&
               (pattern[p] == L'?' || lowerCase(pattern[p]) == lowerCase(name[n]))) {
      ++p;
      ++n;
    } else if (star != npos) {
      p = star + 1;
      n = ++taken;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(L'*', p) == npos;
}

bool fitsWildcard(std::wstring_view name, std::wstring_view pattern) noexcept {
  if (pattern == L"*" || pattern == L"*.*") return true;
  const bool plain = name.find(L'.') == std::wstring_view::npos;
  if (plain && pattern.ends_with(L".*"))
    return fitsPattern(name, pattern.substr(0, pattern.size() - 2));
  if (pattern.ends_with(L'.'))
    return plain && fitsPattern(name, pattern.substr(0, pattern.size() - 1));
  return fitsPattern(name, pattern);
}

bool fitsAnyWildcard(std::wstring_view name, std::wstring_view patterns) noexcept {
  while (!patterns.empty()) {
    const std::size_t end = std::min(patterns.find(L';'), patterns.size());
    if (fitsWildcard(name, patterns.substr(0, end))) return true;
    patterns.remove_prefix(std::min(end + 1, patterns.size()));
  }
  return false;
}

}  // namespace zo
