// The scanner behind ZoParser: from units to tokens, by rules that can be set. Needs no platform.
//
// Each ASCII unit has its classes in a table, each other one by a short search; a token is scanned
// once, from its first unit to its last.
#pragma once

#include <zo/parse/parser_token.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zo {

struct TokenRules {
  TokenRules();

  using Marks = std::vector<std::wstring>;

  Marks signs;
  Marks lineComments;
  std::wstring openComment, closeComment;
  std::wstring quotes = L"\"";
  std::wstring wordFirst, wordInside;
  ZoToken::Escapes escapes = ZoToken::kBackslash;
  bool textsOverLines = false;
  wchar_t decimal = L'.';
  // Whether the signs were asked for: a plus, minus or decimal character among them begins no
  // number then.
  bool isSignAsked = false;

  // The pieces of a list between blanks, longest first.
  static Marks listOf(std::wstring_view list);
  // To be called after a change of the others.
  void classify();

  enum Class : std::uint16_t {
    kWhite = 1,
    kLineEnd = 2,
    kWordFirst = 4,
    kWordPart = 8,
    kDigit = 16,
    kQuote = 32,
    kSign = 64,
    kComment = 128,
    kNumberSign = 256,  // + or -
    kDecimal = 512,
    kLongSign = 1024,  // of two units or more, perhaps
  };
  [[nodiscard]] unsigned int classesOf(wchar_t c) const noexcept {
    return c < 128 ? table_[c] : otherClassesOf(c);
  }

 private:
  [[nodiscard]] unsigned int otherClassesOf(wchar_t c) const noexcept;
  void add(wchar_t c, unsigned int classes);

  std::uint16_t table_[128];
  std::vector<std::pair<wchar_t, unsigned int>> others_;  // that are no plain letters
};

class TokenScanner {
 public:
  explicit TokenScanner(std::wstring_view text) noexcept { begin(text); }
  TokenRules& rules() noexcept { return rules_; }

  void begin(std::wstring_view text) noexcept;
  [[nodiscard]] ZoToken scan() noexcept;
  void goTo(const ZoToken& token) noexcept;

  // The content of a text in quotes that scan() found good.
  static std::wstring unescaped(std::wstring_view quoted, ZoToken::Escapes escapes);

 private:
  [[nodiscard]] wchar_t unit(std::size_t ahead) const noexcept {
    return text_.size() - at_ > ahead ? text_[at_ + ahead] : L'\0';
  }
  [[nodiscard]] bool isDigitAt(std::size_t ahead) const noexcept;
  [[nodiscard]] bool isDecimalAt(std::size_t ahead) const noexcept;
  void newLine() noexcept;
  void advance(std::size_t count, bool mayHoldLines) noexcept;
  void skipWhite() noexcept;
  enum class Comment { None, Skipped, Open };
  Comment skipComment() noexcept;
  [[nodiscard]] bool isNumber(unsigned int classes) const noexcept;

  ZoToken make(ZoToken::Kind kind, std::size_t length,
               ZoToken::Fault fault = ZoToken::kNone) noexcept;
  ZoToken word() noexcept;
  ZoToken number() noexcept;
  ZoToken hexadecimal(std::size_t prefix) noexcept;
  ZoToken text() noexcept;
  ZoToken sign(unsigned int classes) noexcept;

  TokenRules rules_;
  std::wstring_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t lineStart_ = 0;
};

}  // namespace zo
