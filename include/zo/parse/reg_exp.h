// Regular expressions: patterns with the syntax of PCRE2, which is that of Perl, over UTF-16.
//
//   const ZoRegExp size(L"M(?<size>[0-9]+)x(?<length>[0-9]+)");
//   if (unsigned length; (at = name.index(size, &length)) != ZoString::npos) ...
//
// ZoString::index, contains, matches and operator() take one; ZoSearch (zo/parse/search.h) finds
// all matches, their groups, replaces and splits. docs/regular-expressions.md has the syntax, the
// options and examples.
//
// Matches  are the leftmost ones, the first alternative before the second, greedy before less.
//          Characters beyond U+FFFF are one character; a surrogate that stands alone is taken for
//          U+FFFD, as in UTF-8 made of the text. A line ends in LF; with kMultiLine also in CR and
//          in both.
// Case:    kIgnoreCase is Unicode's simple folding: it knows umlauts, and that K is also the sign
//          for Kelvin. ZoString's ignoreCase asks the runtime, unit by unit, which knows a to z
//          alone until the program sets a locale: kIgnoreAsciiCase is that.
// Limits:  a pattern has at most 65,535 units, and so has its compiled form (a literal character
//          takes two); groups nest 250 deep. No text makes a search go on for ever, see Limits.
// Errors:  nothing throws. A pattern that cannot be compiled gives an invalid expression, which
//          matches nowhere; status() and errorText() say why.
// Threads: an expression is immutable. Copies share it, and all threads may search with it; only
//          set(), setLimits() and assigning are for one thread at a time on one object.
// Cost:    compiling takes some microseconds, and some 20 to 100 more once it has been used for
//          some thousand characters: then machine code is made of it. Keep what you use again.
//          Where the process may not make machine code, searches are some ten times slower.
//          A search first looks through its text for surrogates that stand alone, at some 10 units
//          a ns: find all matches in a long text with one ZoSearch, not with index() for each.
#pragma once

#include <zo/config.h>
#include <zo/results.h>
#include <zo/text/text_forms.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string_view>
#include <utility>

class ZoString;

namespace zo {
class RegExpCode;
}

namespace ZoResult {
inline constexpr int badPattern = 20;  // the pattern is no expression, or is too large
inline constexpr int gaveUp = 21;      // a limit was reached before there was an answer
}  // namespace ZoResult

class ZO_COM_API ZoRegExp {
 public:
  static constexpr unsigned int npos = 0xFFFFFFFF;
  static constexpr unsigned int kMaxPattern = 65535;

  enum Option : unsigned int {
    kDefault = 0,
    kIgnoreCase = 1,  // as Unicode has it
    kMultiLine = 2,   // ^ and $ also stand at the ends of lines
    kDotAll = 4,      // . also matches the end of a line
    kExtended = 8,    // blanks, line ends and #comments in the pattern do not count
    kLiteral = 16,    // the pattern is a text, without signs of any meaning
    kWildcard = 32,   // in it * is any number of any characters, ? is any one, all else itself
    kIgnoreAsciiCase = 64,  // A to Z are a to z; units are compared, and \w and its kin know ASCII
    kNoMachineCode = 128,   // for processes that would rather not have any
  };
  friend constexpr Option operator|(Option a, Option b) noexcept {
    return static_cast<Option>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
  }

  // What one search may cost; then it ends with gaveUp. 0 is "at once", not "without limit"; of
  // the time, as soon as the clock is looked at.
  struct Limits {
    unsigned int steps = 10'000'000;     // tries from one place of the text
    unsigned int depth = 1'000'000;      // choices that are open at a time, without machine code
    unsigned int heapKiB = 65'536;       // memory for open choices
    unsigned int milliseconds = 10'000;  // for one match, or for replacing or splitting as a whole;
                                         // looked at now and then
    friend bool operator==(const Limits&, const Limits&) = default;
  };

  // No expression: it matches nowhere, and its status is refused.
  ZoRegExp() noexcept = default;
  // Any form of text: L"...", ZoString, std::wstring_view; a null pointer is the empty pattern,
  // which matches everywhere. kWildcard goes before kLiteral, kIgnoreCase before kIgnoreAsciiCase.
  template <zo::AnyText Text>
  explicit ZoRegExp(const Text& pattern, Option options = kDefault) noexcept {
    static_cast<void>(set(zo::textOf(pattern), options));
  }
  template <zo::NotText T>
  explicit ZoRegExp(T, Option = kDefault) = delete;  // write a pattern: L"[0-9]+"
  template <class Text, class T>
    requires(!std::is_same_v<T, Option>)
  ZoRegExp(const Text&, T) = delete;  // write ZoRegExp::kIgnoreCase or another option
  ZoRegExp(const ZoRegExp& other) noexcept;
  ZoRegExp(ZoRegExp&& other) noexcept;
  ZoRegExp& operator=(ZoRegExp other) noexcept {
    swap(other);
    return *this;
  }
  ~ZoRegExp();
  void swap(ZoRegExp& other) noexcept;

  // Compiles a pattern: 0, badPattern, 2. If it fails, the expression is what it was before, and
  // status() and the error are those of this pattern.
  [[nodiscard]] int set(std::wstring_view pattern, Option options = kDefault) noexcept;
  template <zo::PointedText Text>
  [[nodiscard]] int set(const Text& pattern, Option options = kDefault) noexcept {
    return set(zo::textOf(pattern), options);
  }

  [[nodiscard]] bool isValid() const noexcept { return code_ != nullptr; }
  explicit operator bool() const = delete;  // write isValid()
  // Of the last pattern given: the code, the unit of the pattern at which it is wrong, and what is
  // wrong as an English sentence, empty if nothing is.
  [[nodiscard]] int status() const noexcept { return status_; }
  [[nodiscard]] unsigned int errorPosition() const noexcept { return errorPosition_; }
  [[nodiscard]] ZoString errorText() const;

  // The pattern as it was given; valid as long as any copy of the expression.
  [[nodiscard]] std::wstring_view pattern() const noexcept;
  [[nodiscard]] Option options() const noexcept;
  // Makes the machine code at once where there is none yet, and tells whether there is some. (False
  // also while another thread is making it.)
  [[nodiscard]] bool hasMachineCode() const noexcept;
  [[nodiscard]] const Limits& limits() const noexcept { return limits_; }
  // For searches that begin later.
  void setLimits(const Limits& limits) noexcept { limits_ = limits; }

  // Groups are numbered by their opening parentheses from 1 on; 0 is the whole match.
  [[nodiscard]] unsigned int groups() const noexcept;
  // The number of a name, the first one where more groups have it; npos if there is none.
  [[nodiscard]] unsigned int group(std::wstring_view name) const noexcept;
  template <zo::PointedText Text>
  [[nodiscard]] unsigned int group(const Text& name) const noexcept {
    return group(zo::textOf(name));
  }
  // The name of a group, empty if it has none.
  [[nodiscard]] ZoString groupName(unsigned int group) const;
  template <std::same_as<bool> T>
  ZoString groupName(T) const = delete;  // write a number

  // A pattern that matches just this text, also amid another pattern and with any option but
  // kLiteral and kWildcard.
  [[nodiscard]] static ZoString escape(std::wstring_view text);
  template <zo::PointedText Text, class Result = ZoString>  // which is not complete here
  [[nodiscard]] static Result escape(const Text& text) {
    return escape(zo::textOf(text));
  }

  // The same pattern and options; limits do not count.
  [[nodiscard]] friend bool operator==(const ZoRegExp& a, const ZoRegExp& b) noexcept {
    return a.code_ == b.code_ ||
           (a.isValid() == b.isValid() && a.options() == b.options() && a.pattern() == b.pattern());
  }
  // The pattern.
  friend ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoRegExp& expression);

  // For the library's own searches.
  [[nodiscard]] const zo::RegExpCode* code() const noexcept { return code_; }

 private:
  const zo::RegExpCode* code_ = nullptr;  // counted
  int status_ = ZoResult::refused;
  int error_ = 0;  // PCRE2's number for it
  unsigned int errorPosition_ = 0;
  Limits limits_;
};

inline void swap(ZoRegExp& a, ZoRegExp& b) noexcept { a.swap(b); }

// Agrees with operator==.
template <>
struct std::hash<ZoRegExp> {
  std::size_t operator()(const ZoRegExp& expression) const noexcept {
    return std::hash<std::wstring_view>()(expression.pattern()) ^ expression.options();
  }
};
