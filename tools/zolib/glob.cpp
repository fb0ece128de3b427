#include "glob.h"

#include <algorithm>
#include <optional>

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

// Where the first braces with a comma stand, and their commas.
struct Braces {
  std::size_t begin, end;
  std::vector<std::size_t> commas;
};
std::optional<Braces> bracesIn(std::wstring_view text) {
  for (std::size_t begin = text.find(L'{'); begin != std::wstring_view::npos;
       begin = text.find(L'{', begin + 1)) {
    Braces found{begin, 0, {}};
    int depth = 0;
    for (std::size_t i = begin; i < text.size() && !found.end; ++i) {
      depth += (text[i] == L'{') - (text[i] == L'}');
      if (text[i] == L',' && depth == 1) found.commas.push_back(i);
      if (depth == 0) found.end = i;
    }
    if (found.end && !found.commas.empty()) return found;
  }
  return std::nullopt;
}

void expandBraces(std::vector<std::wstring>& patterns) {
  for (std::size_t i = 0; i < patterns.size() && patterns.size() < Glob::kMaxAlternatives;) {
    const std::optional<Braces> braces = bracesIn(patterns[i]);
    if (!braces) {
      ++i;
      continue;
    }
    const std::wstring text = std::move(patterns[i]);
    patterns.erase(patterns.begin() + static_cast<std::ptrdiff_t>(i));
    std::size_t start = braces->begin + 1;
    std::vector<std::size_t> ends = braces->commas;
    ends.push_back(braces->end);
    for (const std::size_t end : ends) {
      patterns.push_back(text.substr(0, braces->begin) + text.substr(start, end - start) +
                         text.substr(braces->end + 1));
      start = end + 1;
    }
  }
}

bool anyFits(const std::vector<Glob>& globs, std::wstring_view name) {
  return std::any_of(globs.begin(), globs.end(), [&](const Glob& g) { return g.fits(name); });
}

}  // namespace

Glob::Glob(std::wstring_view pattern) {
  std::vector<std::wstring> alternatives{tidied(pattern)};
  expandBraces(alternatives);
  for (std::wstring& text : alternatives) {
    const bool anchored = text.find(L'/') != std::wstring::npos;
    if (text.starts_with(L'/')) text.erase(0, 1);
    if (!anchored) text.insert(0, L"**/");
    patterns_.push_back(parsed(text));
  }
}

// The length of the set at the begin of the pattern; 0 when it is none.
std::size_t Glob::parseSet(std::wstring_view pattern, Place& place) {
  std::size_t at = 1;
  const bool isNegated = pattern.substr(at, 1) == L"!";
  at += isNegated;
  const std::size_t end = pattern.find(L']', at + 1);  // a ] that comes first is one of the set
  if (end == std::wstring_view::npos) return 0;
  place.kind = isNegated ? Place::kNoneOf : Place::kOneOf;
  while (at < end) {
    const bool isRange = at + 2 < end && pattern[at + 1] == L'-';
    place.characters += {pattern[at], pattern[at + (isRange ? 2 : 0)]};
    at += isRange ? 3 : 1;
  }
  return end + 1;
}

Glob::Pattern Glob::parsed(std::wstring_view pattern) {
  Pattern places;
  while (!pattern.empty()) {
    Place place{Place::kCharacter, std::wstring(1, pattern[0])};
    std::size_t length = 1;
    if (pattern[0] == L'?') {
      place.kind = Place::kAnyOne;
    } else if (pattern[0] == L'*') {
      const bool isDeep = pattern.starts_with(L"**");
      place.kind = isDeep ? Place::kAnyDeep : Place::kAny;
      length += isDeep;
    } else if (pattern[0] == L'[') {
      Place set;
      if (const std::size_t inSet = parseSet(pattern, set)) {
        place = std::move(set);
        length = inSet;
      }
    }
    places.push_back(std::move(place));
    pattern.remove_prefix(length);
  }
  return places;
}

bool Glob::takes(const Place& place, wchar_t c) {
  if (place.kind == Place::kCharacter) return place.characters[0] == c;
  if (c == L'/') return place.kind == Place::kAnyDeep;
  if (place.kind != Place::kOneOf && place.kind != Place::kNoneOf) return true;
  bool isIn = false;
  for (std::size_t i = 0; i < place.characters.size(); i += 2)
    isIn = isIn || (place.characters[i] <= c && c <= place.characters[i + 1]);
  return isIn == (place.kind == Place::kOneOf);
}

bool Glob::fits(std::wstring_view name) const {
  return std::ranges::any_of(patterns_, [&](const Pattern& p) { return fits(p, name); });
}

// All places in the pattern that the name read so far can have led to, kept up to date character by
// character: no backtracking.
bool Glob::fits(const Pattern& pattern, std::wstring_view name) {
  const std::size_t end = pattern.size();
  std::vector<bool> at(end + 1), next(end + 1);
  const auto isAny = [&](std::size_t p) {
    return pattern[p].kind == Place::kAny || pattern[p].kind == Place::kAnyDeep;
  };
  const auto isSlash = [&](std::size_t p) {
    return pattern[p].kind == Place::kCharacter && pattern[p].characters[0] == L'/';
  };
  // Adds what can be reached from each place without reading.
  const auto skip = [&](std::vector<bool>& places, bool levelStarts) {
    for (std::size_t p = 0; p < end; ++p) {
      if (!places[p] || !isAny(p)) continue;
      places[p + 1] = true;
      const bool isDeep = pattern[p].kind == Place::kAnyDeep;
      if (levelStarts && isDeep && p + 1 < end && isSlash(p + 1)) places[p + 2] = true;
    }
  };
  at[0] = true;
  skip(at, true);
  for (const wchar_t c : name) {
    if (c == L'/' && at[end]) return true;  // a folder
    std::fill(next.begin(), next.end(), false);
    for (std::size_t p = 0; p < end; ++p) {
      if (at[p] && takes(pattern[p], c)) next[isAny(p) ? p : p + 1] = true;
    }
    skip(next, c == L'/');
    at.swap(next);
  }
  return at[end];
}

std::uint64_t entryNumber(std::wstring_view name) {
  if (!name.starts_with(L'@') || name.size() < 2 || name.size() > 19) return 0;
  std::uint64_t number = 0;
  for (const wchar_t c : name.substr(1)) {
    if (c < L'0' || c > L'9') return 0;
    number = number * 10 + static_cast<std::uint64_t>(c - L'0');
  }
  return number;
}

Selection::Selection(const std::vector<std::wstring>& names,
                     const std::vector<std::wstring>& include,
                     const std::vector<std::wstring>& exclude,
                     const std::unordered_set<std::wstring>& whole)
    : include_(globs(include)), exclude_(globs(exclude)) {
  for (const std::wstring& name : names) {
    const bool isWhole = whole.contains(folded(name));
    if (const std::uint64_t number = isWhole ? 0 : entryNumber(name)) {
      numbers_.try_emplace(number, Plain{name});
    } else if (Glob::isGlob(name) && !isWhole) {
      patterns_.push_back({name, Glob(name)});
    } else {
      plain_.try_emplace(tidied(name), Plain{name});
    }
  }
}

bool Selection::wants(std::wstring_view name) {
  if (patterns_.empty() && plain_.empty() && numbers_.empty() && include_.empty() &&
      exclude_.empty())
    return true;
  const std::wstring text = folded(name);
  bool wanted = patterns_.empty() && plain_.empty() && numbers_.empty();
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

bool Selection::wantsNumber(std::uint64_t number) {
  const auto found = numbers_.find(number);
  if (found == numbers_.end()) return false;
  return found->second.matched = true;
}

std::vector<std::wstring> Selection::unmatched() const {
  std::vector<std::wstring> result;
  for (const auto& [number, plain] : numbers_) {
    if (!plain.matched) result.push_back(plain.text);
  }
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
