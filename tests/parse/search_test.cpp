// Searches: match after match, limits, replacing, splitting.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/parse.h>
#include <zo/strings.h>

#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "parse/reg_exp_code.h"
#include "shown.h"

namespace zo::test {
namespace {

using Option = ZoRegExp::Option;
constexpr unsigned npos = ZoString::npos;
using Places = std::vector<std::pair<unsigned, unsigned>>;  // start and length

Places placesOf(const ZoRegExp& expression, const ZoString& text, unsigned start = 0) {
  Places places;
  static_cast<void>(expression.hasMachineCode());  // makes it
  for (const ZoSearch& match : ZoSearch(expression, text, start)) {
    places.emplace_back(match.start(), match.length());
    if (places.size() > 20) break;
  }
  return places;
}

TEST(Search, WalksOverTheMatches) {
  const struct {
    const wchar_t* pattern;
    std::wstring text;
    Places places;
    unsigned start = 0;
    Option options = ZoRegExp::kDefault;
  } cases[] = {
      {L"a*", L"baac", {{0, 0}, {1, 2}, {3, 0}, {4, 0}}},
      {L"", L"", {{0, 0}}},
      {L"", L"ab", {{1, 0}, {2, 0}}, 1},
      {L"", L"ab", {}, 3},
      {L"", L"ab", {}, npos},
      {L"", L"a\xD83D\xDE00z", {{0, 0}, {1, 0}, {3, 0}, {4, 0}}},
      {L"", L"a\xD83D\xDE00z", {{3, 0}, {4, 0}}, 2},
      {L"", L"a\xD83D\xDE00z", {{0, 0}, {1, 0}, {3, 0}, {4, 0}}, 0, ZoRegExp::kIgnoreAsciiCase},
      {L"", L"\r\n", {{0, 0}, {2, 0}}, 0, ZoRegExp::kMultiLine},
      {L"$", L"a\r\nb\n", {{1, 0}, {4, 0}, {5, 0}}, 0, ZoRegExp::kMultiLine},
      {L"^", L"a\r\nb\n", {{0, 0}, {3, 0}}, 0, ZoRegExp::kMultiLine},
      {L"\\b", L"ab c", {{0, 0}, {2, 0}, {3, 0}, {4, 0}}},
      {L"a\\K", L"aaa", {{1, 0}, {2, 0}, {3, 0}}},
      {L"\\Ga", L"aaba", {{0, 1}, {1, 1}}},
      {L"a(*SKIP)(*FAIL)|b", L"abab", {{1, 1}, {3, 1}}},
      {L"a(*COMMIT)b", L"acab", {}},
      {L".", L"\xD83D\xDE00\xD83Dz\xDE00", {{0, 2}, {2, 1}, {3, 1}, {4, 1}}},
      {L"\\x{FFFD}$|^", L"\xDE00\xD83D", {{0, 0}, {1, 1}}},
      {L".", L"\xDE00\xD83D", {{0, 1}, {1, 1}}, 0, ZoRegExp::kIgnoreAsciiCase},
      {L"[^x]+", std::wstring(L"\0x\0\0", 4), {{0, 1}, {2, 2}}},
  };
  for (const auto& [pattern, text, places, start, options] : cases) {
    for (const Option how : {options, options | ZoRegExp::kNoMachineCode}) {
      EXPECT_EQ(placesOf(ZoRegExp(pattern, how), ZoString(text), start), places)
          << shown(pattern) << " in " << shown(text);
    }
  }
}

TEST(Search, BeginsAndEndsBetweenWholeCharactersAndLines) {
  const ZoString lines = L"a\r\nb";
  const ZoRegExp begin(L"^", ZoRegExp::kMultiLine);
  EXPECT_EQ(lines.index(begin, 2), 3u);
  EXPECT_EQ(placesOf(begin, lines, 2), placesOf(begin, lines, 3));
  const ZoString odd = L"a\xD800z";
  for (const Option how : {ZoRegExp::kDefault, ZoRegExp::kLiteral, ZoRegExp::kWildcard})
    EXPECT_TRUE(odd.matches(ZoRegExp(odd, how))) << how;
  EXPECT_TRUE(odd.matches(ZoRegExp(ZoRegExp::escape(odd))));
  const wchar_t* const nothing = nullptr;
  ZoRegExp empty;
  EXPECT_EQ(empty.set(nothing), 0);
  EXPECT_EQ(empty.group(nothing), ZoRegExp::npos);
  EXPECT_EQ(ZoRegExp::escape(nothing), L"");
}

// All that a pattern finds, with its groups; as units where it may see them, else as characters.
Places allOf(const std::wstring& pattern, const ZoString& text, bool* seesPairs = nullptr) {
  const ZoRegExp expression(pattern);
  Places places;
  if (!expression.isValid()) return places;
  if (seesPairs) *seesPairs = expression.code()->seesPairs();
  for (const ZoSearch& match : ZoSearch(expression, text))
    for (unsigned group = 0; group <= expression.groups(); ++group)
      places.emplace_back(match.start(group), match.length(group));
  return places;
}

TEST(Search, SeesUnitsOnlyWhereCharactersAreTheSame) {
  constexpr const wchar_t* kPieces[] = {
      L"a",   L"b", L"\\.", L"[^a]", L"[^ab]*", L"[^\\.]+", L".", L".*", L"[ab]", L"(",
      L"(?:", L")", L"|",   L"*",    L"{2}",    L"?",       L"$", L"^",  L")*",   L"{"};
  constexpr const wchar_t* kText[] = {L"a",      L"b",     L".", L"\n", L"\xD83D\xDE00",
                                      L"\xD83D", L"\xDE00"};
  std::mt19937 random(11);
  unsigned wide = 0;
  for (int i = 0; i < 100000; ++i) {
    std::wstring pattern, text;
    for (unsigned n = 1 + random() % 9; n > 0; --n)
      pattern += kPieces[random() % std::size(kPieces)];
    for (unsigned n = random() % 16; n > 0; --n) text += kText[random() % std::size(kText)];
    bool seesPairs = true;
    const Places places = allOf(pattern, ZoString(text), &seesPairs);
    if (seesPairs) continue;
    wide += pattern.find(L"[^") != pattern.npos || pattern.find(L"a.") != pattern.npos;
    // Look-around that is always true has no part in the match but that it is one.
    EXPECT_EQ(places, allOf(L"(?=)" + pattern, ZoString(text)))
        << shown(pattern) << " in " << shown(text);
  }
  EXPECT_GT(wide, 500u);
}

TEST(Search, TellsItsGroups) {
  ZoString text = L"M8x20 M10";
  const ZoRegExp thread(L"M(?<size>[0-9]+)(?:x(?<length>[0-9]+))?(?<size2>(?J)(?<length>y))?");
  ZoSearch search(thread, text);
  EXPECT_TRUE(search.start() == npos && !search.match() && search.start(L"size") == npos);
  ASSERT_TRUE(search.next());
  text.remove(0, 5);  // the search goes on in what it was given
  EXPECT_TRUE(search.match() == L"M8x20" && search.match(1) == L"8" && search.start(1) == 1);
  EXPECT_TRUE(search.match(L"length") == L"20" && search.length(L"length") == 2);
  EXPECT_TRUE(!search.match(L"none") && !search.match(4) && !search.match(99) &&
              !search.match(npos));
  ASSERT_TRUE(search.next());
  EXPECT_TRUE(search.match(L"size") == L"10" && !search.match(L"length"));
  EXPECT_TRUE(!search.next() && !search.next() && search.status() == 0 && !search.match());
  EXPECT_EQ(search.text(), L"M8x20 M10");
  ZoSearch invalid{ZoRegExp(), text};
  EXPECT_TRUE(!invalid.next() && invalid.status() == ZoResult::badPattern);
}

// ---- Limits ----

// Each of these would take longer than anyone waits, one way or another.
TEST(Search, EndsWhateverThePattern) {
  const std::wstring many(1'000'000, L'a');
  const struct {
    const wchar_t* pattern;
    std::wstring text;
  } hostile[] = {
      {L"(a+)+b", many + L"c"},
      {L"(a+)+b", many + L"cb"},
      {L"(a|aa)+b", many + L"cb"},
      {L"(x+x+)+y", std::wstring(1'000'000, L'x') + L"zy"},
      {L"(?:a|b)*c", many + L"dc"},
      {L"(?:a|b)*d", many},
      {L"a++[^a]b", many},  // a walk over the rest at each place, that no step counts
      {L"a*[ab]?c", many.substr(0, 300'000)},  // few enough steps at each place, at many places
      {L"\\s+$", std::wstring(300'000, L' ') + L"x"},
      {L"(.*)*\\1z", many},
      {L"(?s).*?.*?.*?z$", many},
      {L"((?=(a*))a)*b", many.substr(0, 50'000)},
      {L"(?R)?a(?R)?a", many},
      {L"a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?a?aaaaaaaaaaaaaaaaaaaaaaaaaab",
       L"aaaaaaaaaaaaaaaaaaaaaaaaaac"},
  };
  for (const auto& [pattern, text] : hostile) {
    for (const Option how : {ZoRegExp::kDefault, ZoRegExp::kNoMachineCode}) {
      SCOPED_TRACE(shown(pattern));
      ZoRegExp expression(pattern, how);
      ASSERT_TRUE(expression.isValid());
      expression.setLimits({.steps = 1'000'000, .heapKiB = 4096, .milliseconds = 50});
      ZoString whole(text);
      ZoSearch search(expression, whole);
      const bool isFound = search.next();
      EXPECT_TRUE(isFound || search.status() == ZoResult::gaveUp || search.status() == 0);
      EXPECT_EQ(whole.index(expression) != npos, isFound);
      unsigned count = 77;
      const int code = ZoSearch::replaceAll(whole, expression, L"-", &count);
      EXPECT_TRUE(code == 0 || (code == ZoResult::gaveUp && count == 0 && whole == ZoString(text)));
    }
  }
}

TEST(Search, GivesUpAtItsLimitsAndNotBefore) {
  ZoRegExp pattern(L"(?:a|b)*c");
  const ZoString text(std::wstring(100'000, L'a') + L'c'),
      without(std::wstring(1000, L'a') + L"dc");
  const auto statusOf = [&](const ZoRegExp& what, const ZoString& in) {
    ZoSearch search(what, in);
    return search.next() ? 0 : search.status();
  };
  for (const Option how : {ZoRegExp::kDefault, ZoRegExp::kNoMachineCode}) {
    ASSERT_EQ(pattern.set(L"(?:a|b)*c", how), 0);
    pattern.setLimits({});
    EXPECT_TRUE(text.index(pattern) == 0 && text.matches(pattern)) << "with memory for it";
    const ZoRegExp generous(pattern);
    pattern.setLimits({.heapKiB = 64});
    EXPECT_EQ(statusOf(pattern, text), ZoResult::gaveUp);
    EXPECT_EQ(statusOf(generous, text), 0) << "limits are of one copy";
    ZoRegExp nested(L"(a+)+b", how);
    nested.setLimits({.steps = 1000});
    EXPECT_EQ(statusOf(nested, without + L"b"), ZoResult::gaveUp);
    EXPECT_FALSE((without + L"b").matches(nested));
    pattern.setLimits({.depth = 100});
    EXPECT_EQ(statusOf(pattern, text), how == ZoRegExp::kDefault ? 0 : ZoResult::gaveUp);
    pattern.setLimits({});
    EXPECT_EQ(without.index(pattern), 1001u);
  }
  pattern.setLimits({0, 0, 0, 0});
  EXPECT_EQ(statusOf(pattern, without), ZoResult::gaveUp);
}

// What is not interrupted takes no longer than its text is worth.
TEST(Search, LooksAtTheClockWhereverAPlaceCanCostMuch) {
  const struct {
    const wchar_t* pattern;
    bool canPause;
  } patterns[] = {
      {L"[0-9]+", false},       {L"[A-Z_][^;]*", false}, {L"(in|char)", false},
      {L"(?:a|[b-d]).", false}, {L"[a-z]*ing", true},    {L"(a|b)+", true},
      {L"(a|b)(c|d)", true},    {L"[]x]*y+", true},      {L"[^]x]*y+", true},
      {L"(?=a+)b", true},       {L"a?b", true},          {L"a{2,}", true},
      {L"(\\w)+", true},        {L"[\\]+]*a+", true},    {L"[[:alpha:]]+", true},
      {L"(*UCP)a+", true},      {L"\\Ga*b", false},
  };
  for (const auto& [pattern, canPause] : patterns)
    EXPECT_EQ(ZoRegExp(pattern).code()->canPause(), canPause) << shown(pattern);
}

TEST(Search, GoesOnWithAllItsStepsWhereAPlaceNeedsThem) {
  const ZoString text(std::wstring(3000, L'x') + std::wstring(23, L'a') + L'b');
  for (const Option how : {ZoRegExp::kDefault, ZoRegExp::kNoMachineCode}) {
    ZoRegExp pattern(L"(?:a|aa)+c|a{23}b", how);
    EXPECT_EQ(placesOf(pattern, text), (Places{{3000, 24}}));
    pattern.setLimits({.steps = 20'000});
    EXPECT_EQ(placesOf(pattern, text), Places{});
  }
}

// ---- Replacing and splitting ----

TEST(Search, ReplacesAllOrNothing) {
  const struct {
    const wchar_t *pattern, *text, *with, *result;
    int code = 0;
  } cases[] = {
      {L"b+", L"abbc", L"[$0]", L"a[bb]c"},
      {L"b", L"aaa", L"x", L"aaa"},
      {L"a*", L"baac", L"-", L"-b--c-"},
      {L"", L"a\xD83D\xDE00", L"-", L"-a-\xD83D\xDE00-"},
      {L"(a)(?<n>b)?", L"ab a", L"<$2$1${n}${1}>", L"<baba> <aa>"},
      {L"(a)", L"a", L"$12$01$1x", L"a2aax"},
      {L"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", L"abcdefghij", L"$10$1$11", L"jaa1"},
      {L"a", L"a", L"$$ $ $x $$0 ${ $", L"$ $ $x $0 ${ $"},
      {L"a", L"a", L"$1", L"a", ZoResult::refused},
      {L"a", L"a", L"${n}", L"a", ZoResult::refused},
      {L"a", L"a", L"${}", L"a", ZoResult::refused},
      {L"a", L"a", L"${4294967296}", L"a", ZoResult::refused},
      {L"(a", L"a", L"", L"a", ZoResult::badPattern},
      {L"(?<=a)b|a", L"abab", L"", L""},
      {L"(?J)(?<n>a)|(?<n>b)", L"ab", L"[${n}]", L"[a][b]"},
      {L"a", L"a", nullptr, L""},
  };
  for (const auto& [pattern, text, with, result, code] : cases) {
    ZoString changed = text;
    const ZoString shared = changed;
    unsigned count = 77;
    EXPECT_EQ(ZoSearch::replaceAll(changed, ZoRegExp(pattern), with, &count), code);
    EXPECT_EQ(changed, result) << shown(pattern) << " by " << shown(with);
    EXPECT_EQ(shared, text);
    EXPECT_TRUE(code == 0 || count == 0);
  }
  ZoString own = L"$0$0 b";
  EXPECT_EQ(ZoSearch::replaceAll(own, ZoRegExp(L"b"), own), 0) << "the text itself";
  EXPECT_EQ(own, L"$0$0 bb b");
}

TEST(Search, SplitsAtMatches) {
  const struct {
    const wchar_t *pattern, *text;
    std::vector<const wchar_t*> pieces;
  } cases[] = {
      {L"\\s*,\\s*", L"a , b,c,,d ", {L"a", L"b", L"c", L"", L"d "}},
      {L",", L",a,", {L"", L"a", L""}},
      {L",", L"", {}},
      {L"x", L"abc", {L"abc"}},
      {L"", L"a\xD83D\xDE00z", {L"a", L"\xD83D\xDE00", L"z"}},
      {L"(?=[A-Z])", L"PartListView", {L"Part", L"List", L"View"}},
  };
  for (const auto& [pattern, text, pieces] : cases) {
    ZoArray<ZoString> array;
    ZoList<ZoString> list;
    EXPECT_EQ(array.append(L"old"), 0);
    EXPECT_EQ(ZoSearch::split(text, ZoRegExp(pattern), array), 0);
    EXPECT_EQ(ZoSearch::split(text, ZoRegExp(pattern), list), 0);
    ASSERT_TRUE(array.entries() == pieces.size() && list.entries() == pieces.size())
        << shown(pattern);
    for (unsigned i = 0; i < array.entries(); ++i) {
      EXPECT_TRUE(array[i] == pieces[i] && list[i] == pieces[i]);
    }
    EXPECT_EQ(ZoSearch::split(text, ZoRegExp(), array), ZoResult::badPattern);
    EXPECT_EQ(array.entries(), 0u);
  }
}

}  // namespace
}  // namespace zo::test
