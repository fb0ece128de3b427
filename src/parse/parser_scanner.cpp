#include "parse/parser_scanner.h"

#include <zo/results.h>
#include <zo/text/number_text.h>

#include <algorithm>
#include <limits>

#include "text/code_units.h"

namespace zo {
namespace {

constexpr bool isLineEnd(wchar_t c) noexcept { return c == L'\n' || c == L'\r'; }

// Unicode's blanks past ASCII, and the byte order mark.
constexpr bool isOtherWhite(wchar_t c) noexcept {
  return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
         c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000 || c == 0xFEFF;
}

constexpr std::wstring_view kPunctuation =
    L"! # $ % & ' ( ) * + , - . / : ; < = > ? @ [ \\ ] ^ ` "
    L"{ | } ~ \"";

// The units of the escape that begins with a backslash at the front; 0 for what is none.
std::size_t escapeLength(std::wstring_view text, wchar_t quote) noexcept {
  constexpr std::wstring_view kEscaped = L"\\\"'nrt";
  if (text.size() < 2) return 0;
  if (text[1] == quote || kEscaped.find(text[1]) != std::wstring_view::npos) return 2;
  if (text[1] != L'u') return 0;
  if (text.size() < 6) return 0;
  for (std::size_t i = 2; i < 6; ++i) {
    if (hexDigit(text[i]) > 15) return 0;
  }
  return 6;
}

wchar_t escapedUnit(std::wstring_view escape, wchar_t quote) noexcept {
  if (escape[1] == quote) return quote;
  switch (escape[1]) {
    case L'n':
      return L'\n';
    case L'r':
      return L'\r';
    case L't':
      return L'\t';
    case L'u': {
      unsigned int unit = 0;
      for (const wchar_t digit : escape.substr(2)) unit = unit << 4 | hexDigit(digit);
      return static_cast<wchar_t>(unit);
    }
    default:
      return escape[1];
  }
}

// Marks have few units: a loop is quicker than the runtime's comparison.
bool beginsWith(std::wstring_view text, std::wstring_view mark) noexcept {
  if (text.size() < mark.size()) return false;
  for (std::size_t i = 0; i < mark.size(); ++i) {
    if (text[i] != mark[i]) return false;
  }
  return true;
}

// The length of the longest mark at the front of a text; the marks are sorted so.
std::size_t markAt(const TokenRules::Marks& marks, std::wstring_view text) noexcept {
  for (const std::wstring& mark : marks) {
    if (beginsWith(text, mark)) return mark.size();
  }
  return 0;
}

}  // namespace

// ---- Rules ----

TokenRules::TokenRules() : signs(listOf(kPunctuation)) { classify(); }

TokenRules::Marks TokenRules::listOf(std::wstring_view list) {
  Marks marks;
  while (!list.empty()) {
    const auto end = std::find_if(list.begin(), list.end(), isWhite);
    const auto length = static_cast<std::size_t>(end - list.begin());
    if (length > 0) marks.emplace_back(list.substr(0, length));
    list.remove_prefix(std::min(length + 1, list.size()));
  }
  std::sort(marks.begin(), marks.end(),
            [](const auto& a, const auto& b) { return a.size() > b.size(); });
  return marks;
}

void TokenRules::add(wchar_t c, unsigned int classes) {
  if (c < 128) {
    table_[c] = static_cast<std::uint16_t>(table_[c] | classes);
    return;
  }
  for (auto& [unit, its] : others_) {
    if (unit == c) return void(its |= classes);
  }
  others_.emplace_back(c, classes);
}

void TokenRules::classify() {
  others_.clear();
  for (wchar_t c = 0; c < 128; ++c) {
    table_[c] =
        static_cast<std::uint16_t>((isWhite(c) ? kWhite : 0) | (isLineEnd(c) ? kLineEnd : 0) |
                                   (isDigit(c) ? kDigit | kWordPart : 0) |
                                   (isLetter(c) || c == L'_' ? kWordFirst | kWordPart : 0) |
                                   (c == L'+' || c == L'-' ? kNumberSign : 0));
  }
  if (decimal != 0) add(decimal, kDecimal);
  for (const wchar_t c : wordFirst) add(c, kWordFirst | kWordPart);
  for (const wchar_t c : wordInside) add(c, kWordPart);
  for (const wchar_t c : quotes) add(c, kQuote);
  for (const std::wstring& mark : signs) add(mark[0], mark.size() > 1 ? kSign | kLongSign : kSign);
  for (const std::wstring& mark : lineComments) add(mark[0], kComment);
  if (!openComment.empty()) add(openComment[0], kComment);
}

unsigned int TokenRules::otherClassesOf(wchar_t c) const noexcept {
  for (const auto& [unit, classes] : others_) {
    if (unit == c) return classes;
  }
  return isOtherWhite(c) ? kWhite : kWordFirst | kWordPart;
}

// ---- Places ----

void TokenScanner::begin(std::wstring_view text) noexcept {
  text_ = text;
  at_ = lineStart_ = 0;
  line_ = 1;
}

void TokenScanner::goTo(const ZoToken& token) noexcept {
  at_ = std::min(token.position_, text_.size());
  line_ = token.line_;
  lineStart_ = at_ - std::min(at_, token.column_ - 1);
}

void TokenScanner::newLine() noexcept {
  at_ += unit(0) == L'\r' && unit(1) == L'\n' ? 2 : 1;
  ++line_;
  lineStart_ = at_;
}

void TokenScanner::advance(std::size_t count, bool mayHoldLines) noexcept {
  const std::size_t end = at_ + count;
  while (mayHoldLines && at_ < end) {
    if (isLineEnd(text_[at_])) {
      newLine();
    } else {
      ++at_;
    }
  }
  at_ = std::max(at_, end);
}

ZoToken TokenScanner::make(ZoToken::Kind kind, std::size_t length, ZoToken::Fault fault) noexcept {
  ZoToken token;
  token.kind_ = kind;
  token.fault_ = fault;
  token.text_ = text_.substr(at_, length);
  token.position_ = at_;
  token.line_ = line_;
  token.column_ = at_ - lineStart_ + 1;
  advance(length, kind == ZoToken::kText || kind == ZoToken::kBad);
  return token;
}

// ---- Tokens ----

ZoToken TokenScanner::scan() noexcept {
  for (;;) {
    skipWhite();
    if (at_ == text_.size()) return make(ZoToken::kEnd, 0);
    const unsigned int classes = rules_.classesOf(text_[at_]);
    // Most tokens are words and short signs.
    if (classes == (TokenRules::kWordFirst | TokenRules::kWordPart)) return word();
    if (classes == TokenRules::kSign) return make(ZoToken::kSign, 1);
    if (classes & TokenRules::kComment) {
      const Comment comment = skipComment();
      if (comment == Comment::Skipped) continue;
      if (comment == Comment::Open)
        return make(ZoToken::kBad, text_.size() - at_, ZoToken::kOpenComment);
    }
    if (classes & TokenRules::kQuote) return text();
    if (isNumber(classes)) return number();
    if (classes & TokenRules::kWordFirst) return word();
    return sign(classes);
  }
}

void TokenScanner::skipWhite() noexcept {
  for (; at_ < text_.size(); ++at_) {
    if (text_[at_] == L' ') continue;
    const unsigned int classes = rules_.classesOf(text_[at_]);
    if (!(classes & TokenRules::kWhite)) return;
    if (classes & TokenRules::kLineEnd) {
      newLine();
      --at_;
    }
  }
}

TokenScanner::Comment TokenScanner::skipComment() noexcept {
  const std::wstring_view rest = text_.substr(at_);
  const std::wstring& open = rules_.openComment;
  const std::size_t line = markAt(rules_.lineComments, rest);
  if (!open.empty() && open.size() >= line && beginsWith(rest, open)) {
    const std::size_t close = rules_.closeComment.empty()
                                  ? std::wstring_view::npos
                                  : rest.find(rules_.closeComment, open.size());
    if (close == std::wstring_view::npos) return Comment::Open;
    advance(close + rules_.closeComment.size(), true);
    return Comment::Skipped;
  }
  if (line == 0) return Comment::None;
  while (at_ < text_.size() && !isLineEnd(text_[at_])) ++at_;
  return Comment::Skipped;
}

bool TokenScanner::isDigitAt(std::size_t ahead) const noexcept {
  return text_.size() - at_ > ahead && isDigit(text_[at_ + ahead]);
}

bool TokenScanner::isDecimalAt(std::size_t ahead) const noexcept {
  return rules_.decimal != 0 && unit(ahead) == rules_.decimal;
}

bool TokenScanner::isNumber(unsigned int classes) const noexcept {
  if (classes & TokenRules::kDigit) return true;
  if ((classes & TokenRules::kSign) && rules_.isSignAsked) return false;
  if ((classes & TokenRules::kNumberSign) && isDigitAt(1)) return true;
  if (classes & TokenRules::kDecimal) return isDigitAt(1);
  if (!(classes & TokenRules::kNumberSign) || !isDecimalAt(1)) return false;
  const bool isItsOwn = (rules_.classesOf(rules_.decimal) & TokenRules::kSign) != 0;
  return isDigitAt(2) && !(rules_.isSignAsked && isItsOwn);
}

ZoToken TokenScanner::word() noexcept {
  std::size_t end = at_ + 1;
  while (end < text_.size() && (rules_.classesOf(text_[end]) & TokenRules::kWordPart)) ++end;
  return make(ZoToken::kWord, end - at_);
}

// The extent is found here and the value by the readers of numbers, which would take more of some
// texts ("1." and "inf").
ZoToken TokenScanner::number() noexcept {
  const std::size_t first = unit(0) == L'+' || unit(0) == L'-' ? 1 : 0;
  if (unit(first) == L'0' && (unit(first + 1) | 0x20) == L'x' && hexDigit(unit(first + 2)) < 16)
    return hexadecimal(first);
  std::size_t end = first;
  bool isReal = false;
  while (isDigitAt(end)) ++end;
  if (isDecimalAt(end) && isDigitAt(end + 1)) {
    isReal = true;
    for (++end; isDigitAt(end);) ++end;
  }
  if ((unit(end) | 0x20) == L'e') {
    const std::size_t digits = end + (unit(end + 1) == L'+' || unit(end + 1) == L'-' ? 2 : 1);
    if (isDigitAt(digits)) {
      isReal = true;
      for (end = digits; isDigitAt(end);) ++end;
    }
  }
  const std::wstring_view digits = text_.substr(at_, end);
  double real = 0;
  std::int64_t integer = 0;
  const int result =
      isReal ? ZoStrToReal(digits, real, nullptr, rules_.decimal) : ZoStrToInt(digits, integer);
  if (result != ZoResult::ok) return make(ZoToken::kBad, end, ZoToken::kTooBig);
  ZoToken token = make(isReal ? ZoToken::kReal : ZoToken::kInteger, end);
  if (isReal) {
    token.real_ = real;
  } else {
    token.integer_ = integer;
  }
  return token;
}

ZoToken TokenScanner::hexadecimal(std::size_t prefix) noexcept {
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  const bool negative = prefix != 0 && unit(0) == L'-';
  std::size_t end = prefix + 2;
  std::uint64_t value = 0;
  bool tooBig = false;
  for (unsigned int digit = 0; (digit = hexDigit(unit(end))) < 16; ++end) {
    tooBig |= value > (kMax >> 4);
    value = value << 4 | digit;
  }
  if (tooBig) return make(ZoToken::kBad, end, ZoToken::kTooBig);
  ZoToken token = make(ZoToken::kInteger, end);
  token.integer_ = negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
  return token;
}

ZoToken TokenScanner::text() noexcept {
  const wchar_t quote = text_[at_];
  bool isBad = false;
  std::size_t i = at_ + 1;
  for (; i < text_.size(); ++i) {
    const wchar_t c = text_[i];
    if (c == quote) {
      if (rules_.escapes != ZoToken::kDoubled || i + 1 == text_.size() || text_[i + 1] != quote)
        break;
      ++i;
    } else if (c == L'\\' && rules_.escapes == ZoToken::kBackslash) {
      const std::size_t length = escapeLength(text_.substr(i), quote);
      isBad |= length == 0;
      if (length > 0) i += length - 1;
    } else if (isLineEnd(c) && !rules_.textsOverLines) {
      return make(ZoToken::kBad, i - at_, ZoToken::kOpenText);
    }
  }
  if (i == text_.size()) return make(ZoToken::kBad, i - at_, ZoToken::kOpenText);
  if (isBad) return make(ZoToken::kBad, i + 1 - at_, ZoToken::kBadEscape);
  ZoToken token = make(ZoToken::kText, i + 1 - at_);
  token.escapes_ = rules_.escapes;
  return token;
}

ZoToken TokenScanner::sign(unsigned int classes) noexcept {
  const std::wstring_view rest = text_.substr(at_);
  const std::size_t length = classes & TokenRules::kSign ? markAt(rules_.signs, rest) : 0;
  if (length > 0) return make(ZoToken::kSign, length);
  return make(ZoToken::kBad, firstCharacter(rest).size(), ZoToken::kUnknownSign);
}

std::wstring TokenScanner::unescaped(std::wstring_view quoted, ZoToken::Escapes escapes) {
  const wchar_t quote = quoted.front();
  const std::wstring_view content = quoted.substr(1, quoted.size() - 2);
  if (escapes == ZoToken::kPlain) return std::wstring(content);
  const wchar_t mark = escapes == ZoToken::kDoubled ? quote : L'\\';
  std::wstring result;
  for (std::size_t at = 0; at < content.size();) {
    const std::size_t next = std::min(content.find(mark, at), content.size());
    result.append(content, at, next - at);
    at = next;
    if (at == content.size()) break;
    const bool isDoubled = escapes == ZoToken::kDoubled;
    const std::size_t length = isDoubled ? 2 : escapeLength(content.substr(at), quote);
    result += isDoubled ? quote : escapedUnit(content.substr(at, length), quote);
    at += length;
  }
  return result;
}

}  // namespace zo
