// Tokens over a text, with a place for every error: what small languages, settings and data lists
// are read with.
//
//   ZoParser parser(text);                       // "M8 = 12.5, 20;"
//   std::wstring_view name;
//   double length = 0;
//   if (parser.expectWord(name) || parser.expect(L"=") || parser.expectReal(length))
//     return report(parser.message());           // line 1, column 6: expected a number, found ...
//   while (parser.take(L",")) ...
//
// White space, line ends and comments part tokens and mean nothing else (a token's line() tells
// where a new line begins). A byte order mark and all of Unicode's blanks are white space.
//
//   word     letters, "_" and digits, not beginning with a digit. Everything from U+0080 on that is
//            no white space, quote or sign counts as a letter.
//   number   12, 1.5, .5, 1e5, 0x1F: read as ZoStrToInt and ZoStrToReal do, but neither "inf" nor
//            "nan", which are words. The decimal character belongs to a number only before a digit.
//            A plus or minus, and a decimal character in front, belong to a number unless setSigns
//            named them as signs: then "a-5" is three tokens. What follows needs no blank: "12mm"
//            is a number and a word.
//   text     from a quote to the next of the same kind.
//   sign     the longest of the parser's signs that stands there. At first, each ASCII character
//            that is no letter, digit, "_" or quote is one.
//
// Nothing is copied: the text must outlive the parser and its tokens. A temporary string does not
// compile.
//
// Errors:  what is no token comes as one of kind kBad, and the parser goes on behind it. The int
//          results are 0, or ZoResult::refused when another token stands there, which is then still
//          the next; out-parameters stay as they were, and message() tells. Nothing throws but
//          std::bad_alloc.
// Threads: one at a time per object.
// Cost:    linear; a token allocates nothing. Making a parser takes a block of memory: setText
//          takes the next text with the same rules.
#pragma once

#include <zo/config.h>
#include <zo/parse/parser_token.h>
#include <zo/text/lasting_text.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>

namespace zo {
struct ParserState;
}

class ZO_COM_API ZoParser {
 public:
  // Whether a text in quotes may hold line ends. Where it may not, a quote that is not closed costs
  // one line.
  enum TextSpan : int { kWithinLine, kOverLines };

  template <class Text>
    requires zo::LastingText<Text>
  explicit ZoParser(Text&& text) : ZoParser(Viewed{zo::textOf(text)}) {}
  template <class Text>
    requires(!zo::LastingText<Text>)
  explicit ZoParser(Text&&) = delete;  // the text must outlive the parser: give it a name
  ZoParser(const ZoParser&) = delete;
  ZoParser& operator=(const ZoParser&) = delete;
  ~ZoParser();

  // ---- Rules: may change between two tokens ----
  // Signs and marks of comments are given in one text, parted by blanks: L"( ) , <= <". Those that
  // begin with a letter, a digit or a quote are never found. An empty list: there are none.
  template <zo::AnyText Text>
  ZoParser& setSigns(const Text& list) {
    return signs(zo::textOf(list));
  }
  // Each character opens a text that ends with the same. At first L"\"", kBackslash, kWithinLine.
  template <zo::AnyText Text>
  ZoParser& setQuotes(const Text& set, ZoToken::Escapes escapes = ZoToken::kBackslash,
                      TextSpan span = kWithinLine) {
    return quotes(zo::textOf(set), escapes, span);
  }
  // Comments that go to the end of the line, any number of marks; and those between two marks, one
  // kind, which do not nest. At first there are none.
  template <zo::AnyText Text>
  ZoParser& setLineComments(const Text& marks) {
    return lineComments(zo::textOf(marks));
  }
  template <zo::AnyText Open, zo::AnyText Close>
  ZoParser& setComments(const Open& open, const Close& close) {
    return comments(zo::textOf(open), zo::textOf(close));
  }
  // Characters that words may begin with besides letters and "_", and such as may stand behind
  // their first. Numbers come first: "-5" is no word.
  template <zo::AnyText First, zo::AnyText Inside>
  ZoParser& setWordCharacters(const First& first, const Inside& inside) {
    return wordCharacters(zo::textOf(first), zo::textOf(inside));
  }
  ZoParser& setDecimal(wchar_t decimal);  // at first a point
  template <class T>
    requires(!std::same_as<T, wchar_t>)
  ZoParser& setDecimal(T) = delete;  // write L','

  // Begins anew with another text and the same rules.
  template <class Text>
    requires zo::LastingText<Text>
  void setText(Text&& text) noexcept {
    begin(zo::textOf(text));
  }
  template <class Text>
    requires(!zo::LastingText<Text>)
  void setText(Text&&) = delete;  // the text must outlive the parser: give it a name

  // ---- Tokens ----
  // The next token; at the end, and ever after, one of kind kEnd.
  ZoToken next() noexcept;
  // The same, and leaves it there. Valid until the parser is used again.
  [[nodiscard]] const ZoToken& peek() noexcept;
  // Takes the next token if it is this word or sign, and tells.
  template <zo::AnyText Text>
  [[nodiscard]] bool take(const Text& text) noexcept {
    const bool there = peek().is(text);
    if (there) next();
    return there;
  }

  // ---- What must stand there ----
  // Take the next token, or refuse another one with a message that names both.
  template <zo::AnyText Text>
  [[nodiscard]] int expect(const Text& text) {  // this word or sign
    return take(text) ? 0 : refuseFor(zo::textOf(text));
  }
  template <zo::NotText T>
    requires(!std::same_as<T, ZoToken::Kind>)
  int expect(T) = delete;                                        // takes a text: L"="
  [[nodiscard]] int expect(ZoToken::Kind kind, ZoToken& token);  // kReal takes integers, too
  int expect(ZoToken::Kind) = delete;                            // and a place for the token
  [[nodiscard]] int expectWord(std::wstring_view& word);
  [[nodiscard]] int expectInteger(std::int64_t& value);
  [[nodiscard]] int expectReal(double& value);
  [[nodiscard]] int expectText(ZoString& value);  // without quotes and escapes
  [[nodiscard]] int expectEnd();
  // Refuses the next token in the caller's words: "line 3, column 7: expected a colour, found ...".
  // Always ZoResult::refused.
  template <zo::AnyText Text>
  [[nodiscard]] int refuse(const Text& expected) {
    return refuseNext(zo::textOf(expected));
  }
  // Of the last refusal; empty when there was none.
  [[nodiscard]] const ZoString& message() const noexcept;

  // ---- Going on after an error, and going back ----
  // Takes tokens until this word or sign is the next; false when the text ends before.
  template <zo::AnyText Text>
  bool skipTo(const Text& text) noexcept {
    while (!peek().is(text)) {
      if (next().isEnd()) return false;
    }
    return true;
  }
  // Takes the next token and all others that begin in its line.
  void skipLine() noexcept;
  // Goes to a token that this parser gave for this text: it is the next again.
  void goTo(const ZoToken& token) noexcept;

 private:
  struct Viewed {
    std::wstring_view text;
  };
  explicit ZoParser(Viewed viewed);

  void begin(std::wstring_view text) noexcept;
  ZoParser& signs(std::wstring_view list);
  ZoParser& quotes(std::wstring_view set, ZoToken::Escapes escapes, TextSpan span);
  ZoParser& lineComments(std::wstring_view marks);
  ZoParser& comments(std::wstring_view open, std::wstring_view close);
  ZoParser& wordCharacters(std::wstring_view first, std::wstring_view inside);
  int refuseFor(std::wstring_view text);
  int refuseNext(std::wstring_view expected);

  std::unique_ptr<zo::ParserState> state_;
};
