// What ZoParser (zo/parse/parser.h) reads: one token, with its place and its value.
//
// A token is a value; its text is a view of the text that was parsed, and valid as long as that.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: as values.
#pragma once

#include <zo/config.h>
#include <zo/text/string.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zo {
class TokenScanner;
}

class ZO_COM_API ZoToken {
 public:
  enum Kind : int {
    kEnd,      // behind the last; its text is empty
    kWord,     // a name or keyword
    kInteger,  // a whole number
    kReal,     // a number with a decimal character or an exponent
    kText,     // in quotes
    kSign,     // one of the parser's signs
    kBad,      // none of these: fault() says why; the parser goes on behind it
  };
  // Why a token is bad, and what it covers then.
  enum Fault : int {
    kNone,
    kOpenText,     // a quote that is not closed: to the end of its line, or of the text where
                   // texts may go over lines
    kOpenComment,  // a comment that is not closed: to the end of the text
    kTooBig,       // a number past the range of its kind
    kUnknownSign,  // one character
    kBadEscape,    // a whole text in quotes, with an escape that is none
  };
  // How a text holds its own quote.
  enum Escapes : int {
    kBackslash,  // \" \' \\ \n \r \t \uXXXX
    kDoubled,    // "" stands for "
    kPlain,      // not at all
  };

  ZoToken() = default;

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] Fault fault() const noexcept { return fault_; }
  [[nodiscard]] bool isEnd() const noexcept { return kind_ == kEnd; }
  // Whether it is this word or sign, in exactly this case. A text in quotes never is.
  template <zo::AnyText Text>
  [[nodiscard]] bool is(const Text& text) const noexcept {
    return (kind_ == kWord || kind_ == kSign) && text_ == zo::textOf(text);
  }
  bool is(Kind) const = delete;  // write kind() ==
  template <zo::NotText T>
  bool is(T) const = delete;  // takes a text: L"="

  // As it stands in the parsed text, with quotes and escapes.
  [[nodiscard]] std::wstring_view text() const noexcept { return text_; }
  // What a text in quotes says, without its quotes and escapes. Of others their text as it stands.
  [[nodiscard]] ZoString value() const;
  // The number; 0 for a token that is none. A whole number is a real, too; a real is cut.
  [[nodiscard]] std::int64_t integer() const noexcept;
  [[nodiscard]] double real() const noexcept {
    return kind_ == kReal ? real_ : static_cast<double>(integer_);
  }

  // Where it begins. Lines and columns count from 1, columns in UTF-16 units; a tab is one, and so
  // is each half of a pair. Lines end with CR LF, LF or CR. The position counts units from 0.
  [[nodiscard]] std::size_t line() const noexcept { return line_; }
  [[nodiscard]] std::size_t column() const noexcept { return column_; }
  [[nodiscard]] std::size_t position() const noexcept { return position_; }

  // For messages: "line 3, column 7"; and "the word \"abc\"", "a quote that is not closed", in one
  // line and cut where it is long.
  [[nodiscard]] ZoString where() const;
  [[nodiscard]] ZoString describe() const;

 private:
  friend class zo::TokenScanner;

  std::wstring_view text_;
  std::size_t position_ = 0;
  std::size_t line_ = 1;
  std::size_t column_ = 1;
  union {
    std::int64_t integer_ = 0;
    double real_;  // of kReal
  };
  Kind kind_ = kEnd;
  Fault fault_ = kNone;
  Escapes escapes_ = kPlain;
};
