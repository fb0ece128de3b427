// Expressions: which patterns are ones, what they know, and what they match.
#include <gtest/gtest.h>
#include <zo/parse.h>
#include <zo/strings.h>

#include <array>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "backtracker.h"
#include "shown.h"

namespace zo::test {
namespace {

using Option = ZoRegExp::Option;
constexpr unsigned npos = ZoString::npos;

// ---- Patterns ----

TEST(RegExp, TellsWhatIsWrongAndWhere) {
  const struct {
    std::wstring pattern;
    unsigned position;
    const wchar_t* words;
    Option options = ZoRegExp::kDefault;
  } wrong[] = {
      {L"a(b", 3, L"Missing closing parenthesis."},
      {L"a)b", 1, L"Unmatched closing parenthesis."},
      {L"[a-", 3, L"Missing terminating ] for character class."},
      {L"[z-a]", 3, L"Range out of order in character class."},
      {L"a{2,1}", 5, L"Numbers out of order in {} quantifier."},
      {L"a{65536}", 7, L"Number too big in {} quantifier."},
      {L"*", 0, L"Quantifier does not follow a repeatable item."},
      {L"a\\", 2, L"\\ at end of pattern."},
      {L"\\x{110000}", 9, L"Character code point value in \\x{} or \\o{} is too large."},
      {L"\\1", 1, L"Reference to non-existent subpattern."},
      {L"(?<n>a)(?<n>b)", 12, L"Two named subpatterns have the same name"},
      {L"a\\Cb", 3, L"Using \\C is disabled by the application."},
      {std::wstring(251, L'(') + std::wstring(251, L')'), 251,
       L"Parentheses are too deeply nested."},
      {std::wstring(65536, L'a'), 65535, L"The pattern is longer than 65535 characters."},
      {std::wstring(65535, L'a'), 65535, L"Regular expression is too large."},
      {std::wstring(65535, L'a'), 65535, L"Regular expression is too large.", ZoRegExp::kLiteral},
      {L"(*UTF)a", 6, L"Using UTF is disabled by the application.", ZoRegExp::kIgnoreAsciiCase},
  };
  for (const auto& [pattern, position, words, options] : wrong) {
    SCOPED_TRACE(shown(pattern.substr(0, 20)));
    ZoRegExp made(pattern, options);
    EXPECT_FALSE(made.isValid());
    EXPECT_EQ(made.status(), ZoResult::badPattern);
    EXPECT_EQ(made.errorPosition(), position);
    EXPECT_TRUE(made.errorText().startsWith(words)) << shown(made.errorText());
    EXPECT_EQ(ZoString(L"aaa").index(made), npos);

    ZoRegExp kept(L"b+", ZoRegExp::kIgnoreCase);
    EXPECT_EQ(kept.set(pattern, options), ZoResult::badPattern);
    EXPECT_EQ(kept.status(), ZoResult::badPattern);
    EXPECT_EQ(ZoString(L"aBb").index(kept), 1u);
    EXPECT_EQ(kept.set(L"a"), 0);
    EXPECT_TRUE(kept.status() == 0 && kept.errorText().isEmpty() && kept.errorPosition() == 0);
  }
}

TEST(RegExp, IsAValue) {
  const wchar_t* nothing = nullptr;
  const ZoRegExp none, pattern(L"(?<year>[0-9]+)-(?<m>[0-9]+)(x)?"), null(nothing);
  EXPECT_TRUE(!none.isValid() && none.status() == ZoResult::refused && none.groups() == 0);
  EXPECT_TRUE(none.pattern().empty() && none.group(L"year") == npos && none == ZoRegExp());
  EXPECT_EQ(pattern.groups(), 3u);
  EXPECT_TRUE(pattern.group(L"year") == 1 && pattern.group(L"m") == 2);
  EXPECT_TRUE(pattern.group(L"mm") == npos && pattern.group(L"") == npos);
  EXPECT_TRUE(pattern.groupName(2) == L"m" && pattern.groupName(3).isEmpty());
  EXPECT_EQ(ZoString(L"x").index(null), 0u) << "the empty pattern";

  ZoRegExp copy(pattern), other(pattern.pattern(), ZoRegExp::kDotAll);
  const std::hash<ZoRegExp> hash;
  EXPECT_TRUE(copy == pattern && hash(copy) == hash(ZoRegExp(pattern.pattern())));
  EXPECT_TRUE(other != pattern && none != null);
  const ZoRegExp moved(std::move(other));
  EXPECT_TRUE(moved.options() == ZoRegExp::kDotAll && moved.pattern() == pattern.pattern());
  copy = moved;
  EXPECT_TRUE(copy == moved && copy.set(L"z") == 0 && copy != moved && moved.groups() == 3);
  std::wostringstream out;
  out << moved;
  EXPECT_EQ(out.str(), pattern.pattern());
}

// Whatever a pattern is cut from or made of, it is compiled or refused at a place within it, and
// what it matches lies within the text; the same with machine code and without.
void tryPattern(const std::wstring& pattern, Option options = ZoRegExp::kDefault) {
  static const ZoString text(
      std::wstring_view(L"ab\0\xD83D\xDE00 \xDC00\r\n\xD83D\xD83D"
                        L"A\x212A{2}[z-a]\xD800",
                        25));
  ZoRegExp made(pattern, options), interpreted(pattern, options | ZoRegExp::kNoMachineCode);
  ASSERT_EQ(made.isValid(), interpreted.isValid());
  static_cast<void>(made.hasMachineCode());             // makes it
  ASSERT_LE(made.errorPosition(), 2 * pattern.size());  // a wildcard grows
  made.setLimits({10'000, 10'000, 1'000, 1'000});
  interpreted.setLimits(made.limits());
  ZoSearch one(made, text), two(interpreted, text);
  for (unsigned count = 0;; ++count) {
    const bool isFound = one.next(), isFoundToo = two.next();
    if (one.status() != 0 || two.status() != 0) return;
    ASSERT_EQ(isFound, isFoundToo);
    if (!isFound) return;
    ASSERT_LE(count, 2 * text.length());
    ASSERT_LE(one.start() + one.length(), text.length());
    ASSERT_TRUE(one.start() == two.start() && one.length() == two.length());
  }
}

TEST(RegExp, TakesAnyPattern) {
  const std::wstring rich =
      L"^(?i:a|[^b-d\\w]+?){2,3}\\x{1F600}(?<name>.*+)\\k<name>(?(1)x|y)\\p{Lu}(?=.\\b)(?<!a)$\\G#"
      L"\xD83D\xDE00";
  for (size_t length = 0; length <= rich.size(); ++length) {
    ASSERT_NO_FATAL_FAILURE(tryPattern(rich.substr(0, length)));
    ASSERT_NO_FATAL_FAILURE(tryPattern(rich.substr(length)));
  }
  for (wchar_t a = 0; a < 0x80; ++a) {
    for (wchar_t b = 0; b < 0x80; b = static_cast<wchar_t>(b + (b % 7 == a % 7 ? 7 : 1))) {
      const std::wstring two{a, b};
      ASSERT_NO_FATAL_FAILURE(tryPattern(two)) << int{a} << ' ' << int{b};
    }
  }
  std::mt19937 random(3);
  const std::wstring alphabet(L"ab()[]{}*+?|\\^$.-,012<>=!:PkGRXxdDwWsSpQE#&\xD83D\xDE00\xE4\0",
                              50);
#ifdef ZO_GUARDED
  constexpr int kRounds = 2000;
#else
  constexpr int kRounds = 20000;
#endif
  for (int round = 0; round < kRounds; ++round) {
    std::wstring pattern = round % 2 ? rich.substr(random() % rich.size(), random() % 40) : L"";
    for (size_t changes = random() % 12; changes > 0; --changes) {
      pattern.insert(random() % (pattern.size() + 1), 1, alphabet[random() % alphabet.size()]);
    }
    ASSERT_NO_FATAL_FAILURE(tryPattern(pattern, static_cast<Option>(random() % 128)));
  }
}

TEST(RegExp, RefusesDepthAndBlowUp) {
  for (const size_t depth : {250u, 300u, 30000u}) {
    const std::wstring pattern = std::wstring(depth, L'(') + std::wstring(depth, L')');
    EXPECT_EQ(ZoRegExp(pattern).isValid(), depth <= 250);
  }
  EXPECT_FALSE(ZoRegExp(std::wstring(100'000, L'(')).isValid());
  EXPECT_FALSE(ZoRegExp(L"(((a{1,1000}){1,1000}){1,1000}){1,1000}").isValid());
  EXPECT_FALSE(ZoRegExp(L"((((a{1,65535}){1,65535}){1,65535}){1,65535}){1,65535}").isValid());
  EXPECT_TRUE(ZoRegExp(L"a{99999999999x").isValid()) << "a { that begins no number is itself";
}

// ---- Options ----

TEST(RegExp, OptionsMeanWhatTheySay) {
  const struct {
    const wchar_t *pattern, *text;
    unsigned at, length;
    Option options = ZoRegExp::kDefault;
  } cases[] = {
      {L"\xE4", L"\xC4", 0, 1, ZoRegExp::kIgnoreCase},
      {L"k", L"\x212A", 0, 1, ZoRegExp::kIgnoreCase},
      {L"\xE4", L"\xC4", npos, 0, ZoRegExp::kIgnoreAsciiCase},
      {L"k", L"\x212AK", 1, 1, ZoRegExp::kIgnoreAsciiCase},
      {L"k", L"\x212AK", 0, 1, ZoRegExp::kIgnoreAsciiCase | ZoRegExp::kIgnoreCase},
      {L"\\w+", L"!\xE4\x66F!", 1, 2},
      {L"\\w+", L"!\xE4z!", 2, 1, ZoRegExp::kIgnoreAsciiCase},
      {L"^b$", L"a\nb\nc", npos, 0},
      {L"^b$", L"a\nb\nc", 2, 1, ZoRegExp::kMultiLine},
      {L"^b$", L"a\r\nb\r\nc", 3, 1, ZoRegExp::kMultiLine},
      {L"^b$", L"a\rb\rc", 2, 1, ZoRegExp::kMultiLine},
      {L"b.c", L"b\nc", npos, 0},
      {L"b.c", L"b\rc", npos, 0, ZoRegExp::kMultiLine},
      {L"b.c", L"b\rc", 0, 3},
      {L"\\sx", L"a\r\nx", 2, 2},
      {L"b.c", L"b\nc", 0, 3, ZoRegExp::kDotAll},
      {L" a b # c\n d", L"abd", 0, 3, ZoRegExp::kExtended},
      {L"(a*", L"a(a*", 1, 3, ZoRegExp::kLiteral},
      {L"(A*", L"a(a*", 1, 3, ZoRegExp::kLiteral | ZoRegExp::kIgnoreCase | ZoRegExp::kMultiLine},
      {L"a*.t?t", L"1 a\n.txt", 2, 6, ZoRegExp::kWildcard},
      {L"[?]", L"x[\xD83D\xDE00]", 1, 4, ZoRegExp::kWildcard},
      {L"A**c", L"abbc", 0, 4, ZoRegExp::kWildcard | ZoRegExp::kIgnoreCase},
      {L"\\d{2}(?^$|+", L"\\d{2}(x^$|+", 0, 11, ZoRegExp::kWildcard | ZoRegExp::kLiteral},
      {L"^.$", L"\xD83D\xDE00", 0, 2},
      {L"^.$", L"\xD83D\xDE00", npos, 0, ZoRegExp::kIgnoreAsciiCase},
  };
  for (const auto& [pattern, text, at, length, options] : cases) {
    for (const Option how : {options, options | ZoRegExp::kNoMachineCode}) {
      const ZoRegExp expression(pattern, how);
      EXPECT_EQ(expression.hasMachineCode(), how == options);
      unsigned found = 77;
      EXPECT_EQ(ZoString(text).index(expression, &found), at) << shown(pattern);
      EXPECT_EQ(found, length) << shown(pattern);
    }
  }
}

TEST(RegExp, EscapedTextMatchesItself) {
  std::wstring all;
  for (wchar_t c = 1; c < 0x3000; ++c) all += c;
  all += std::wstring(L"\0end", 4);
  for (const unsigned options : {0u, 1u, 2u, 4u, 8u, 64u}) {
    const ZoRegExp expression(ZoRegExp::escape(all), static_cast<Option>(options));
    EXPECT_TRUE(ZoString(all).matches(expression)) << shown(expression.errorText());
    EXPECT_TRUE(
        ZoString(L"(a b)(a b)").matches(ZoRegExp(L"(?:" + ZoRegExp::escape(L"(a b)") + L")+")));
  }
}

// ---- Matching ----

// All patterns of up to three operators on all texts of up to six units, all matches with all
// groups, against a plain backtracker.
TEST(RegExp, MatchesAsABacktrackerDoes) {
  std::vector<std::wstring> texts{L""};
  for (size_t i = 0; texts[i].size() < 6; ++i)
    for (const wchar_t c : {L'a', L'b'}) texts.push_back(texts[i] + c);
#ifdef ZO_GUARDED
  constexpr std::array<size_t, 4> kStep = {1, 1, 11, 499};
#else
  constexpr std::array<size_t, 4> kStep = {1, 1, 1, 5};
#endif
  for (size_t operators = 0; operators < kStep.size(); ++operators) {
    const std::vector<Tree>& trees = treesOf(operators);
    for (size_t i = 0; i < trees.size(); i += kStep[operators]) {
      const Option how = i % 4 ? ZoRegExp::kDefault : ZoRegExp::kNoMachineCode;
      const ZoRegExp expression(patternOf(trees[i]), how);
      ASSERT_TRUE(expression.isValid()) << shown(patternOf(trees[i]));
      ASSERT_EQ(expression.hasMachineCode(), how == ZoRegExp::kDefault);
      for (const std::wstring& text : texts) {
        Backtracker model(text, groupsOf(trees[i]));
        const Spans expected = model.find(trees[i], 0);
        ZoSearch search(expression, ZoString(text));
        ASSERT_EQ(search.next(), !expected.empty())
            << shown(expression.pattern()) << ' ' << shown(text);
        for (unsigned group = 0; group < expected.size(); ++group) {
          const auto [from, to] = expected[group];
          const bool isThere = from != kUnset;
          ASSERT_TRUE(search.start(group) == (isThere ? from : npos) &&
                      search.length(group) == (isThere ? to - from : 0))
              << shown(expression.pattern()) << ' ' << shown(text) << ' ' << group;
        }
      }
    }
  }
}

TEST(RegExp, StringsFindTestAndCut) {
  ZoString text = L"one 22, three 4444";
  const ZoRegExp number(L"[0-9]+"), word(L"[a-z]+"), none(L"x"), behind(L"(?<=2)2");
  unsigned length = 0;
  EXPECT_TRUE(text.index(number) == 4 && text.index(number, 0) == 4 && text.index(number, 5u) == 5);
  EXPECT_TRUE(text.index(number, &length, 7) == 14 && length == 4);
  EXPECT_TRUE(text.index(none, &length) == npos && length == 0);
  EXPECT_TRUE(text.index(number, nullptr) == 4 && text.index(number, -1) == npos);
  for (const unsigned start : {18u, 19u, 77u, npos - 1, npos}) {
    EXPECT_EQ(text.index(number, start), npos);
    EXPECT_EQ(text.index(ZoRegExp(L"$"), start), start == 18 ? 18 : npos);
  }
  EXPECT_TRUE(text.index(behind, 5) == 5 && text(number) == L"22" && text(number, 7) == L"4444");
  EXPECT_TRUE(!text(none) && !text(none).length() && text.contains(word) && !text.contains(none));
  text(number) = L"two";
  EXPECT_EQ(text, L"one two, three 4444");
  EXPECT_TRUE(ZoString(L"22").matches(number) && !text.matches(number));
  EXPECT_TRUE(ZoString(L"aab").matches(ZoRegExp(L"a|aa|aab"))) << "any way that fits the whole";
  EXPECT_TRUE(!ZoString(L"22\n").matches(number) && !ZoString().matches(number));
  EXPECT_TRUE(ZoString(L"a\xD800").matches(ZoRegExp(L"a\\x{FFFD}")));
  EXPECT_TRUE(ZoString(L"a\xD800").matches(ZoRegExp(L"a\\x{D800}", ZoRegExp::kIgnoreAsciiCase)));
  EXPECT_TRUE(!text.contains(ZoRegExp()) && !text.matches(ZoRegExp()) && !text(ZoRegExp()));
}

TEST(RegExp, OneExpressionServesManyThreads) {
  const ZoRegExp expression(L"(a|b)+?c");
  std::vector<int> found(4, 0);
  {
    std::vector<std::jthread> threads;
    for (int& count : found) {
      threads.emplace_back([&count, &expression] {
        const ZoString text = L"xabcabbc";
        for (int round = 0; round < 300; ++round) {
          const ZoRegExp copy(expression), own(round % 3 ? L"ab" : L"abb");
          for (const ZoSearch& match : ZoSearch(copy, text)) count += match.length() >= 3;
          count += text.contains(own);
        }
      });
    }
  }
  for (const int count : found) EXPECT_EQ(count, 900);
}

}  // namespace
}  // namespace zo::test
