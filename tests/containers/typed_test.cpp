// The typed containers beyond what the random operations reach: text keys, splitting.
#include <gtest/gtest.h>
#include <windows.h>
#include <zo/containers.h>

#include <algorithm>
#include <random>
#include <ranges>
#include <string>
#include <vector>

namespace {

using Dict = ZoHashDict<int, ZoString>;

// In every alphabet, whatever the number of buckets, and wherever the letter stands in the key.
TEST(TextKeys, ThatDifferOnlyInCaseAreOneKeyAndKeepTheirFirstSpelling) {
  const std::wstring pairs =
      L"aA\u00E4\u00C4\u00FE\u00DE\u0101\u0100\u03B1\u0391\u0436\u0416\u0561\u0531"
      L"\u212Ak\u212B\u00E5\u2126\u03C9\u01C5\u01C6\u01C5\u01C4\u03C2\u03C3\u03C2\u03A3\u1E9E"
      L"\u00DF";
  for (const unsigned buckets : {1u, 128u, 1u << 16}) {
    for (size_t i = 0; i < pairs.size(); i += 2) {
      for (const size_t behind : {0u, 1u, 6u, 7u, 20u}) {
        const ZoString lower(std::wstring_view(pairs[i] + std::wstring(behind, L'x')));
        const ZoString upper(std::wstring_view(pairs[i + 1] + std::wstring(behind, L'X')));
        Dict dict(buckets);
        EXPECT_EQ(dict.insertAt(lower, 1), 0);
        EXPECT_EQ(dict.insertAt(upper, 2), 1) << i << " with " << behind << " behind";
        ZoString stored;
        EXPECT_EQ(dict.findKey(upper, stored), 0);
        EXPECT_EQ(stored, lower);
        EXPECT_EQ(dict.removeAt(upper), 0);
        ZoTree<int, ZoString> tree;
        EXPECT_EQ(tree.insertAt(lower, 1) * 10 + tree.insertAt(upper, 2), 1);
      }
    }
  }
}

// The pairs that casing makes of every unit, and those that it does not reach.
TEST(TextKeys, OfOneUnitHashAlikeWhereCollationFindsNoMoreThanCase) {
  const ZoCIHashValue<ZoString> policy;
  unsigned pairs = 0;
  const auto expectOneHash = [&](wchar_t a, wchar_t b) {
    const ZoString x(std::wstring_view(&a, 1)), y(std::wstring_view(&b, 1));
    if (a == b || policy.compare(x, y) != 0) return;
    ++pairs;
    EXPECT_EQ(policy.hash(x), policy.hash(y)) << std::hex << int{a} << ' ' << int{b};
    EXPECT_EQ(policy.fingerprint(x), policy.fingerprint(y));
    EXPECT_TRUE((Dict{{x, 1}}.contains(y)));
  };
  for (unsigned c = 1; c <= 0xFFFF; ++c) {
    const auto unit = static_cast<wchar_t>(c);
    for (const unsigned mapping : {LCMAP_LOWERCASE, LCMAP_UPPERCASE, LCMAP_TITLECASE}) {
      wchar_t mapped[2];
      if (LCMapStringW(LOCALE_INVARIANT, mapping, &unit, 1, mapped, 2) == 1)
        expectOneHash(unit, mapped[0]);
    }
  }
  for (const wchar_t* pair : {L"\u03C2\u03C3", L"\u03F5\u03B5", L"\u1FBE\u03B9", L"\u03D1\u03F4"})
    expectOneHash(pair[0], pair[1]);
  EXPECT_GT(pairs, 1500u);
}

// What collation takes for equal for other reasons: two keys of a hash dictionary, one of a tree.
TEST(TextKeys, ThatAreEqualButForMoreThanCaseAreTwo) {
  for (const auto& [a, b] : std::vector<std::pair<ZoString, ZoString>>{
           {L"stra\u00DFe", L"strasse"}, {L"e\u0301", L"\u00E9"}, {L"a\u200Db", L"ab"}}) {
    ASSERT_EQ(a.compareTo(b, ZoString::ignoreCase), 0);
    EXPECT_EQ((Dict{{a, 1}, {b, 2}}.entries()), 2u);
    EXPECT_EQ((ZoTree<int, ZoString>{{a, 1}, {b, 2}}.entries()), 1u);
  }
}

// The engine, which compares every key of a chain, and the dictionary, which skips what it may,
// agree.
TEST(TextKeys, AreDecidedLikeThePlatformDoes) {
#ifdef ZO_GUARDED
  constexpr int kPairs = 300;
#else
  constexpr int kPairs = 4000;
#endif
  const std::wstring letters = L"aAbB1 -'\x7F\x01\x00E9\x00C9\x00DF\x0130\x0131\x03C3\x03C2\x0301";
  std::mt19937 random(11);
  Dict dict(1, 1e9);  // one bucket: every pair meets
  std::vector<ZoString> keys;
  const ZoCIHashValue<ZoString> policy;
  const ZoHashKey<ZoString> engineKey(policy);
  for (int i = 0; i < kPairs; ++i) {
    ZoString key;
    for (unsigned n = random() % 12; n > 0; --n) key.append(letters[random() % letters.size()], 1);
    ASSERT_EQ(dict.contains(key), dict.engine().at(&key, &engineKey) != nullptr);
    if (keys.size() == 40) continue;
    const bool equal = std::ranges::any_of(keys, [&](const ZoString& k) {
      return policy.hash(k) == policy.hash(key) && k.compareTo(key, ZoString::ignoreCase) == 0;
    });
    ASSERT_EQ(dict.insertAt(key, i), equal ? 1 : 0);
    if (!equal) keys.push_back(key);
  }
}

TEST(Iterators, OfARangeSurviveInsertionWhileTheDictionaryGrows) {
  ZoHashDict<int, int> dict{{0, 0}};
  unsigned walked = 0;
  for (const auto [key, value] : dict) {
    ASSERT_EQ(key, value);
    const int next = static_cast<int>(dict.entries());
    for (int i = 0; i < 95 && dict.entries() < 400; ++i)
      ASSERT_EQ(dict.insertAt(next + i, next + i), 0);
    ++walked;
  }
  EXPECT_GT(walked, 4u);
  EXPECT_EQ(dict.buckets(), 1024u);
}

TEST(Iterators, FindFromWhereTheyStand) {
  ZoArray<int> array{5, 3, 5, 4, 5};
  ZoList<int> list(array);
  const auto expectFound = [](auto it) {
    std::vector<int> steps;  // to each that is equal
    for (bool found = it.find(5); found; found = it.findNext(5)) steps.push_back(*it.current());
    EXPECT_EQ(steps.size(), 3u);
    EXPECT_FALSE(it.isValid() || it.find(5));
    EXPECT_TRUE(it.toFirst() && it.findNext(5) && !it.atFirst()) << "findNext begins behind";
    EXPECT_TRUE(it.toFirst() && it.find(3) && it.find(3) && !it.find(6));
  };
  expectFound(ZoArrayIterator<int>(array));
  expectFound(ZoArrayCIterator<int>(array));
  expectFound(ZoListIterator<int>(list));
  expectFound(ZoListCIterator<int>(list));
  Dict dict{{L"a", 1}, {L"b", 2}};
  ZoHashDictIterator<int, ZoString> it(dict);
  ZoHashDictCIterator<int, ZoString> constant(dict);
  for (const wchar_t* key : {L"A", L"B"}) {
    it.reset();
    constant.reset();
    EXPECT_TRUE(it.find(key) && it.find(key) && it.current() == dict.at(key));
    EXPECT_TRUE(constant.find(key) && !constant.findNext(key));
  }
}

TEST(Split, CutsAtEveryDelimiterAndReplacesWhatWasThere) {
  ZoArray<ZoString> array{L"old"};
  EXPECT_EQ(ZoString(L"a,;b,").split(L",;", array), 4u);
  EXPECT_TRUE(std::ranges::equal(array, std::vector<ZoString>{L"a", L"", L"b", L""}));
  EXPECT_EQ(ZoString(L"").split(L",", array), 0u);
  EXPECT_EQ(ZoString(L"a,b").split(nullptr, array), 1u);
  array = {L"a-b", L"-"};  // an entry of the target, by one of its entries
  EXPECT_EQ(array[0].split(array[1], array), 2u);
  EXPECT_TRUE(std::ranges::equal(array, std::vector<ZoString>{L"a", L"b"}));
}

}  // namespace
