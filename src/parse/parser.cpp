#include <zo/parse/parser.h>
#include <zo/results.h>

#include "parse/parser_scanner.h"

namespace zo {

struct ParserState {
  explicit ParserState(std::wstring_view text) : scanner(text) {}

  // Changes the rules as a whole or not at all; a token that was looked at is scanned again.
  template <class Change>
  void change(Change apply) {
    TokenRules rules = scanner.rules();
    apply(rules);
    rules.classify();
    scanner.rules() = std::move(rules);
    if (hasAhead) scanner.goTo(ahead);
    hasAhead = false;
  }

  TokenScanner scanner;
  ZoToken ahead;  // that was looked at and not taken
  bool hasAhead = false;
  ZoString message;
};

}  // namespace zo

namespace {

const wchar_t* nameOf(ZoToken::Kind kind) noexcept {
  switch (kind) {
    case ZoToken::kEnd:
      return L"the end of the text";
    case ZoToken::kWord:
      return L"a word";
    case ZoToken::kInteger:
      return L"a whole number";
    case ZoToken::kReal:
      return L"a number";
    case ZoToken::kText:
      return L"a text in quotes";
    case ZoToken::kSign:
      return L"a sign";
    default:
      return L"a fault";
  }
}

}  // namespace

ZoParser::ZoParser(Viewed viewed) : state_(std::make_unique<zo::ParserState>(viewed.text)) {}

ZoParser::~ZoParser() = default;

void ZoParser::begin(std::wstring_view text) noexcept {
  state_->scanner.begin(text);
  state_->hasAhead = false;
}

// ---- Rules ----

ZoParser& ZoParser::signs(std::wstring_view list) {
  state_->change([&](zo::TokenRules& rules) {
    rules.signs = zo::TokenRules::listOf(list);
    rules.isSignAsked = true;
  });
  return *this;
}

ZoParser& ZoParser::quotes(std::wstring_view set, ZoToken::Escapes escapes, TextSpan span) {
  state_->change([&](zo::TokenRules& rules) {
    rules.quotes = set;
    rules.escapes = escapes;
    rules.textsOverLines = span == kOverLines;
  });
  return *this;
}

ZoParser& ZoParser::lineComments(std::wstring_view marks) {
  state_->change(
      [&](zo::TokenRules& rules) { rules.lineComments = zo::TokenRules::listOf(marks); });
  return *this;
}

ZoParser& ZoParser::comments(std::wstring_view open, std::wstring_view close) {
  state_->change([&](zo::TokenRules& rules) {
    rules.openComment = open;
    rules.closeComment = close;
  });
  return *this;
}

ZoParser& ZoParser::wordCharacters(std::wstring_view first, std::wstring_view inside) {
  state_->change([&](zo::TokenRules& rules) {
    rules.wordFirst = first;
    rules.wordInside = inside;
  });
  return *this;
}

ZoParser& ZoParser::setDecimal(wchar_t decimal) {
  state_->change([&](zo::TokenRules& rules) { rules.decimal = decimal; });
  return *this;
}

// ---- Tokens ----

const ZoToken& ZoParser::peek() noexcept {
  if (!state_->hasAhead) {
    state_->ahead = state_->scanner.scan();
    state_->hasAhead = true;
  }
  return state_->ahead;
}

ZoToken ZoParser::next() noexcept {
  if (!state_->hasAhead) return state_->scanner.scan();
  state_->hasAhead = false;
  return state_->ahead;
}

void ZoParser::skipLine() noexcept {
  const std::size_t line = next().line();
  while (!peek().isEnd() && peek().line() == line) next();
}

void ZoParser::goTo(const ZoToken& token) noexcept {
  state_->scanner.goTo(token);
  state_->hasAhead = false;
}

// ---- What must stand there ----

int ZoParser::refuseNext(std::wstring_view expected) {
  const ZoToken& found = peek();
  state_->message = found.where() + L": expected " + expected + L", found " + found.describe();
  return ZoResult::refused;
}

int ZoParser::refuseFor(std::wstring_view text) {
  return refuseNext((L"\"" + ZoString(text) + L"\"").view());
}

int ZoParser::expect(ZoToken::Kind kind, ZoToken& token) {
  const ZoToken::Kind found = peek().kind();
  if (found != kind && !(kind == ZoToken::kReal && found == ZoToken::kInteger))
    return refuseNext(nameOf(kind));
  token = next();
  return ZoResult::ok;
}

int ZoParser::expectWord(std::wstring_view& word) {
  ZoToken token;
  if (const int code = expect(ZoToken::kWord, token)) return code;
  word = token.text();
  return ZoResult::ok;
}

int ZoParser::expectInteger(std::int64_t& value) {
  ZoToken token;
  if (const int code = expect(ZoToken::kInteger, token)) return code;
  value = token.integer();
  return ZoResult::ok;
}

int ZoParser::expectReal(double& value) {
  ZoToken token;
  if (const int code = expect(ZoToken::kReal, token)) return code;
  value = token.real();
  return ZoResult::ok;
}

int ZoParser::expectText(ZoString& value) {
  if (peek().kind() != ZoToken::kText) return refuseNext(nameOf(ZoToken::kText));
  value = peek().value();  // before it is taken: where it throws, it is the next still
  next();
  return ZoResult::ok;
}

int ZoParser::expectEnd() {
  return peek().isEnd() ? ZoResult::ok : refuseNext(nameOf(ZoToken::kEnd));
}

const ZoString& ZoParser::message() const noexcept { return state_->message; }
