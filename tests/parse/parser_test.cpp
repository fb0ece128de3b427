// Tokens: what they are, where they begin, and what becomes of texts that have none.
#include <gtest/gtest.h>
#include <zo/parse.h>
#include <zo/results.h>

#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

using Rules = void (*)(ZoParser&);

void plain(ZoParser&) {}
void full(ZoParser& parser) {
  parser.setSigns(L"( ) = == == <= < ... . ;")
      .setQuotes(L"\"'")
      .setLineComments(L"// #")
      .setComments(L"/*", L"*/")
      .setWordCharacters(L"$", L"$-");
}
void doubled(ZoParser& parser) {
  parser.setQuotes(L"'", ZoToken::kDoubled, ZoParser::kOverLines).setComments(L"{", L"}");
}

// One letter for each kind, its place, its text: "W1:1 abc|S1:5 =". Of a bad one the fault.
std::wstring shown(const ZoToken& token) {
  constexpr wchar_t kKinds[] = L"EWIRTSB";
  std::wstring out(1, kKinds[token.kind()]);
  if (token.kind() == ZoToken::kBad) out += std::to_wstring(token.fault()) + L"@";
  return out + std::to_wstring(token.line()) + L":" + std::to_wstring(token.column()) + L" " +
         std::wstring(token.text());
}
std::wstring tokensOf(std::wstring_view text, Rules rules) {
  ZoParser parser(text);
  rules(parser);
  std::wstring out;
  for (;;) {
    const ZoToken token = parser.next();
    out += (out.empty() ? L"" : L"|") + shown(token);
    if (token.isEnd()) return out;
  }
}

TEST(Parser, TokensAndTheirPlaces) {
  const struct {
    std::wstring_view text;
    Rules rules;
    std::wstring_view tokens;
  } kCases[] = {
      {L"", plain, L"E1:1 "},
      {L"\xFEFF a\x00A0_1\x3000", plain, L"W1:3 a|W1:5 _1|E1:8 "},
      {L"a=12;", plain, L"W1:1 a|S1:2 =|I1:3 12|S1:5 ;|E1:6 "},
      {L"a\rb\nc\r\nd\n\r\re", plain, L"W1:1 a|W2:1 b|W3:1 c|W4:1 d|W7:1 e|E7:2 "},
      {L"\ta\t\tb\v\fc", plain, L"W1:2 a|W1:5 b|W1:8 c|E1:9 "},
      {L"\x00DC"
       L"berma\x00DF \xD83D\xDE00 \xD83D x",
       plain,
       L"W1:1 \x00DC"
       L"berma\x00DF|W1:9 \xD83D\xDE00|W1:12 \xD83D|W1:14 x|E1:15 "},
      {std::wstring_view(L"a\0b", 3), plain,
       std::wstring_view(L"W1:1 a|B4@1:2 \0|W1:3 b|E1:4 ", 28)},
      // Numbers.
      {L"1 -2 +3 .5 -.5 1.5 1. 1e5 1e 1e+ 1E-2", plain,
       L"I1:1 1|I1:3 -2|I1:6 +3|R1:9 .5|R1:12 -.5|R1:16 1.5|I1:20 1|S1:21 .|R1:23 1e5|I1:27 "
       L"1|W1:28 "
       L"e|I1:30 1|W1:31 e|S1:32 +|R1:34 1E-2|E1:38 "},
      {L"12mm 1.5.2 1..2 0x1F 0xg inf nan", plain,
       L"I1:1 12|W1:3 mm|R1:6 1.5|R1:9 .2|I1:12 1|S1:13 .|R1:14 .2|I1:17 0x1F|I1:22 0|W1:23 "
       L"xg|W1:26 "
       L"inf|W1:30 nan|E1:33 "},
      {L"9223372036854775807 9223372036854775808 1e999 0x8000000000000000 -9223372036854775808",
       plain,
       L"I1:1 9223372036854775807|B3@1:21 9223372036854775808|B3@1:41 1e999|B3@1:47 "
       L"0x8000000000000000|I1:66 -9223372036854775808|E1:86 "},
      {L"a-5 a - 5 -.5 1.5", [](ZoParser& p) { p.setSigns(L"- ."); },
       L"W1:1 a|S1:2 -|I1:3 5|W1:5 a|S1:7 -|I1:9 5|S1:11 -|S1:12 .|I1:13 5|R1:15 1.5|E1:18 "},
      {L"1,5 ,5 1.5", [](ZoParser& p) { p.setDecimal(L','); },
       L"R1:1 1,5|R1:5 ,5|I1:8 1|S1:9 .|I1:10 5|E1:11 "},
      // Texts.
      {LR"("a b" "\"\\\u00e4" "" x)", plain,
       LR"(T1:1 "a b"|T1:7 "\"\\\u00e4"|T1:20 ""|W1:23 x|E1:24 )"},
      {L"\"open\r\nnext \"", plain, L"B1@1:1 \"open|W2:1 next|B1@2:6 \"|E2:7 "},
      {LR"("\q" "\u12" "a\" z)", plain, LR"(B5@1:1 "\q"|B5@1:6 "\u12"|B1@1:13 "a\" z|E1:19 )"},
      {L"'it''s' 'two\rlines' x 'open\n a", doubled,
       L"T1:1 'it''s'|T1:9 'two\rlines'|W2:8 x|B1@2:10 'open\n a|E3:3 "},
      // Signs and comments.
      {L"a===b<=c<d....?", full,
       L"W1:1 a|S1:2 ==|S1:4 =|W1:5 b|S1:6 <=|W1:8 c|S1:9 <|W1:10 d|S1:11 ...|S1:14 .|B4@1:15 "
       L"?|E1:16 "},
      {L"a // b\r\n#c\n/* d \r\r */ e / f /*", full,
       L"W1:1 a|W5:5 e|B4@5:7 /|W5:9 f|B2@5:11 /*|E5:13 "},
      {L"/**/a/***/b/*/ c */d", full, L"W1:5 a|W1:11 b|W1:20 d|E1:21 "},
      {L"{a\n} b { c\n\n", doubled, L"W2:3 b|B2@2:5 { c\n\n|E4:1 "},
      {L"$a-b -5 \"it's\" 'a \"b\"'", full,
       L"W1:1 $a-b|I1:6 -5|T1:9 \"it's\"|T1:16 'a \"b\"'|E1:23 "},
      {L"a b", [](ZoParser& p) { p.setSigns(L"").setQuotes(L""); }, L"W1:1 a|W1:3 b|E1:4 "},
      {L"\xD83D\xDE00(\"", [](ZoParser& p) { p.setSigns(L"\xD83D\xDE00").setQuotes(L""); },
       L"S1:1 \xD83D\xDE00|B4@1:3 (|B4@1:4 \"|E1:5 "},
  };
  for (const auto& [text, rules, tokens] : kCases)
    EXPECT_EQ(tokensOf(text, rules), std::wstring(tokens)) << ZoString(text).toUtf8();
}

TEST(Parser, Values) {
  ZoParser parser(L"7 -0x10 2.75 -1e300 \"a\\\"\\n\\u0041\\\\\" 'word' word 1e-400");
  parser.setQuotes(L"\"'");
  EXPECT_EQ(parser.peek().integer(), 7);
  EXPECT_EQ(parser.next().real(), 7.0);
  EXPECT_EQ(parser.next().integer(), -16);
  EXPECT_EQ(parser.peek().real(), 2.75);
  EXPECT_EQ(parser.next().integer(), 2);
  EXPECT_EQ(parser.next().integer(), std::numeric_limits<std::int64_t>::min());
  EXPECT_FALSE(parser.peek().is(L"\"a\\\"\\n\\u0041\\\\\""));
  EXPECT_EQ(parser.next().value(), L"a\"\nA\\");
  EXPECT_FALSE(parser.peek().is(L"word"));
  EXPECT_EQ(parser.next().value(), L"word");
  EXPECT_TRUE(parser.peek().is(L"word") && parser.peek().is(ZoString(L"word")));
  EXPECT_EQ(parser.peek().integer(), 0);
  EXPECT_EQ(parser.next().value(), L"word");
  EXPECT_EQ(parser.next().real(), 0.0);
  for (const wchar_t* const tooBig : {L"99999999999999999999", L"-1e999"}) {
    parser.setText(tooBig);
    EXPECT_EQ(parser.peek().integer(), 0);
    EXPECT_EQ(parser.next().real(), 0.0);
  }
  const ZoString next = L"'a''b' 'c|'d|'";
  parser.setQuotes(L"'", ZoToken::kDoubled);
  parser.setText(next);
  EXPECT_EQ(parser.next().value(), L"a'b");
  parser.setQuotes(L"'", ZoToken::kPlain);
  EXPECT_EQ(parser.next().value(), L"c|");
  parser.setQuotes(L"|", ZoToken::kBackslash).setText(L"|a\\|b|");
  EXPECT_EQ(parser.next().value(), L"a|b");
}

TEST(Parser, WhatMustStandThereIsTakenOrNamed) {
  const ZoString text = L"name = 12\n  \"txt\" 1.5 2 ) \"open";
  ZoParser parser(text);
  EXPECT_TRUE(parser.message().isEmpty());
  std::wstring_view word = L"old";
  std::int64_t integer = -1;
  double real = -1;
  ZoString string = L"old";
  ZoToken token;
  const auto refused = [&](int code, const wchar_t* message) {
    EXPECT_EQ(code, ZoResult::refused);
    EXPECT_EQ(parser.message(), message);
  };
  refused(parser.expectInteger(integer),
          L"line 1, column 1: expected a whole number, found the word \"name\"");
  refused(parser.expect(L"("), L"line 1, column 1: expected \"(\", found the word \"name\"");
  EXPECT_EQ(integer, -1);
  EXPECT_EQ(parser.expectWord(word), 0);
  EXPECT_EQ(word, L"name");
  refused(parser.expectWord(word), L"line 1, column 6: expected a word, found \"=\"");
  EXPECT_EQ(parser.expect(L"="), 0);
  refused(parser.expectText(string),
          L"line 1, column 8: expected a text in quotes, found the number \"12\"");
  EXPECT_EQ(parser.expectInteger(integer), 0);
  EXPECT_EQ(integer, 12);
  refused(parser.expectReal(real), L"line 2, column 3: expected a number, found the text \"txt\"");
  refused(parser.refuse(L"a colour"),
          L"line 2, column 3: expected a colour, found the text \"txt\"");
  EXPECT_EQ(parser.expectText(string), 0);
  EXPECT_EQ(string, L"txt");
  refused(parser.expect(ZoToken::kInteger, token),
          L"line 2, column 9: expected a whole number, found the number \"1.5\"");
  EXPECT_EQ(parser.expectReal(real), 0);
  EXPECT_EQ(real, 1.5);
  EXPECT_EQ(parser.expect(ZoToken::kReal, token), 0);
  EXPECT_EQ(token.real(), 2);
  EXPECT_FALSE(parser.take(L"]"));
  EXPECT_TRUE(parser.take(L")"));
  refused(parser.expectEnd(),
          L"line 2, column 17: expected the end of the text, found a quote that is not closed");
  EXPECT_EQ(parser.next().fault(), ZoToken::kOpenText);
  EXPECT_EQ(parser.expectEnd(), 0);
  refused(parser.expect(L"x"), L"line 2, column 22: expected \"x\", found the end of the text");
}

TEST(Parser, MessagesStayInOneLineAndAreCut) {
  const std::wstring units(60, L'x'), pairs = L"x" + std::wstring(19, L'y') + L"\xD83D\xDE00";
  const struct {
    std::wstring text;
    std::wstring_view shown;
  } kCases[] = {
      {units, L"the word \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\""},
      {std::wstring(39, L'x') + L"\xD83D\xDE00",
       L"the word \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\""},
      {L"\"a\tb\xD83D\"", L"the text \"a\\u0009b\\uD83D\""},
      {std::wstring(1, L'\0'), L"the unknown character \"\\u0000\""},
      {L"99999999999999999999", L"a number that is too large, \"99999999999999999999\""},
      {LR"("\q")", LR"(a text with an unknown escape, ""\q"")"},
      {L"/*", L"a comment that is not closed"},
  };
  for (const auto& [text, shown] : kCases) {
    ZoParser parser(text);
    parser.setComments(L"/*", L"*/");
    EXPECT_EQ(parser.next().describe(), shown);
  }
}

TEST(Parser, GoesOnAfterAnError) {
  ZoParser parser(L"a b ? c;\nd\n e f\n\ng");
  EXPECT_TRUE(parser.skipTo(L";"));
  EXPECT_TRUE(parser.peek().is(L";"));
  const ZoToken here = parser.next();
  parser.skipLine();
  EXPECT_TRUE(parser.peek().is(L"e"));
  parser.skipLine();
  EXPECT_EQ(parser.peek().line(), 5u);
  EXPECT_FALSE(parser.skipTo(L";"));
  parser.skipLine();
  EXPECT_TRUE(parser.next().isEnd());
  parser.goTo(here);
  EXPECT_EQ(shown(parser.next()), L"S1:8 ;");
  EXPECT_EQ(shown(parser.peek()), L"W2:1 d");
  parser.setWordCharacters(L"", L"\n");  // rules that change apply to what was only looked at
  EXPECT_EQ(shown(parser.peek()), L"W2:1 d\n");
}

// ---- Any text ----

// Each token lies where it says, by a count of lines from the front; between them stands nothing
// that is a token; each is found again from its place.
void expectSound(const std::wstring& text, Rules rules) {
  std::vector<std::pair<std::size_t, std::size_t>> places;
  std::size_t line = 1, start = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    const bool ended =
        i > 0 && (text[i - 1] == L'\n' || (text[i - 1] == L'\r' && text[i] != L'\n'));
    if (ended) ++line, start = i;
    places.emplace_back(line, i - start + 1);
  }
  ZoParser parser(text), again(text);
  rules(parser), rules(again);
  std::size_t end = 0;
  for (ZoToken token; !(token = parser.next()).isEnd();) {
    ASSERT_GE(token.position(), end);
    ASSERT_FALSE(token.text().empty());
    ASSERT_EQ(token.text().data(), text.data() + token.position());
    ASSERT_EQ(std::pair(token.line(), token.column()), places[token.position()]);
    ASSERT_EQ(token.kind() == ZoToken::kBad, token.fault() != ZoToken::kNone);
    ASSERT_LE(token.value().length(), token.text().size());
    end = token.position() + token.text().size();
    ASSERT_LE(end, text.size());
    again.goTo(token);
    ASSERT_EQ(shown(again.next()), shown(token));
  }
  const ZoToken last = parser.next();
  ASSERT_EQ(std::pair(last.line(), last.column()), places[text.size()]);
}

constexpr Rules kAllRules[] = {plain, full, doubled};

TEST(Parser, EveryCutOfASample) {
  const std::wstring sample =
      L"a == 'it\\'s' // c\r\n-1.5e-3 $x-y /* \r\n */ \"\\u00e4\\n\"\r0x1F <= {c}\t\xD83D\xDE00 .5 "
      L"...";
  for (const Rules rules : kAllRules) {
    const std::wstring whole = tokensOf(sample, rules);
    for (std::size_t cut = 0; cut <= sample.size(); ++cut) {
      const std::wstring front = sample.substr(0, cut);
      ASSERT_NO_FATAL_FAILURE(expectSound(front, rules)) << cut;
      ASSERT_NO_FATAL_FAILURE(expectSound(sample.substr(cut), rules)) << cut;
      // All but the last four ("1.5", "e", "-" and the end of a number that is cut) are those of
      // the whole.
      std::wstring tokens = tokensOf(front, rules);
      for (int i = 0; i < 4; ++i) tokens.resize(std::min(tokens.rfind(L'|'), tokens.size()));
      if (tokens.find(L'|') != std::wstring::npos && tokens.find(L"B") == std::wstring::npos) {
        ASSERT_TRUE(whole.starts_with(tokens)) << cut;
      }
    }
  }
}

TEST(Parser, AnyTextIsSound) {
#ifdef ZO_GUARDED
  constexpr int kRounds = 1500;
#else
  constexpr int kRounds = 60000;
#endif
  constexpr wchar_t kUnits[] =
      L"aeEx019__+-..,=<()\"\"''\\\\un/*#{}$; \t\r\n\r\n\0\xFEFF\xD83D\xDE00\xE4";
  std::mt19937 random(7);
  for (int i = 0; i < kRounds; ++i) {
    std::wstring text(random() % 24, L' ');
    for (wchar_t& c : text) c = kUnits[random() % (std::size(kUnits) - 1)];
    for (const Rules rules : kAllRules)
      ASSERT_NO_FATAL_FAILURE(expectSound(text, rules)) << ZoString(text).toUtf8();
  }
}

// Whatever a very long line holds, its units are looked at a bounded number of times.
TEST(Parser, VeryLongLines) {
#ifdef ZO_GUARDED
  constexpr std::size_t kOrdinary = 1;
#else
  constexpr std::size_t kOrdinary = 4;
#endif
  const std::size_t length = (std::getenv("ZO_TEST_LONG") ? 100 : kOrdinary) << 19;  // of two bytes
  const struct {
    std::wstring_view unit;
    std::wstring_view shown;  // of the last token before the end
    std::size_t tokens;
  } kCases[] = {
      {L"a", L"W", 1},    {L"1", L"B", 1},   {L" ", L"E", 0},      {L"\"", L"T", length / 2},
      {L"\\\"", L"B", 2}, {L"/* ", L"B", 1}, {L"(", L"S", length}, {L"\xD83D", L"W", 1},
  };
  for (const auto& [unit, kind, count] : kCases) {
    std::wstring text;
    text.reserve(length);
    while (text.size() + unit.size() <= length) text += unit;
    ZoParser parser(text);
    parser.setComments(L"/*", L"*/");
    std::size_t tokens = 0;
    ZoToken last;
    for (ZoToken token; !(token = parser.next()).isEnd(); last = token) ++tokens;
    EXPECT_EQ(shown(last).substr(0, 1), kind);
    EXPECT_EQ(tokens, count);
  }
}

}  // namespace
