// The typed containers beyond what the random operations reach: text keys, ranges, iterators,
// construction.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <ranges>
#include <string>
#include <vector>

namespace {

using Dict = ZoHashDict<int, ZoString>;

// ---- Every container and both iterator families are ranges ----

static_assert(std::ranges::contiguous_range<ZoArray<int>>);
static_assert(std::ranges::contiguous_range<const ZoArray<int>>);
static_assert(std::ranges::bidirectional_range<ZoList<int>>);
static_assert(std::ranges::bidirectional_range<const ZoList<int>>);
static_assert(std::ranges::forward_range<ZoSequence<int>>);
static_assert(std::ranges::forward_range<const ZoSequence<int>>);
static_assert(std::ranges::forward_range<Dict>);
static_assert(std::ranges::forward_range<const Dict>);
static_assert(std::ranges::forward_range<ZoTree<int, ZoString>>);
static_assert(std::ranges::forward_range<ZoDict<int, ZoString>>);
static_assert(std::ranges::forward_range<const ZoDict<int, ZoString>>);
static_assert(std::ranges::input_range<ZoCIterator<int>>);
static_assert(std::ranges::input_range<ZoArrayIterator<int>>);
static_assert(std::ranges::input_range<ZoListCIterator<int>>);
static_assert(std::ranges::input_range<ZoHashDictIterator<int, ZoString>>);

static_assert(std::is_nothrow_move_constructible_v<ZoArray<int>> &&
              std::is_nothrow_move_assignable_v<ZoArray<int>>);
static_assert(std::is_nothrow_move_constructible_v<ZoList<int>> &&
              std::is_nothrow_move_assignable_v<ZoList<int>>);
static_assert(std::is_nothrow_move_constructible_v<Dict> &&
              std::is_nothrow_move_assignable_v<Dict>);

// ---- Text keys ----

TEST(TextKeys, IgnoreCase) {
  Dict dict;
  ASSERT_EQ(dict.insertAt(L"Width", 1), 0);
  EXPECT_EQ(dict.insertAt(L"WIDTH", 2), 1);
  EXPECT_EQ(*dict.at(ZoString(L"wiDth")), 1);
  ZoString stored;
  EXPECT_EQ(dict.findKey(L"width", stored), 0);
  EXPECT_TRUE(stored == L"Width");
  // Letters beyond ASCII: equal for the collation, and found where both forms fall into one bucket.
  ASSERT_EQ(dict.insertAt(L"\x00C9t\x00E9 2024", 3), 0);
  EXPECT_EQ(dict.insertAt(L"\x00E9t\x00E9 2024", 4), 1);
  EXPECT_EQ(*dict.at(L"\x00E9T\x00E9 2024"), 3);
  EXPECT_EQ(dict.removeAt(L"\x00E9T\x00E9 2024"), 0);
  EXPECT_EQ(dict.entries(), 1u);
  EXPECT_EQ(dict.put(L"wIDTH", 7), 0);
  EXPECT_EQ(*dict.at(L"width"), 7);
  EXPECT_EQ(dict.entries(), 1u);
}

TEST(TextKeys, AreFoundByEveryForm) {
  Dict dict{{L"alpha", 1}, {L"beta", 2}, {ZoString(), 3}};
  const Dict& constant = dict;
  const ZoString text(L"my ALPHA key");
  EXPECT_EQ(*dict.at(L"ALPHA"), 1);
  EXPECT_EQ(*constant.at(text(3, 5)), 1);
  EXPECT_EQ(*dict.at(std::wstring_view(L"beta and more", 4)), 2);
  EXPECT_EQ(*dict.at(static_cast<const wchar_t*>(nullptr)), 3);
  EXPECT_TRUE(constant.contains(L""));
  EXPECT_FALSE(constant.contains(L"gamma"));
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
  const auto text = [&] {
    ZoString made;
    for (unsigned n = random() % 12; n > 0; --n) made.append(letters[random() % letters.size()], 1);
    return made;
  };
  Dict dict(1, 1e9);  // one bucket: every pair meets
  std::vector<ZoString> keys;
  const ZoCIHashValue<ZoString> policy;
  const ZoHashKey<ZoString> engineKey(policy);
  for (int i = 0; i < kPairs; ++i) {
    const ZoString key = text();
    const bool present = dict.engine().at(&key, &engineKey) != nullptr;
    ASSERT_EQ(dict.contains(key), present);
    if (keys.size() < 40) {
      const bool equal = std::any_of(keys.begin(), keys.end(), [&](const ZoString& k) {
        return k.compareTo(key, ZoString::ignoreCase) == 0;
      });
      ASSERT_EQ(dict.insertAt(key, i), equal ? 1 : 0);
      if (!equal) keys.push_back(key);
    }
  }
}

TEST(TextKeys, OrderTreesAndSequences) {
  ZoTree<int, ZoString> tree{{L"delta", 4}, {L"Alpha", 1}, {L"charlie", 3}, {L"BRAVO", 2}};
  EXPECT_EQ(tree.insertAt(L"ALPHA", 9), 1);
  std::vector<int> order;
  for (const auto [key, value] : tree) order.push_back(value);
  EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
  EXPECT_EQ(tree.index(L"CHARLIE"), 2u);
  EXPECT_TRUE(*tree.firstKey() == L"Alpha");
  ZoArray<ZoString> array{L"b", L"a", L"B", L"A"};
  EXPECT_EQ(array.sort(ZoCICompare<ZoString>()), 0);
  EXPECT_TRUE(array[0] == L"a" && array[1] == L"A" && array[2] == L"b" && array[3] == L"B");
  EXPECT_EQ(array.index(L"B", ZoCICompare<ZoString>()), 2u);
}

// ---- Dictionary ----

TEST(Dictionary, GrowsAtTheNinetyFirstKeyAndCountsAnew) {
  Dict dict;
  EXPECT_EQ(dict.buckets(), 128u);
  for (int i = 0; i < 90; ++i)
    ASSERT_EQ(dict.insertAt(ZoString(std::to_wstring(i).c_str()), int{i}), 0);
  EXPECT_EQ(dict.buckets(), 128u);
  Dict copy(dict);
  EXPECT_EQ(copy.insertAt(L"0", 1), 1);
  EXPECT_EQ(copy.buckets(), 256u);
  EXPECT_EQ(dict.insertAt(L"ninety", 1), 0);
  EXPECT_EQ(dict.buckets(), 256u);
  const ZoHashStats stats = dict.stats();
  EXPECT_EQ(stats.entries, 91u);
  EXPECT_EQ(stats.collisions, 91 - stats.usedBuckets);
  EXPECT_DOUBLE_EQ(dict.collisionRatio(), stats.collisions / 91.0);
}

// The typed dictionary inserts by itself; it must come out as the engine does.
TEST(Dictionary, IteratesByBucketThenByInsertion) {
  ZoHashDict<int, int> dict(4, 10);
  for (const int key : {9, 5, 1, 2, 13, 6}) ASSERT_EQ(dict.insertAt(key, 0), 0);
  const auto keys = [&] {
    std::vector<int> seen;
    for (const auto [key, value] : dict) seen.push_back(key);
    return seen;
  };
  EXPECT_EQ(keys(), (std::vector{9, 5, 1, 13, 2, 6}));
  EXPECT_EQ(dict.setCapacity(8, 10), 0);
  EXPECT_EQ(keys(), (std::vector{9, 1, 2, 5, 13, 6}));
}

TEST(Dictionary, GivesKeyAndValue) {
  ZoHashDict<ZoString, int> hash{{1, L"one"}, {2, L"two"}};
  for (auto [key, value] : hash) value.append(L"!");
  EXPECT_TRUE(*hash.at(2) == L"two!");
  const ZoDict<ZoString, int>& any = hash;
  EXPECT_EQ(std::ranges::count_if(any, [](const auto& e) { return e.key > 1; }), 1);
  ZoTree<ZoString, int> tree(any);
  EXPECT_EQ(tree.entries(), 2u);
  hash = static_cast<const ZoDict<ZoString, int>&>(tree);
  EXPECT_TRUE(*hash.at(1) == L"one!");
  EXPECT_TRUE(hash.contains(7, zo::compareBy<int>([](int a, int) { return a - 1; })));
}

// ---- Iterators ----

template <class Sequence>
struct IteratorsOf;
template <class T>
struct IteratorsOf<ZoArray<T>> {
  using Mutable = ZoArrayIterator<T>;
  using Constant = ZoArrayCIterator<T>;
};
template <class T>
struct IteratorsOf<ZoList<T>> {
  using Mutable = ZoListIterator<T>;
  using Constant = ZoListCIterator<T>;
};

template <class Sequence>
class Iterators : public testing::Test {};
using Sequences = testing::Types<ZoArray<ZoString>, ZoList<ZoString>>;
TYPED_TEST_SUITE(Iterators, Sequences);

TYPED_TEST(Iterators, WalkEditAndSearch) {
  TypeParam sequence{L"a", L"b", L"c", L"b"};
  typename IteratorsOf<TypeParam>::Mutable it(sequence);
  ZoSeqIterator<ZoString>& any = it;
  EXPECT_TRUE(*any.current() == L"a" && any.atFirst());
  EXPECT_TRUE(any.findNext(L"b"));
  EXPECT_TRUE(any.findNext(L"b") && any.atLast());
  EXPECT_FALSE(any.findNext(L"b"));
  EXPECT_EQ(any(), nullptr);
  EXPECT_TRUE(any.toLast() && any.findPrev(L"b"));
  EXPECT_EQ(any.insert(L"new"), 0);
  EXPECT_TRUE(*any() == L"new");
  EXPECT_TRUE(any++ && *any() == L"b");
  ZoString out;
  EXPECT_EQ(any.remove(out), 0);
  EXPECT_TRUE(out == L"b" && *any() == L"c");
  EXPECT_TRUE(++any);
  EXPECT_FALSE(++any);
  EXPECT_FALSE(any++);
  EXPECT_EQ(any.remove(), 1);
  EXPECT_EQ(any.insert(L"end"), 0);
  any.reset();
  std::wstring seen;
  for (ZoString& element : any) seen += element.append(L";");
  EXPECT_EQ(seen, L"a;new;c;b;end;");

  typename IteratorsOf<TypeParam>::Constant constant(sequence);
  const ZoCIterator<ZoString>& root = constant;
  EXPECT_TRUE(root.isValid() && *root.current() == L"a;");
  EXPECT_TRUE(constant.to(3));
  EXPECT_TRUE(constant.prev() && *constant() == L"c;");
  sequence.removeAll();
  EXPECT_FALSE(root.isValid());
  EXPECT_EQ(root.current(), nullptr);
}

TEST(DictIterators, WalkEditAndSearch) {
  Dict dict{{L"a", 1}, {L"b", 2}, {L"c", 3}};
  ZoHashDictIterator<int, ZoString> it(dict);
  ZoDictIterator<int, ZoString>& any = it;
  unsigned n = 0;
  for (int& value : any) value *= 10, ++n;
  EXPECT_EQ(n, 3u);
  any.reset();
  EXPECT_TRUE(*any.key() == L"b" || any.findNext(L"B"));
  EXPECT_EQ(*any.current(), 20);
  int out = 0;
  EXPECT_EQ(any.remove(out), 0);
  EXPECT_EQ(out, 20);
  EXPECT_EQ(dict.at(L"b"), nullptr);
  const Dict& constant = dict;
  ZoHashDictCIterator<int, ZoString> walk(constant);
  int sum = 0;
  for (; walk.isValid(); walk.next()) sum += *walk.current();
  EXPECT_EQ(sum, 40);
  walk.reset();
  Dict moved(std::move(dict));  // the entries live on in another dictionary
  EXPECT_FALSE(walk.isValid());
}

// ---- Sequences ----

TEST(Sequences, OfEitherKindFitTogether) {
  ZoArray<int> array{1, 2, 3};
  ZoList<int> list(array);
  ZoSequence<int>& any = list;
  EXPECT_EQ(any.append(4), 0);
  EXPECT_EQ(any.append(array), 0);
  EXPECT_EQ(array.append(any), 0);
  EXPECT_EQ(array.entries(), 10u);
  array = any;
  EXPECT_TRUE(array.isEqualTo(any));
  EXPECT_EQ(*std::ranges::max_element(any), 4);
  EXPECT_EQ(any[3], 4);
  EXPECT_TRUE(std::ranges::equal(list | std::views::reverse, std::vector{3, 2, 1, 4, 3, 2, 1}));
  EXPECT_EQ(any.fillAt(6, 3, 9), 0);
  EXPECT_EQ(any.prepend(0), 0);
  EXPECT_TRUE(std::ranges::equal(any, std::vector{0, 1, 2, 3, 4, 1, 2, 9, 9, 9}));
}

TEST(Sequences, MoveWhatTheyHold) {
  ZoArray<ZoString> array{L"x"};
  ZoArray<ZoString> other(std::move(array));
  EXPECT_TRUE(array.isEmpty());  // NOLINT: a moved array is empty and usable
  EXPECT_EQ(array.append(L"y"), 0);
  EXPECT_EQ(array.emplace(L"zz", 1u), 0);
  EXPECT_TRUE(array[1] == L"z" && other[0] == L"x");
  EXPECT_EQ(array.shiftRight(2), 0);
  EXPECT_TRUE(array[0].isEmpty() && array.entries() == 4);
  struct alignas(64) Wide {
    int value;
  };
  ZoArray<Wide> wide;
  ZoList<Wide> wideList;
  ZoHashDict<Wide, int> wideDict;
  for (int i = 0; i < 20; ++i) {
    wide.append({i});
    wideList.append({i});
    wideDict.insertAt(i, {i});
  }
  for (unsigned i = 0; i < 20; ++i) {
    for (const Wide* at : {wide.at(i), wideList.at(i), wideDict.at(static_cast<int>(i))}) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(at) % 64, 0u);
      EXPECT_EQ(at->value, static_cast<int>(i));
    }
  }
}

}  // namespace
