// Patterns for names. Names and patterns are compared ignoring case, \ and / alike.
//
//   ?    one character but a slash
//   *    any characters but slashes
//   **   any characters; "**/" also stands for nothing at the start of a level
//   [a-z0]   one of these characters; [!a-z0] one but these and slashes
//   {a,b*}   one of these patterns
//
// A bracket or brace that is not closed, and braces without a comma, stand for themselves; so does
// what is in brackets alone, "[*]". At most some kMaxAlternatives patterns come of braces; those
// behind stand for themselves.
//
// A pattern that fits a folder fits all below it. One without a slash fits at any depth ("*.dwg",
// "build"), one with a slash from the first level on ("docs/*.md", "/readme.md").
// What is named on the command line without one of * ? [ { is meant by its whole name; "@17" is the
// entry of that number.
//
// Cost: at most the product of both lengths, whatever the pattern.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace zolib {

class Glob {
 public:
  static constexpr std::size_t kMaxAlternatives = 256;

  explicit Glob(std::wstring_view pattern);
  // `foldedName` comes from folded().
  [[nodiscard]] bool fits(std::wstring_view foldedName) const;
  [[nodiscard]] static bool isGlob(std::wstring_view text) noexcept {
    return text.find_first_of(L"*?[{") != std::wstring_view::npos;
  }

 private:
  struct Place {
    enum Kind { kCharacter, kAnyOne, kAny, kAnyDeep, kOneOf, kNoneOf };
    Kind kind = kCharacter;
    std::wstring characters;  // one; of a set its ranges: first, last, first, last
  };
  using Pattern = std::vector<Place>;
  static Pattern parsed(std::wstring_view pattern);
  static std::size_t parseSet(std::wstring_view pattern, Place& place);
  static bool takes(const Place& place, wchar_t c);
  static bool fits(const Pattern& pattern, std::wstring_view name);

  std::vector<Pattern> patterns_;
};

// 17 of "@17"; 0 of anything else.
std::uint64_t entryNumber(std::wstring_view name);

// Which members are wanted: those of the names (or all, without any) that an --include fits (or
// all, without any) and no --exclude.
class Selection {
 public:
  // `whole`, folded, are names that are no patterns though they look so.
  Selection(const std::vector<std::wstring>& names, const std::vector<std::wstring>& include,
            const std::vector<std::wstring>& exclude,
            const std::unordered_set<std::wstring>& whole = {});
  [[nodiscard]] bool wants(std::wstring_view name);
  // Whether a name is "@" and this number of an entry.
  [[nodiscard]] bool wantsNumber(std::uint64_t number);
  [[nodiscard]] bool hasNumbers() const noexcept { return !numbers_.empty(); }
  // The names that nothing has fitted so far.
  [[nodiscard]] std::vector<std::wstring> unmatched() const;
  [[nodiscard]] bool includes(std::wstring_view foldedName) const;
  [[nodiscard]] bool excludes(std::wstring_view foldedName) const;

 private:
  struct Pattern {
    std::wstring text;
    Glob glob;
    bool matched = false;
  };
  struct Plain {
    std::wstring text;
    bool matched = false;
  };
  std::vector<Pattern> patterns_;
  std::unordered_map<std::uint64_t, Plain> numbers_;
  std::unordered_map<std::wstring, Plain> plain_;  // by folded name: there may be very many
  std::vector<Glob> include_, exclude_;
};

}  // namespace zolib
