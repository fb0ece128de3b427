// The marks in a message's text: %%, %1, %{17}, %{file:17} and %{?1 one|many}, read piece by piece.
//
// Any text can be read. What only looks like a mark is one piece of the kind Bad, which stands for
// its first character; a plural that is not closed ends with the text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace zo {

// A whole number of 32 bits, decimal or hexadecimal with 0x in front; nothing else may stand there.
[[nodiscard]] std::optional<unsigned int> messageNumber(std::wstring_view text) noexcept;

class MarkupReader {
 public:
  static constexpr unsigned int kMaxPluralDepth = 8;

  enum Kind { kEnd, kText, kArgument, kReference, kPlural, kNextForm, kClose, kBad };
  struct Piece {
    Kind kind;
    std::wstring_view text;  // what it stands for where it is text; else as it is written
    unsigned int number = 0;
    std::wstring_view file;
    bool plural = false;  // of kBad: it looks like a plural
  };

  explicit MarkupReader(std::wstring_view text) noexcept : text_(text) {}

  Piece next() noexcept;
  // Where the next piece begins, and how many plurals are open there.
  [[nodiscard]] std::size_t position() const noexcept { return at_; }
  [[nodiscard]] unsigned int depth() const noexcept { return depth_; }

  // Behind a kPlural: how many forms it has; the reader stays where it is.
  [[nodiscard]] unsigned int countForms() const noexcept;
  // Behind a kPlural: goes on behind it.
  void skipForms() noexcept;

 private:
  Piece take(Kind kind, std::size_t length, unsigned int number = 0,
             std::wstring_view file = {}) noexcept {
    const std::size_t at = std::exchange(at_, at_ + length);
    return {kind, {text_.data() + at, length}, number, file};
  }
  Piece mark() noexcept;
  Piece argument() noexcept;
  Piece reference() noexcept;
  Piece plural() noexcept;
  Piece bad(bool plural) noexcept;
  [[nodiscard]] bool isSpecial(wchar_t c) const noexcept;
  // One or two digits from `at` on, a zero in front only of a second one; 0 when there is none.
  unsigned int argumentNumber(std::size_t at, std::size_t& end) const noexcept;

  std::wstring_view text_;
  std::size_t at_ = 0;
  unsigned int depth_ = 0;
};

}  // namespace zo
