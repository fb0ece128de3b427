// Any text as tokens: they follow one another, lie where they say, are found again from their
// places, and depend on nothing behind their line.
#include "parse/parser_scanner.h"

#include <string>

#include "fuzz.h"

using namespace zo;

namespace {

void setRules(TokenRules& rules, unsigned int choice) {
  if (choice & 1) {
    rules.signs = TokenRules::listOf(L"( ) = == <= ... . -");
    rules.isSignAsked = true;
  }
  if (choice & 2) rules.quotes = L"\"'", rules.escapes = ZoToken::kDoubled;
  if (choice & 4) rules.textsOverLines = true;
  if (choice & 8) rules.lineComments = TokenRules::listOf(L"# //");
  if (choice & 16) rules.openComment = L"/*", rules.closeComment = L"*/";
  if (choice & 32) rules.decimal = L',', rules.wordFirst = L"$", rules.wordInside = L"-";
  rules.classify();
}

struct Place {
  std::size_t line = 1, column = 1;
};
void walk(Place& place, std::wstring_view text, std::size_t from, std::size_t to) {
  for (; from < to; ++from) {
    const bool half = text[from] == L'\r' && text.substr(from + 1, 1) == L"\n";
    const bool ends = text[from] == L'\n' || (text[from] == L'\r' && !half);
    place = ends ? Place{place.line + 1, 1} : Place{place.line, place.column + 1};
  }
}

}  // namespace

// The first byte chooses rules. Bytes of 0x80 and more stand for characters of other alphabets.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  std::wstring text;
  for (std::size_t i = 1; i < size; ++i)
    text += static_cast<wchar_t>(data[i] < 0x80 ? data[i] : data[i] * 0x101);
  TokenScanner scanner(text), again(text);
  setRules(scanner.rules(), data[0]);
  setRules(again.rules(), data[0]);
  Place place;
  std::size_t at = 0;
  for (;;) {
    const ZoToken token = scanner.scan();
    ZO_FUZZ_CHECK(token.position() >= at && token.text().data() == text.data() + token.position());
    walk(place, text, at, token.position());
    ZO_FUZZ_CHECK(token.line() == place.line && token.column() == place.column);
    ZO_FUZZ_CHECK((token.kind() == ZoToken::kBad) == (token.fault() != ZoToken::kNone));
    again.goTo(token);
    const ZoToken same = again.scan();
    ZO_FUZZ_CHECK(same.kind() == token.kind() && same.text().data() == token.text().data() &&
                  same.text().size() == token.text().size() && same.line() == token.line() &&
                  same.column() == token.column());
    if (token.isEnd()) break;
    ZO_FUZZ_CHECK(!token.text().empty());
    walk(place, text, token.position(), token.position() + token.text().size());
    at = token.position() + token.text().size();
    if (token.kind() != ZoToken::kText) continue;
    const auto escapes = data[0] & 2 ? ZoToken::kDoubled : ZoToken::kBackslash;
    ZO_FUZZ_CHECK(TokenScanner::unescaped(token.text(), escapes).size() + 2 <= token.text().size());
  }
  ZO_FUZZ_CHECK(scanner.scan().isEnd());
  return 0;
}
