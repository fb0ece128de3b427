// The typed containers beyond what the random operations reach: text keys, ranges, iterators,
// construction, splitting.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <random>
#include <ranges>
#include <string>
#include <vector>

namespace {

using Dict = ZoHashDict<int, ZoString>;

// ---- Every container and both iterator families are ranges ----

template <class... Ranges>
constexpr bool kForward = (std::ranges::forward_range<Ranges> && ...);
template <class... Ranges>
constexpr bool kInput = (std::ranges::input_range<Ranges> && ...);
template <class... Containers>
constexpr bool kMoveWithoutThrowing = ((std::is_nothrow_move_constructible_v<Containers> &&
                                        std::is_nothrow_move_assignable_v<Containers>) &&
                                       ...);

static_assert(std::ranges::contiguous_range<ZoArray<int>> &&
              std::ranges::contiguous_range<const ZoArray<int>>);
static_assert(std::ranges::bidirectional_range<ZoList<int>> &&
              std::ranges::bidirectional_range<const ZoList<int>>);
static_assert(kForward<ZoSequence<int>, const ZoSequence<int>, Dict, const Dict,
                       ZoTree<int, ZoString>, ZoDict<int, ZoString>, const ZoDict<int, ZoString>>);
static_assert(kInput<ZoCIterator<int>, ZoArrayIterator<int>, ZoListCIterator<int>,
                     ZoHashDictIterator<int, ZoString>>);
static_assert(kMoveWithoutThrowing<ZoArray<int>, ZoList<int>, Dict>);

// ---- Text keys ----

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
        EXPECT_EQ(dict.put(upper, 7), 0);
        EXPECT_EQ(*dict.at(lower), 7);
        ZoString stored;
        EXPECT_EQ(dict.findKey(upper, stored), 0);
        EXPECT_EQ(stored, lower);
        const ZoCIHashValue<ZoString> policy;
        const ZoHashKey<ZoString> engineKey(policy);
        EXPECT_NE(dict.engine().at(&upper, &engineKey), nullptr);
        EXPECT_EQ(dict.removeAt(upper), 0);
      }
    }
  }
  // The keys of ASCII, whose order in a dictionary others may know.
  EXPECT_EQ(ZoCIHashValue<ZoString>().hash(L"A key\x7F"),
            ZoString(L"a KEY\x7F").hash(ZoString::ignoreCase));
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

// Up to lengths of several steps, the difference at each place.
TEST(TextKeys, AreComparedAsAWhole) {
  for (unsigned length = 1; length < 40; ++length) {
    for (unsigned at = 0; at < length; ++at) {
      const std::wstring text(length, L'a');
      std::wstring other = text;
      other[at] = L'b';
      EXPECT_TRUE(zo::equalPlainTexts(text.c_str(), std::wstring(text).c_str(), length));
      EXPECT_FALSE(zo::equalPlainTexts(text.c_str(), other.c_str(), length)) << length << at;
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
  EXPECT_EQ(*tree.firstKey(), L"Alpha");
  EXPECT_EQ(*tree.lastKey(), L"delta");
  ZoArray<ZoString> array{L"b", L"a", L"B", L"A"};
  EXPECT_EQ(array.sort(ZoCICompare<ZoString>()), 0);
  EXPECT_TRUE(std::ranges::equal(array, std::vector<ZoString>{L"a", L"A", L"b", L"B"}));
  EXPECT_EQ(array.index(L"B", ZoCICompare<ZoString>()), 2u);
}

// ---- Iterators ----

template <template <class> class Sequence, template <class...> class Mutable,
          template <class...> class Constant>
void expectIteratorsToWork() {
  Sequence<ZoString> sequence{L"a", L"b", L"c", L"b"};
  Mutable<ZoString> it(sequence);
  ZoSeqIterator<ZoString>& any = it;
  EXPECT_TRUE(any.findNext(L"b") && any.findNext(L"b") && any.atLast());
  EXPECT_FALSE(any.findNext(L"b"));
  EXPECT_EQ(any(), nullptr);
  EXPECT_TRUE(any.toLast() && any.findPrev(L"b") && any++ && *any() == L"c" && ++any);
  EXPECT_FALSE(++any || any++);
  EXPECT_EQ(any.insert(L"end"), 0);
  any.reset();
  std::wstring seen;
  for (ZoString& element : any) seen += element.append(L";");
  EXPECT_EQ(seen, L"a;b;c;b;end;");
  Constant<ZoString> constant(sequence);
  const ZoCIterator<ZoString>& root = constant;
  EXPECT_EQ(*root.current(), L"a;");
  EXPECT_TRUE(constant.to(3) && constant.prev() && *constant() == L"c;");
  sequence.removeAll();
  EXPECT_EQ(root.current(), nullptr);
}
template <class T>
using Array = ZoArray<T>;

TEST(Iterators, WalkEditAndSearch) {
  expectIteratorsToWork<Array, ZoArrayIterator, ZoArrayCIterator>();
  expectIteratorsToWork<ZoList, ZoListIterator, ZoListCIterator>();
  Dict dict{{L"a", 1}, {L"b", 2}, {L"c", 3}};
  ZoHashDictIterator<int, ZoString> it(dict);
  ZoDictIterator<int, ZoString>& any = it;
  for (int& value : any) value *= 10;
  any.reset();
  EXPECT_TRUE(*any.key() == L"b" || any.findNext(L"B"));
  int out = 0;
  EXPECT_EQ(any.remove(out), 0);
  EXPECT_EQ(out, 20);
  ZoHashDictCIterator<int, ZoString> walk(std::as_const(dict));
  int sum = 0;
  for (const int value : walk) sum += value;
  EXPECT_EQ(sum, 40);
  walk.reset();
  const Dict moved(std::move(dict));  // the entries live on in another dictionary
  EXPECT_FALSE(walk.isValid());
}

// ---- Containers of either kind fit together ----

TEST(TypedContainers, OfEitherKindFitTogether) {
  ZoArray<int> array{1, 2, 3};
  ZoList<int> list(array);
  ZoSequence<int>& any = list;
  EXPECT_EQ(any.append(array), 0);
  EXPECT_EQ(array.append(any), 0);
  EXPECT_TRUE(std::ranges::equal(array, std::vector{1, 2, 3, 1, 2, 3, 1, 2, 3}));
  array = any;
  EXPECT_TRUE(array.isEqualTo(any));
  EXPECT_TRUE(std::ranges::equal(list | std::views::reverse, std::vector{3, 2, 1, 3, 2, 1}));

  ZoHashDict<ZoString, int> hash{{1, L"one"}, {2, L"two"}};
  for (auto [key, value] : hash) value.append(L"!");
  const ZoDict<ZoString, int>& anyDict = hash;
  EXPECT_EQ(std::ranges::count_if(anyDict, [](const auto& e) { return e.key > 1; }), 1);
  ZoTree<ZoString, int> tree(anyDict);
  EXPECT_EQ(tree.entries(), 2u);
  hash = static_cast<const ZoDict<ZoString, int>&>(tree);
  EXPECT_EQ(*hash.at(1), L"one!");
  EXPECT_TRUE(hash.contains(7, zo::compareBy<int>([](int a, int) { return a - 1; })));
}

TEST(TypedContainers, KeepElementsAtTheirAlignment) {
  struct alignas(64) Wide {
    int value;
  };
  ZoArray<Wide> array;
  ZoList<Wide> list;
  ZoHashDict<Wide, int> dict;
  for (int i = 0; i < 20; ++i) {
    array.append({i});
    list.append({i});
    dict.insertAt(i, {i});
  }
  for (unsigned i = 0; i < 20; ++i) {
    for (const Wide* at : {array.at(i), list.at(i), dict.at(static_cast<int>(i))}) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(at) % 64, 0u);
      EXPECT_EQ(at->value, static_cast<int>(i));
    }
  }
}

// ---- Splitting text into sequences ----

TEST(Split, CutsAtEveryDelimiterAndReplacesWhatWasThere) {
  struct Case {
    const wchar_t* text;
    const wchar_t* delims;
    std::vector<ZoString> pieces;
  };
  ZoArray<ZoString> array{L"old"};
  ZoList<ZoString> list{L"old", L"older"};
  for (const Case& c :
       std::vector<Case>{{L"a,,b,", L",", {L"a", L"", L"b", L""}},
                         {L"", L",", {}},
                         {L",", L",", {L"", L""}},
                         {L"a;b,c", L",;", {L"a", L"b", L"c"}},
                         {L"a,b", L"", {L"a,b"}},
                         {L"a,b", nullptr, {L"a,b"}},
                         {L"a b\tc\nd;e:f", L" \t\n;:", {L"a", L"b", L"c", L"d", L"e", L"f"}}}) {
    EXPECT_EQ(ZoString(c.text).split(c.delims, array), c.pieces.size());
    EXPECT_TRUE(std::ranges::equal(array, c.pieces)) << c.text;
    EXPECT_EQ(ZoString(c.text).split(c.delims, list), c.pieces.size());
    EXPECT_TRUE(list.isEqualTo(array)) << c.text;
  }
  array = {L"a-b", L"-"};  // an entry of the target, by one of its entries
  EXPECT_EQ(array[0].split(array[1], array), 2u);
  EXPECT_TRUE(std::ranges::equal(array, std::vector<ZoString>{L"a", L"b"}));
}

}  // namespace
