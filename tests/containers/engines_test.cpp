// The engines as they are: untyped operations, status codes, the rules of growth, and the order of
// virtual operations. What typed containers reach through them stands in
// random_operations_test.cpp.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned kNone = zo::npos;

const ZoCompare<int> kByValue;
const ZoArrayCompare<int> kArrayCompare(kByValue);
const ZoListCompare<int> kListCompare(kByValue);
const ZoHashCompare<int> kHashCompare(kByValue);

// Hashes to what the test says, so that it can put keys into one bucket.
class PlainHash final : public ZoHashValue<int> {
 public:
  unsigned hash(const int& key) const override { return static_cast<unsigned>(key); }
};
const PlainHash kPlainHash;
const ZoHashKey<int> kHashKey(kPlainHash);

template <class Base>
class Collect final : public Base {
 public:
  std::string seen;

 private:
  void apply(int& element) override { seen += std::to_string(element) + ' '; }
};

ZoVArray makeArray(unsigned capacity, unsigned growSize, int n) {
  ZoVArray array(new ZoArrayTable<int>, capacity, growSize);
  for (int i = 0; i < n; ++i) EXPECT_EQ(array.append(&i), 0);
  return array;
}

// ---- Both sequences ----

struct ArrayTraits {
  using Engine = ZoVArray;
  using Iterator = ZoVArrayIterator;
  using Apply = Collect<ZoArrayApply<int>>;
  static ZoVArray make() { return makeArray(0, 4, 0); }
  static constexpr const ZoVArrayCompare* kCompare = &kArrayCompare;
};
struct ListTraits {
  using Engine = ZoVList;
  using Iterator = ZoVListIterator;
  using Apply = Collect<ZoListApply<int>>;
  static ZoVList make() { return ZoVList(new ZoListMem<int>); }
  static constexpr const ZoVListCompare* kCompare = &kListCompare;
};

template <class Traits>
class SequenceEngine : public testing::Test {
 protected:
  static std::string textOf(const typename Traits::Engine& engine) {
    typename Traits::Apply collect;
    EXPECT_EQ(engine.apply(&collect), 0);
    return collect.seen;
  }
};
using SequenceEngines = testing::Types<ArrayTraits, ListTraits>;
TYPED_TEST_SUITE(SequenceEngine, SequenceEngines);

TYPED_TEST(SequenceEngine, RefusesWhatMakesNoSense) {
  auto engine = TypeParam::make();
  const auto* const compare = TypeParam::kCompare;
  int value = 5;
  EXPECT_EQ(engine.removeFirst(&value), 1);
  EXPECT_EQ(engine.removeLast(&value), 1);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(engine.append(&i), 0);
  for (const unsigned i : {3u, 4u, kNone - 1, kNone}) {
    EXPECT_EQ(engine.at(i), nullptr);
    EXPECT_EQ(engine.getAt(i, &value), 1);
    EXPECT_EQ(engine.setAt(i, &value), 1);
    EXPECT_EQ(engine.removeAt(i, &value), 1);
    if (i == 3) continue;  // where the next element would stand
    EXPECT_EQ(engine.insertAt(i, &value), 1);
    EXPECT_EQ(engine.fillAt(i, 1, &value), 1);
  }
  EXPECT_EQ(engine.fillAt(1, kNone, &value), 1);  // the positions would wrap
  EXPECT_EQ(engine.append(nullptr), 1);
  EXPECT_EQ(engine.setAt(0, nullptr), 1);
  EXPECT_EQ(engine.getAt(0, nullptr), 1);
  EXPECT_EQ(engine.index(nullptr, compare), kNone);
  EXPECT_EQ(engine.index(&value, nullptr), kNone);
  EXPECT_EQ(engine.remove(&value, nullptr, true), 1);
  EXPECT_EQ(engine.remove(nullptr, compare, true), 1);
  EXPECT_EQ(engine.sort(nullptr, true), 1);
  EXPECT_EQ(engine.apply(nullptr), 1);
  EXPECT_FALSE(engine.isEqualTo(engine, nullptr));
  EXPECT_EQ(value, 5);
  EXPECT_EQ(this->textOf(engine), "0 1 2 ");

  typename TypeParam::Engine none(nullptr);  // no storage
  EXPECT_EQ(none.append(&value), 1);
  EXPECT_EQ(none.append(engine), 1);
  EXPECT_EQ(none.copyFrom(engine), 1);
  EXPECT_EQ(none.removeAll(true), 0);
  EXPECT_TRUE(none.validate());
}

TYPED_TEST(SequenceEngine, DoesWhatItSays) {
  auto engine = TypeParam::make();
  const auto* const compare = TypeParam::kCompare;
  const int one = 1, nine = 9;
  for (const int i : {3, 1, 2, 1}) ASSERT_EQ(engine.append(&i), 0);
  EXPECT_EQ(engine.append(engine), 0);
  EXPECT_EQ(engine.remove(engine.at(1), compare, false), 0);  // its own element
  EXPECT_EQ(this->textOf(engine), "3 2 1 3 1 2 1 ");
  EXPECT_EQ(engine.remove(engine.at(2), compare, true), 0);
  EXPECT_EQ(engine.insertAt(2, engine.at(3)), 0);
  EXPECT_EQ(this->textOf(engine), "3 2 2 3 2 ");
  EXPECT_EQ(engine.prepend(&one), 0);
  auto copy = engine;
  EXPECT_TRUE(copy.isEqualTo(engine, compare));
  EXPECT_EQ(copy.setAt(0, &nine), 0);
  EXPECT_FALSE(copy.isEqualTo(engine, compare));
  EXPECT_EQ(this->textOf(engine), "1 3 2 2 3 2 ");
  EXPECT_EQ(copy.copyFrom(copy), 0);
  EXPECT_EQ(engine.copyFrom(copy), 0);
  EXPECT_EQ(this->textOf(engine), "9 3 2 2 3 2 ");
  EXPECT_TRUE(engine.validate());
}

TYPED_TEST(SequenceEngine, IteratorGoesWhereItIsSent) {
  auto engine = TypeParam::make();
  const auto* const compare = TypeParam::kCompare;
  typename TypeParam::Iterator it(engine);
  const auto here = [&] { return it.current() ? *static_cast<int*>(it.current()) : -1; };
  const int five = 5, six = 6;
  EXPECT_FALSE(it.toLast());
  EXPECT_EQ(it.insert(&five), 0);  // at the end of nothing
  for (const int i : {7, 5}) ASSERT_EQ(engine.append(&i), 0);
  EXPECT_TRUE(it.atFirst() && it.next());
  EXPECT_EQ(it.insert(&six), 0);
  EXPECT_EQ(here(), 6);
  EXPECT_TRUE(it.toFirst());
  EXPECT_TRUE(it.findNext(&five, compare) && it.atLast());
  EXPECT_FALSE(it.findNext(&five, compare));
  EXPECT_FALSE(it.prev() || it.next()) << "it left the container";
  EXPECT_EQ(here(), -1);
  EXPECT_TRUE(it.to(2) && it.findPrev(&five, compare) && it.atFirst());
  EXPECT_FALSE(it.prev());
  EXPECT_TRUE(it.toFirst());
  EXPECT_FALSE(it.findNext(&five, nullptr));
  std::string removed;
  for (it.reset(); it.isValid();) {
    int out = 0;
    if (here() != 5) {
      it.next();
    } else if (it.remove(&out) == 0) {
      removed += std::to_string(out);
    }
  }
  EXPECT_EQ(it.remove(nullptr), 1);
  EXPECT_EQ(removed, "55");
  EXPECT_EQ(this->textOf(engine), "6 7 ");
  EXPECT_TRUE(it.to(1));
  auto taken(std::move(engine));  // the elements live on in another container
  EXPECT_FALSE(it.isValid());
  it.reset(taken);
  EXPECT_EQ(here(), 6);
}

// ---- Array ----

TEST(ArrayEngine, GrowsByItsGrowSizeOnly) {
  ZoVArray array = makeArray(2, 3, 2);
  const int v = 9;
  const auto expectGrown = [&](int status, unsigned capacity, int result) {
    EXPECT_EQ(result, status);
    EXPECT_EQ(array.capacity(), capacity);
  };
  expectGrown(0, 5, array.append(&v));
  expectGrown(0, 8, array.growArray());
  expectGrown(0, 11, array.fillAt(3, 6, &v));  // one element too many: one more step
  expectGrown(0, 14, array.fillAt(9, 5, &v));  // exactly one step
  array.setGrowSize(0);
  expectGrown(1, 14, array.growArray());
  expectGrown(1, 14, array.append(&v));
  expectGrown(1, 14, array.append(array));
  expectGrown(1, 14, array.shiftRight(1));
  expectGrown(0, 20, array.resize(20));  // on demand all the same
  expectGrown(0, 20, array.append(&v));
  expectGrown(0, 4, array.resize(4));
  array.setGrowSize(kNone - 2);
  expectGrown(2, 4, array.growArray());
  expectGrown(2, 4, array.append(&v));
  array.setGrowSize(4);
  EXPECT_EQ(array.shiftLeft(5), 1);
  EXPECT_EQ(array.shiftLeft(1), 0);
  EXPECT_EQ(array.shiftRight(2), 0);
  Collect<ZoArrayApply<int>> collect;
  EXPECT_EQ(array.apply(&collect), 0);
  EXPECT_EQ(collect.seen, "0 0 1 9 9 ");
}

TEST(TypedArray, RaisesItsGrowSizeUnlessItIsZero) {
  ZoArray<int> array;
  unsigned steps = 0;
  for (unsigned i = 0, capacity = 0; i < 10000; ++i) {
    ASSERT_EQ(array.append(static_cast<int>(i)), 0);
    if (array.capacity() != capacity) ++steps;
    capacity = array.capacity();
  }
  EXPECT_LT(steps, 15u);
  ZoArray<int> fixed(3, 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(fixed.append(i), 0);
  for (const int status :
       {fixed.append(3), fixed.insertAt(0, 3), fixed.emplace(3), fixed.append(array)})
    EXPECT_EQ(status, 1);
  EXPECT_EQ(fixed.entries(), 3u);
}

TEST(Sorting, IsStableAndNeverQuadratic) {
#ifdef ZO_GUARDED
  constexpr int kCount = 300;
#else
  constexpr int kCount = 10000;
#endif
  struct Item {  // arrays sort what has the size of a pointer by its bytes, lists by pointers
    int key, number;
    bool operator==(const Item&) const = default;
  };
  static_assert(sizeof(Item) == sizeof(void*));
  unsigned calls = 0;
  const auto byKey = zo::compareBy<Item>([&](const Item& a, const Item& b) {
    ++calls;
    return a.key - b.key;
  });
  std::mt19937 random(7);
  using Shape = int (*)(std::mt19937&, int);
  for (const Shape shape : std::vector<Shape>{
           [](std::mt19937&, int i) { return i; }, [](std::mt19937&, int i) { return -i; },
           [](std::mt19937&, int) { return 1; }, [](std::mt19937&, int i) { return i % 10; },
           [](std::mt19937& r, int) { return static_cast<int>(r() % 100); },
           [](std::mt19937&, int i) { return i < kCount / 2 ? i : kCount - i; }}) {
    for (const bool ascending : {true, false}) {
      ZoArray<Item> array;
      for (int i = 0; i < kCount; ++i) array.append({shape(random, i), i});
      ZoList<Item> list(array);
      const Item* const second = list.at(1);
      std::vector<Item> expected(array.begin(), array.end());
      std::stable_sort(expected.begin(), expected.end(), [&](const Item& a, const Item& b) {
        return ascending ? a.key < b.key : a.key > b.key;
      });
      calls = 0;
      ASSERT_EQ(array.sort(byKey, ascending), 0);
      EXPECT_LT(calls, kCount * (std::log2(kCount) + 1));
      ASSERT_EQ(list.sort(byKey, ascending), 0);
      EXPECT_TRUE(std::equal(array.begin(), array.end(), expected.begin()));
      EXPECT_TRUE(std::equal(list.begin(), list.end(), expected.begin()));
      EXPECT_EQ(second->number, 1) << "nodes are relinked, elements stay";
      EXPECT_TRUE(list.engine().validate());
    }
  }
}

// ---- Hash table ----

ZoVHash makeHash(unsigned buckets = 128, double loadFactor = 0.7) {
  return ZoVHash(ZoHashTable<int, int>::make(buckets), buckets, loadFactor);
}

TEST(HashEngine, GrowsAndCountsAsTheTypedDictionaryThatInsertsByItself) {
  ZoVHash hash = makeHash();
  ZoHashDict<int, int> dict;
  const auto insert = [&](int key, int status) {
    ASSERT_EQ(hash.insertAt(&key, &key, &kHashKey), status);
    ASSERT_EQ(dict.insertAt(key, key), status);
  };
  const auto expectSame = [&](unsigned buckets) {
    EXPECT_EQ(dict.buckets(), buckets);
    EXPECT_TRUE(hash.validate(&kHashKey));
    const ZoHashStats a = hash.stats(), b = dict.stats();
    EXPECT_EQ(a.buckets, b.buckets);
    EXPECT_EQ(a.collisions, b.collisions);
    EXPECT_EQ(a.longestChain, b.longestChain);
    EXPECT_EQ(a.usedBuckets, b.usedBuckets);
    Collect<ZoHashApply<int>> ofHash, ofDict;
    EXPECT_EQ(hash.apply(&ofHash), 0);
    EXPECT_EQ(dict.apply(ofDict), 0);
    EXPECT_EQ(ofHash.seen, ofDict.seen);
  };
  for (int i = 0; i < 90; ++i) insert(i * 37 % 1000, 0);
  expectSame(128);
  insert(37, 1);  // the load is tested before the key
  expectSame(256);
  insert(5000, 0);
  expectSame(256);
  EXPECT_EQ(hash.setCapacity(3, 2.0, &kHashKey), 0);  // too few: doubles on the way
  EXPECT_EQ(dict.setCapacity(3, 2.0), 0);
  expectSame(48);
  EXPECT_EQ(hash.setCapacity(1, std::numeric_limits<double>::infinity(), &kHashKey), 0);
  EXPECT_EQ(hash.stats().longestChain, 91u);
}

TEST(HashEngine, CountsCollisionsAnewWhenItGrows) {
  ZoVHash hash = makeHash(4, 1.0);
  for (const int key : {0, 4, 8, 1, 5}) ASSERT_EQ(hash.insertAt(&key, &key, &kHashKey), 0);
  EXPECT_EQ(hash.buckets(), 4u) << "four of four are no overload yet";
  EXPECT_DOUBLE_EQ(ZoVHash(hash).collisionRatio(), 3 / 5.0);
  EXPECT_EQ(hash.stats().usedBuckets, 2u);
  const int four = 4, absent = 12;
  EXPECT_EQ(hash.removeAt(&four, nullptr, &kHashKey), 0);
  EXPECT_DOUBLE_EQ(hash.collisionRatio(), 3 / 4.0);  // what has happened stays counted
  EXPECT_EQ(hash.insertAt(&four, &four, &kHashKey), 0);
  EXPECT_EQ(hash.resize(&kHashKey), 0);
  EXPECT_EQ(hash.buckets(), 8u);
  EXPECT_DOUBLE_EQ(hash.collisionRatio(), 1 / 5.0);  // 0 and 8
  Collect<ZoHashApply<int>> collect;
  EXPECT_EQ(hash.apply(&collect), 0);
  EXPECT_EQ(collect.seen, "0 8 1 4 5 ") << "by bucket, then by insertion";
  EXPECT_EQ(hash.getPosition(&four, &kHashKey), 4u);
  EXPECT_EQ(hash.getPosition(&absent, &kHashKey), kNone);
  EXPECT_EQ(hash.removeAll(), 0);
  EXPECT_EQ(hash.collisionRatio(), 0.0);
  EXPECT_EQ(hash.buckets(), 8u);
}

TEST(HashEngine, RefusesWhatMakesNoSense) {
  const int key = 3;
  int out = 7;
  ZoVHash none(nullptr, 16, 0.5);
  EXPECT_EQ(none.insertAt(&key, &key, &kHashKey), 1);
  EXPECT_EQ(none.resize(&kHashKey), 1);
  EXPECT_EQ(none.setCapacity(10, 1, &kHashKey), 1);
  EXPECT_EQ(none.at(&key, &kHashKey), nullptr);
  EXPECT_FALSE(none.contains(&key, &kHashCompare));
  ZoVHash hash = makeHash();
  EXPECT_EQ(hash.insertAt(&key, &key, nullptr), 1);
  EXPECT_EQ(hash.insertAt(nullptr, &key, &kHashKey), 1);
  EXPECT_EQ(hash.insertAt(&key, nullptr, &kHashKey), 1);
  EXPECT_EQ(hash.setAt(&key, &key, &kHashKey), 1);
  EXPECT_EQ(hash.removeAt(&key, &out, &kHashKey), 1);
  EXPECT_EQ(hash.getAt(&key, &out, &kHashKey), 1);
  EXPECT_EQ(hash.findKey(&key, &out, &kHashCompare), 1);
  EXPECT_EQ(hash.apply(nullptr), 1);
  EXPECT_EQ(out, 7);
  for (const double loadFactor : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(hash.setCapacity(64, loadFactor, &kHashKey), 1);
    EXPECT_EQ(makeHash(16, loadFactor).loadFactor(), 0.7);
  }
  EXPECT_EQ(hash.setCapacity(0, 0.5, &kHashKey), 1);
  EXPECT_EQ(hash.buckets(), 128u);
  EXPECT_EQ((ZoHashDict<int, int>(0).buckets()), 128u);
}

// ---- Layout ----

#if defined(__GNUC__)
// In this ABI a pointer to a virtual member is the offset of its slot, plus 1; the destructor takes
// the first two.
template <class... Functions>
void expectSlotsInOrder(Functions... functions) {
  std::size_t slot = 2;
  const auto expectNext = [&](auto function) {
    std::size_t word = 0;
    std::memcpy(&word, &function, sizeof word);
    EXPECT_EQ((word - 1) / sizeof(void*), slot++);
  };
  (expectNext(functions), ...);
}

TEST(Layout, VirtualOperationsKeepTheirOrder) {
  using H = ZoVHash;
  expectSlotsInOrder(&H::contains, &H::entries, &H::findKey, &H::getAt, &H::isEmpty, &H::isValid,
                     &H::collisionRatio, &H::setCapacity, &H::apply, &H::at, &H::insertAt,
                     &H::setAt, &H::removeAll, &H::removeAt);
  expectSlotsInOrder(&ZoVHashKey::compare, &ZoVHashKey::hash);
  using It = ZoVArrayIterator;
  expectSlotsInOrder(static_cast<void (It::*)()>(&It::reset),
                     static_cast<void (It::*)(ZoVArray&)>(&It::reset), &It::isValid, &It::current,
                     &It::atFirst, &It::atLast, &It::toFirst, &It::toLast, &It::to, &It::next,
                     &It::prev, &It::insert, &It::remove, &It::findNext, &It::findPrev);
}
#endif

TEST(Layout, EnginesKeepTheOrderOfTheirFields) {
  const ZoVArray array = makeArray(7, 3, 2);
  unsigned fields[3];
  std::memcpy(fields, &array, sizeof fields);
  EXPECT_EQ(std::vector(fields, fields + 3), (std::vector{2u, 7u, 3u}));
  ZoVHash hash = makeHash(4, 5.0);
  for (const int key : {0, 4, 1}) ASSERT_EQ(hash.insertAt(&key, &key, &kHashKey), 0);
  const char* const bytes = reinterpret_cast<const char*>(&hash) + sizeof(void*);
  double loadFactor = 0;
  std::memcpy(fields, bytes, sizeof fields);
  std::memcpy(&loadFactor, bytes + 16, sizeof loadFactor);
  EXPECT_EQ(std::vector(fields, fields + 3), (std::vector{3u, 4u, 1u}));
  EXPECT_EQ(loadFactor, 5.0);
}

}  // namespace
