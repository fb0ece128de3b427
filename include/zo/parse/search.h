// One search for an expression through one text: match by match, with its groups; or all at once.
//
//   for (const ZoSearch& match : ZoSearch(size, text))
//     use(match.match(L"size"), match.match(L"length"));
//   ZoSearch::replaceAll(text, size, L"${length} long, M${size} wide");
//
// A search keeps a copy of the text, which costs nothing (storage is shared): it goes on in the
// text that it was given, whatever happens to that string in between, and what match() gives is
// valid as long as the search.
//
// Matches  follow each other without overlapping. An empty match is found once at a place, and
//          never within a surrogate pair, nor with kMultiLine between CR and LF.
// Errors:  nothing throws, but std::bad_alloc where a ZoString would. next() answers false at the
//          end and when something is wrong: status() tells which.
// Threads: a search, as the text, is for one thread at a time; the expression is for all.
#pragma once

#include <zo/config.h>
#include <zo/parse/reg_exp.h>
#include <zo/text/string.h>
#include <zo/text/sub_string.h>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string_view>
#include <type_traits>

template <class T>
class ZoSequence;

namespace zo {
class RegExpRun;

// What C++ would take for the number or the name of a group.
template <class T>
concept NoGroup =
    std::same_as<T, bool> || std::same_as<T, wchar_t> || (NotText<T> && std::is_pointer_v<T>);
}  // namespace zo

class ZO_COM_API ZoSearch {
 public:
  static constexpr unsigned int npos = 0xFFFFFFFF;

  // Searches from start on; what stands before start is seen by ^, \b and look-behind. A start in
  // a surrogate pair counts as behind it. Past the end of the text there is nothing to find.
  ZoSearch(const ZoRegExp& what, const ZoString& text, unsigned int start = 0) noexcept;
  template <std::same_as<bool> T>
  ZoSearch(const ZoRegExp&, const ZoString&, T) = delete;  // write a position
  ZoSearch(const ZoSearch&) = delete;
  ZoSearch& operator=(const ZoSearch&) = delete;
  ~ZoSearch();

  // Goes to the next match; false behind the last, for good.
  bool next() noexcept;
  // 0, also when all matches have been found; badPattern: the expression is not valid; gaveUp: a
  // limit was reached, and what matches from here on is not known; 2.
  [[nodiscard]] int status() const noexcept { return status_; }

  // Where the match, or a group of it, stands; npos and 0 when there is none: before the first
  // next(), after the last, for a group that took no part or is not in the expression. Of groups
  // that share a name, the first that took part.
  [[nodiscard]] unsigned int start(unsigned int group = 0) const noexcept;
  [[nodiscard]] unsigned int length(unsigned int group = 0) const noexcept;
  [[nodiscard]] unsigned int start(std::wstring_view group) const noexcept;
  [[nodiscard]] unsigned int length(std::wstring_view group) const noexcept;
  template <zo::PointedText Text>
  [[nodiscard]] unsigned int start(const Text& group) const noexcept {
    return start(zo::textOf(group));
  }
  template <zo::PointedText Text>
  [[nodiscard]] unsigned int length(const Text& group) const noexcept {
    return length(zo::textOf(group));
  }
  template <zo::NoGroup T>
  unsigned int start(T) const = delete;  // a number or a name: L"name"
  template <zo::NoGroup T>
  unsigned int length(T) const = delete;  // a number or a name: L"name"
  // The null substring when there is none.
  [[nodiscard]] const ZoSubString match(unsigned int group = 0) const& noexcept;
  [[nodiscard]] const ZoSubString match(std::wstring_view group) const& noexcept;
  template <zo::PointedText Text>
  [[nodiscard]] const ZoSubString match(const Text& group) const& noexcept {
    return match(zo::textOf(group));
  }
  template <zo::NoGroup T>
  const ZoSubString match(T) const& = delete;  // a number or a name: L"name"
  template <class... T>
  const ZoSubString match(const T&...) const&& = delete;  // the search must outlive what it gives

  [[nodiscard]] const ZoRegExp& expression() const noexcept { return what_; }
  [[nodiscard]] const ZoString& text() const noexcept { return text_; }

  // For range-for: each step is a next(), and the element is the search itself.
  class Iterator {
   public:
    using iterator_concept = std::input_iterator_tag;
    using value_type = ZoSearch;
    using difference_type = std::ptrdiff_t;
    explicit Iterator(ZoSearch& search) noexcept : search_(&search) {}
    const ZoSearch& operator*() const noexcept { return *search_; }
    Iterator& operator++() noexcept {
      isAtEnd_ = !search_->next();
      return *this;
    }
    void operator++(int) noexcept { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return isAtEnd_; }

   private:
    ZoSearch* search_;
    bool isAtEnd_ = false;
  };
  [[nodiscard]] Iterator begin() noexcept { return ++Iterator(*this); }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

  // Puts `with` in the place of every match. In it $0 is the match, $1 to $99 and ${name} or ${12}
  // are groups (nothing for one that took no part), $$ is a $; any other $ stands for itself. Two
  // digits are one number if there is such a group. 0; badPattern; refused: a group that the
  // expression does not have, or a text that would be too long; gaveUp; 2. On failure the text is
  // as it was, and the count 0.
  [[nodiscard]] static int replaceAll(ZoString& text, const ZoRegExp& what, std::wstring_view with,
                                      unsigned int* count = nullptr) noexcept;
  template <zo::PointedText Text>
  [[nodiscard]] static int replaceAll(ZoString& text, const ZoRegExp& what, const Text& with,
                                      unsigned int* count = nullptr) noexcept {
    return replaceAll(text, what, zo::textOf(with), count);
  }
  // Replaces the entries of out by the pieces between the matches, in order, empty ones included: n
  // matches give n + 1 pieces, an empty text gives none. An empty match at either end of the text
  // does not cut. Codes as above; on failure out is empty. What out is:
  // zo/text/containers/sequence.h.
  [[nodiscard]] static int split(const ZoString& text, const ZoRegExp& what,
                                 ZoSequence<ZoString>& out) noexcept;

 private:
  [[nodiscard]] unsigned int numberOf(std::wstring_view group) const noexcept;

  const ZoRegExp what_;
  const ZoString text_;
  std::unique_ptr<zo::RegExpRun> run_;  // null once there is no more to find
  unsigned int from_;
  int status_;
  bool wasEmpty_ = false;
};
