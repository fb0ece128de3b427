#include "glob.h"

#include <algorithm>

#include "text.h"

namespace zolib {
namespace {

// Folded, without "./" before and a slash behind.
std::wstring tidied(std::wstring_view text) {
  std::wstring name = folded(text);
  while (name.starts_with(L"./")) name.erase(0, 2);
  while (name.size() > 1 && name.ends_with(L'/')) name.pop_back();
  return name;
}

std::vector<Glob> globs(const std::vector<std::wstring>& patterns) {
  return std::vector<Glob>(patterns.begin(), patterns.end());
}

bool anyFits(const std::vector<Glob>& globs, std::wstring_view name) {
  return std::any_of(globs.begin(), globs.end(), [&](const Glob& g) { return g.fits(name); });
}

}  // namespace

Glob::Glob(std::wstring_view pattern) : pattern_(tidied(pattern)) {
  const bool anchored = pattern_.find(L'/') != std::wstring::npos;
  if (pattern_.starts_with(L'/')) pattern_.erase(0, 1);
  if (!anchored) pattern_.insert(0, L"**/");
}

// All places in the pattern that the name read so far can have led to, kept up to date character by
// character: no backtracking.
bool Glob::fits(std::wstring_view name) const {
  const std::size_t end = pattern_.size();
  std::vector<bool> at(end + 1), next(end + 1);
  const auto isDeep = [&](std::size_t p) { return pattern_.compare(p, 2, L"**") == 0; };
  // Adds what can be reached from each place without reading.
  const auto skip = [&](std::vector<bool>& places, bool levelStarts) {
    for (std::size_t p = 0; p < end; ++p) {
      if (!places[p] || pattern_[p] != L'*') continue;
      places[p + (isDeep(p) ? 2 : 1)] = true;
      if (levelStarts && pattern_.compare(p, 3, L"**/") == 0) places[p + 3] = true;
    }
  };
  at[0] = true;
  skip(at, true);
  for (const wchar_t c : name) {
    if (c == L'/' && at[end]) return true;  // a folder
    std::fill(next.begin(), next.end(), false);
    for (std::size_t p = 0; p < end; ++p) {
      if (!at[p]) continue;
      if (pattern_[p] == L'*') {
        if (c != L'/' || isDeep(p)) next[p] = true;
      } else if (pattern_[p] == c || (pattern_[p] == L'?' && c != L'/')) {
        next[p + 1] = true;
      }
    }
    skip(next, c == L'/');
    at.swap(next);
  }
  return at[end];
}

Selection::Selection(const std::vector<std::wstring>& names,
                     const std::vector<std::wstring>& include,
                     const std::vector<std::wstring>& exclude)
    : include_(globs(include)), exclude_(globs(exclude)) {
  for (const std::wstring& name : names) {
    if (Glob::isGlob(name)) {
      patterns_.push_back({name, Glob(name)});
    } else {
      plain_.try_emplace(tidied(name), Plain{name});
    }
  }
}

bool Selection::wants(std::wstring_view name) {
  if (patterns_.empty() && plain_.empty() && include_.empty() && exclude_.empty()) return true;
  const std::wstring text = folded(name);
  bool wanted = patterns_.empty() && plain_.empty();
  for (Pattern& pattern : patterns_) {
    if (pattern.glob.fits(text)) pattern.matched = wanted = true;
  }
  // The name itself and each folder above it.
  for (std::size_t end = text.size(); !plain_.empty() && end != std::wstring::npos && end > 0;
       end = text.rfind(L'/', end - 1)) {
    const auto found = plain_.find(text.substr(0, end));
    if (found != plain_.end()) found->second.matched = wanted = true;
  }
  return wanted && includes(text) && !excludes(text);
}

std::vector<std::wstring> Selection::unmatched() const {
  std::vector<std::wstring> result;
  for (const Pattern& pattern : patterns_) {
    if (!pattern.matched) result.push_back(pattern.text);
  }
  for (const auto& [key, plain] : plain_) {
    if (!plain.matched) result.push_back(plain.text);
  }
  std::sort(result.begin(), result.end());
  return result;
}

bool Selection::includes(std::wstring_view foldedName) const {
  return include_.empty() || anyFits(include_, foldedName);
}

bool Selection::excludes(std::wstring_view foldedName) const {
  return anyFits(exclude_, foldedName);
}

}  // namespace zolib
