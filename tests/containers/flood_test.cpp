// Dictionaries whose keys all hash alike: order and numbers as ever, and no chain that is walked.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <string>
#include <utility>
#include <vector>

namespace {

#ifdef ZO_GUARDED
constexpr int kKeys = 3000;
constexpr unsigned kDigits = 12;
#else
constexpr int kKeys = 20000;
constexpr unsigned kDigits = 17;
#endif

int compared = 0;

// Every key hashes alike, as chosen by somebody who knows the hash.
struct Flooded : ZoHashValue<int> {
  int compare(const int& a, const int& b) const override {
    ++compared;
    return a == b ? 0 : 1;
  }
  unsigned hash(const int&) const override { return 7; }
  unsigned fingerprint(const int& key) const override { return static_cast<unsigned>(key) * 77; }
};
using FloodedDict = ZoHashDict<int, int, Flooded>;

// The only chain has the keys in the order of their insertion.
void expectEvery(const FloodedDict& dict, int step, int offset) {
  const ZoHashKey<int> key(dict.policy());
  EXPECT_TRUE(dict.engine().validate(&key));
  int next = offset;
  for (const auto [stored, value] : dict) {
    ASSERT_EQ(stored, next);
    ASSERT_EQ(dict.at(stored), &value);
    next += step;
  }
  EXPECT_GE(next, kKeys);
  EXPECT_EQ(dict.entries(), static_cast<unsigned>((kKeys - offset + step - 1) / step));
}

TEST(FloodedDictionary, ComparesEachKeyAFewTimesOnly) {
  compared = 0;
  FloodedDict dict;
  for (int key = 0; key < kKeys; ++key) {
    ASSERT_EQ(dict.insertAt(key, key), 0);
    ASSERT_EQ(dict.insertAt(key / 2, 0), 1);
  }
  EXPECT_EQ(dict.stats().longestChain, dict.entries());
  EXPECT_EQ(dict.collisionRatio(), (kKeys - 1.0) / kKeys);
  expectEvery(dict, 1, 0);
  FloodedDict copy(dict), moved(std::move(dict));
  for (int key = 0; key < kKeys; key += 2) ASSERT_EQ(copy.removeAt(key), 0);
  expectEvery(copy, 2, 1);
  EXPECT_EQ(copy.setCapacity(50000, 0.7), 0);
  expectEvery(copy, 2, 1);
  for (ZoHashDictIterator<int, int, Flooded> it(moved); it.isValid(); it.remove()) it.next();
  expectEvery(moved, 2, 0);
  EXPECT_LT(compared, 20 * kKeys);

  ZoVHash engine(ZoHashTable<int, int>::make(128));
  const Flooded policy;
  const ZoHashKey<int> hashKey(policy);
  compared = 0;
  for (int key = 0; key < kKeys; ++key) ASSERT_EQ(engine.insertAt(&key, &key, &hashKey), 0);
  for (int key = 0; key < kKeys; ++key) ASSERT_EQ(engine.removeAt(&key, nullptr, &hashKey), 0);
  EXPECT_LT(compared, 4 * kKeys);
}

// The policy of text keys, with keys whose hash is one: each digit of two units is 0[ or 1{.
TEST(FloodedDictionary, OfTextIsReadInTheTimeOfItsLength) {
  ZoHashDict<unsigned, ZoString> dict;
  const ZoCIHashValue<ZoString> policy;
  const auto key = [](unsigned number, wchar_t last) {
    std::wstring text(1, last);
    for (unsigned k = 0; k < kDigits; ++k) text += number >> k & 1 ? L"1{" : L"0[";
    return ZoString(std::wstring_view(text));
  };
  for (unsigned i = 0; i < 1u << kDigits; ++i) {
    const ZoString text = key(i, L'\u00E4');
    ASSERT_EQ(policy.hash(text), policy.hash(key(0, L'\u00C4')));
    ASSERT_EQ(dict.insertAt(text, i), 0);
    ASSERT_EQ(*dict.at(key(i, L'\u00C4')), i);
  }
  EXPECT_EQ(dict.insertAt(key(5, L'\u00C4'), 0u), 1);
  EXPECT_FALSE(dict.contains(key(5, L'a')));
}

}  // namespace
