// Patterns for names. Names and patterns are compared ignoring case, \ and / alike.
//
//   ?    one character but a slash
//   *    any characters but slashes
//   **   any characters; "**/" also stands for nothing at the start of a level
//
// A pattern that fits a folder fits all below it. One without a slash fits at any depth ("*.dwg",
// "build"), one with a slash from the first level on ("docs/*.md", "/readme.md").
// A member that is named on the command line without * and ? is meant by its whole name.
//
// Cost: at most the product of both lengths, whatever the pattern.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zolib {

class Glob {
 public:
  explicit Glob(std::wstring_view pattern);
  // `foldedName` comes from folded().
  [[nodiscard]] bool fits(std::wstring_view foldedName) const;
  [[nodiscard]] static bool isGlob(std::wstring_view text) noexcept {
    return text.find_first_of(L"*?") != std::wstring_view::npos;
  }

 private:
  std::wstring pattern_;
};

// Which members are wanted: those of the names (or all, without any) that an --include fits (or
// all, without any) and no --exclude.
class Selection {
 public:
  Selection(const std::vector<std::wstring>& names, const std::vector<std::wstring>& include,
            const std::vector<std::wstring>& exclude);
  [[nodiscard]] bool wants(std::wstring_view name);
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
  std::unordered_map<std::wstring, Plain> plain_;  // by folded name: there may be very many
  std::vector<Glob> include_, exclude_;
};

}  // namespace zolib
