// The typed containers beyond what the random operations reach: text keys, splitting.
#include <gtest/gtest.h>
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
      L"aA\u00E4\u00C4\u00FE\u00DE\u0101\u0100\u03B1\u0391\u0436\u0416\u0561\u0531";
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
      }
    }
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
