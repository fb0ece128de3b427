// zoSplitViews: the pieces of a text as views, one after the other, without memory.
//
//   for (std::wstring_view piece : zoSplitViews(line, L",;")) use(piece);
//
// The pieces are those of ZoString::split: the text is cut at every character that occurs in the
// separators, empty pieces included; n separators give n + 1 pieces, but an empty text gives none.
// With empty or null separators the whole text is the one piece. They are found as the loop goes
// on: one that ends early looks no further.
//
// Text and separators must outlive the range and stay as they are, and the text outlive the pieces;
// the range must outlive its iterators. Strings that are temporaries are therefore refused.
//
// Errors:  nothing throws.
// Threads: a range is a value; any number of threads may walk it.
// Cost:    a forward range; each step is one pass over its piece. Separators beyond U+007F are
//          looked for one by one.
#pragma once

#include <zo/text/lasting_text.h>
#include <zo/text/text_forms.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace zo {

class SplitViews {
 public:
  class Iterator {
   public:
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::wstring_view;
    using difference_type = std::ptrdiff_t;
    using pointer = const std::wstring_view*;
    using reference = const std::wstring_view&;

    Iterator() = default;

    reference operator*() const noexcept { return piece_; }
    pointer operator->() const noexcept { return &piece_; }
    Iterator& operator++() noexcept {
      const wchar_t* const pieceEnd = piece_.data() + piece_.size();
      if (pieceEnd == end_) {
        range_ = nullptr;
      } else {
        cutFrom(pieceEnd + 1);
      }
      return *this;
    }
    Iterator operator++(int) noexcept {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const noexcept {
      return range_ == other.range_ && (!range_ || piece_.data() == other.piece_.data());
    }
    bool operator==(std::default_sentinel_t) const noexcept { return !range_; }

   private:
    friend class SplitViews;
    explicit Iterator(const SplitViews& range) noexcept
        : range_(&range), end_(range.text_.data() + range.text_.size()) {
      cutFrom(range.text_.data());
    }
    void cutFrom(const wchar_t* at) noexcept {
      const wchar_t* to = at;
      while (to != end_ && !range_->separates(*to)) ++to;
      piece_ = {at, static_cast<std::size_t>(to - at)};
    }

    const SplitViews* range_ = nullptr;  // null at the end
    const wchar_t* end_ = nullptr;
    std::wstring_view piece_;
  };

  SplitViews(std::wstring_view text, std::wstring_view separators) noexcept : text_(text) {
    for (const wchar_t c : separators) {
      if (c < kAscii) {
        addAscii(c);
      } else {
        others_ = separators;
      }
    }
  }
  SplitViews(std::wstring_view text, wchar_t separator) noexcept : text_(text) {
    if (separator < kAscii) {
      addAscii(separator);
    } else {
      other_ = separator;
    }
  }

  [[nodiscard]] Iterator begin() const noexcept {
    return text_.empty() ? Iterator() : Iterator(*this);
  }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }
  [[nodiscard]] bool empty() const noexcept { return text_.empty(); }

 private:
  static constexpr wchar_t kAscii = 128;

  void addAscii(wchar_t c) noexcept { ascii_[c / 64] |= std::uint64_t{1} << c % 64; }
  [[nodiscard]] bool separates(wchar_t c) const noexcept {
    if (c < kAscii) return (ascii_[c / 64] >> c % 64 & 1) != 0;
    return c == other_ || others_.find(c) != std::wstring_view::npos;
  }

  std::wstring_view text_;
  std::uint64_t ascii_[2] = {};
  std::wstring_view others_;  // all separators, when there are any beyond ASCII
  wchar_t other_ = 0;         // the only one, when it is beyond ASCII
};

}  // namespace zo

template <zo::LastingText Text, zo::LastingText Separators>
[[nodiscard]] zo::SplitViews zoSplitViews(Text&& text, Separators&& separators) noexcept {
  return {zo::textOf(text), zo::textOf(separators)};
}
template <zo::LastingText Text, std::same_as<wchar_t> Character>
[[nodiscard]] zo::SplitViews zoSplitViews(Text&& text, Character separator) noexcept {
  return {zo::textOf(text), separator};
}
template <class Text, class Separators>
  requires(zo::TemporaryText<Text> || zo::TemporaryText<Separators>)
void zoSplitViews(Text&&, Separators&&) = delete;  // keep the string in a variable
template <class Text, zo::NotText T>
void zoSplitViews(Text&&, T) = delete;  // write L'c'
