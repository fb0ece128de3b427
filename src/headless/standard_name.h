// Names of standards and of their sizes, brought to one form.
#pragma once

#include <cstddef>
#include <string_view>

namespace zo {

// A name as it is looked up: letters in upper case and numbers without leading zeros, nothing
// between them but a '-' between two numbers. In a place of its own, without memory.
class StandardName {
 public:
  static constexpr std::size_t kMost = 255;

  // The edition is what stands behind a colon. `spelling` must outlive it.
  explicit StandardName(std::wstring_view spelling) noexcept;

  // Empty when there is no letter or digit, or too many of them.
  [[nodiscard]] std::wstring_view key() const noexcept { return {text_, length_}; }
  // What is left without those who adopted it: "ISO4014" of "DINENISO4014".
  [[nodiscard]] std::wstring_view core() const noexcept { return key().substr(coreAt_); }
  // As it was written, without blanks around.
  [[nodiscard]] std::wstring_view edition() const noexcept { return edition_; }
  // Takes a last part that looks like a year for the edition; false when there is none.
  [[nodiscard]] bool takeYear() noexcept;

 private:
  bool add(wchar_t c) noexcept;
  bool addNumber(std::wstring_view spelling, std::size_t& i) noexcept;
  void findCore() noexcept;

  wchar_t text_[kMost];
  std::size_t length_ = 0;
  std::size_t coreAt_ = 0;
  std::wstring_view edition_;
  wchar_t year_[4];
};

// Texts by the numbers in them: "M8" before "M10", "2004" before "2011-04".
[[nodiscard]] bool comesBefore(std::wstring_view a, std::wstring_view b) noexcept;

// Whether a name fits a pattern of * and ?, without regard to what stands between letters and
// numbers.
[[nodiscard]] bool fitsStandardPattern(std::wstring_view name, std::wstring_view pattern);

}  // namespace zo
