// The engines as they are: untyped operations, status codes, the rules of growth, and the order of
// virtual operations.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned kNone = zo::npos;

const ZoCompare<int> kByValue;
const ZoArrayCompare<int> kArrayCompare(kByValue);
const ZoListCompare<int> kListCompare(kByValue);
const ZoHashCompare<int> kHashCompare(kByValue);
const ZoTreeCompare<int> kTreeCompare(kByValue);

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

template <class Engine>
std::string textOf(const Engine& engine) {
  std::string text;
  for (unsigned i = 0; i < engine.entries(); ++i) {
    text += std::to_string(*static_cast<const int*>(engine.at(i))) + ' ';
  }
  return text;
}

ZoVArray makeArray(unsigned capacity, unsigned growSize, int n) {
  ZoVArray array(new ZoArrayTable<int>, capacity, growSize);
  for (int i = 0; i < n; ++i) EXPECT_EQ(array.append(&i), 0);
  return array;
}

// ---- Both sequences ----

template <class Engine>
struct EngineTraits;
template <>
struct EngineTraits<ZoVArray> {
  static ZoVArray make() { return makeArray(0, 4, 0); }
  static const ZoVArrayCompare* compare() { return &kArrayCompare; }
  using Iterator = ZoVArrayIterator;
  using Apply = Collect<ZoArrayApply<int>>;
};
template <>
struct EngineTraits<ZoVList> {
  static ZoVList make() { return ZoVList(new ZoListMem<int>); }
  static const ZoVListCompare* compare() { return &kListCompare; }
  using Iterator = ZoVListIterator;
  using Apply = Collect<ZoListApply<int>>;
};

template <class Engine>
class SequenceEngine : public testing::Test {};
using SequenceEngines = testing::Types<ZoVArray, ZoVList>;
TYPED_TEST_SUITE(SequenceEngine, SequenceEngines);

TYPED_TEST(SequenceEngine, RefusesWhatMakesNoSense) {
  TypeParam engine = EngineTraits<TypeParam>::make();
  const auto* compare = EngineTraits<TypeParam>::compare();
  int value = 5;
  // Nothing there yet.
  EXPECT_EQ(engine.first(), nullptr);
  EXPECT_EQ(engine.last(), nullptr);
  EXPECT_EQ(engine.removeFirst(&value), 1);
  EXPECT_EQ(engine.removeLast(&value), 1);
  EXPECT_EQ(engine.sort(compare, true), 0);
  EXPECT_EQ(engine.reverse(), 0);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(engine.append(&i), 0);
  for (const unsigned i : {3u, 4u, kNone - 1, kNone}) {
    EXPECT_FALSE(engine.isValid(i));
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
  EXPECT_EQ(textOf(engine), "0 1 2 ");

  TypeParam none(nullptr);  // no storage
  EXPECT_EQ(none.append(&value), 1);
  EXPECT_EQ(none.append(engine), 1);
  EXPECT_EQ(none.copyFrom(engine), 1);
  EXPECT_EQ(none.at(0), nullptr);
  EXPECT_EQ(none.removeAll(true), 0);
  EXPECT_TRUE(none.validate());
}

TYPED_TEST(SequenceEngine, DoesWhatItSays) {
  TypeParam engine = EngineTraits<TypeParam>::make();
  const auto* compare = EngineTraits<TypeParam>::compare();
  for (const int i : {3, 1, 2, 1}) ASSERT_EQ(engine.append(&i), 0);
  EXPECT_EQ(engine.append(engine), 0);
  EXPECT_EQ(textOf(engine), "3 1 2 1 3 1 2 1 ");
  const int one = 1, nine = 9;
  EXPECT_EQ(engine.index(&one, compare), 1u);
  EXPECT_EQ(engine.remove(engine.at(1), compare, false), 0);  // its own element
  EXPECT_EQ(textOf(engine), "3 2 1 3 1 2 1 ");
  EXPECT_EQ(engine.remove(engine.at(2), compare, true), 0);
  EXPECT_EQ(textOf(engine), "3 2 3 2 ");
  EXPECT_EQ(engine.remove(&one, compare, true), 1);
  EXPECT_EQ(engine.fillAt(3, 3, &nine), 0);
  EXPECT_EQ(engine.prepend(&one), 0);
  EXPECT_EQ(textOf(engine), "1 3 2 3 9 9 9 ");
  EXPECT_EQ(engine.sort(compare, false), 0);
  EXPECT_EQ(textOf(engine), "9 9 9 3 3 2 1 ");
  EXPECT_EQ(engine.reverse(), 0);
  typename EngineTraits<TypeParam>::Apply collect;
  EXPECT_EQ(engine.apply(&collect), 0);
  EXPECT_EQ(collect.seen, "1 2 3 3 9 9 9 ");

  TypeParam copy = engine;
  EXPECT_TRUE(copy.isEqualTo(engine, compare));
  EXPECT_EQ(copy.setAt(0, &nine), 0);
  EXPECT_FALSE(copy.isEqualTo(engine, compare));
  EXPECT_EQ(textOf(engine), "1 2 3 3 9 9 9 ");
  EXPECT_EQ(copy.copyFrom(copy), 0);
  EXPECT_EQ(engine.copyFrom(copy), 0);
  EXPECT_EQ(textOf(engine), "9 2 3 3 9 9 9 ");
  EXPECT_EQ(engine.removeAll(true), 0);
  EXPECT_TRUE(engine.isEmpty());
  EXPECT_EQ(engine.append(copy), 0);
  EXPECT_TRUE(engine.validate());
}

TYPED_TEST(SequenceEngine, IteratorGoesWhereItIsSent) {
  TypeParam engine = EngineTraits<TypeParam>::make();
  typename EngineTraits<TypeParam>::Iterator it(engine);
  const auto* compare = EngineTraits<TypeParam>::compare();
  const auto here = [&] { return it.current() ? *static_cast<int*>(it.current()) : -1; };
  EXPECT_FALSE(it.isValid());
  EXPECT_FALSE(it.next());
  EXPECT_FALSE(it.toLast());
  const int five = 5;
  EXPECT_EQ(it.insert(&five), 0);  // at the end of nothing
  EXPECT_EQ(here(), 5);
  for (const int i : {6, 7, 5}) ASSERT_EQ(engine.append(&i), 0);
  EXPECT_TRUE(it.atFirst());
  EXPECT_TRUE(it.findNext(&five, compare));
  EXPECT_TRUE(it.atLast());
  EXPECT_FALSE(it.findNext(&five, compare));
  EXPECT_EQ(here(), -1);
  EXPECT_FALSE(it.prev());  // it left the container
  EXPECT_TRUE(it.to(2));
  EXPECT_EQ(here(), 7);
  EXPECT_TRUE(it.findPrev(&five, compare));
  EXPECT_TRUE(it.atFirst());
  EXPECT_FALSE(it.prev());
  EXPECT_FALSE(it.to(4));
  EXPECT_TRUE(it.toFirst());
  EXPECT_FALSE(it.findNext(&five, nullptr));
  it.reset();
  // Removal while iterating.
  int out = 0;
  std::string removed;
  while (it.isValid()) {
    if (here() == 5) {
      EXPECT_EQ(it.remove(&out), 0);
      removed += std::to_string(out);
    } else {
      it.next();
    }
  }
  EXPECT_EQ(it.remove(&out), 1);
  EXPECT_EQ(removed, "55");
  EXPECT_EQ(textOf(engine), "6 7 ");
  EXPECT_TRUE(it.to(1));
  engine.removeAll(false);  // emptied under the iterator
  EXPECT_FALSE(it.isValid());
  EXPECT_EQ(here(), -1);
  EXPECT_FALSE(it.next());
  TypeParam other = EngineTraits<TypeParam>::make();
  ASSERT_EQ(other.append(&five), 0);
  it.reset(other);
  EXPECT_EQ(here(), 5);
}

TEST(ListEngine, IteratorSurvivesWhatHappensToOthers) {
  ZoVList list(new ZoListMem<int>);
  for (int i = 0; i < 10; ++i) ASSERT_EQ(list.append(&i), 0);
  ZoVListIterator it(list);
  it.to(5);
  const auto here = [&] { return it.current() ? *static_cast<int*>(it.current()) : -1; };
  const int front = -5;
  list.prepend(&front);
  list.removeAt(3, nullptr);
  list.sort(&kListCompare, false);
  EXPECT_EQ(here(), 5);
  EXPECT_TRUE(it.prev());
  EXPECT_EQ(here(), 6);
  it.next();
  list.remove(&(*static_cast<int*>(it.current())), &kListCompare, false);  // its own element
  EXPECT_FALSE(it.isValid());
  EXPECT_EQ(it.current(), nullptr);
  it.toFirst();
  ZoVList taken(std::move(list));  // the elements live on in another list
  EXPECT_FALSE(it.isValid());
}

// ---- Array ----

TEST(ArrayEngine, GrowsByItsGrowSizeOnly) {
  ZoVArray array = makeArray(2, 3, 2);
  EXPECT_EQ(array.capacity(), 2u);
  const int v = 9;
  EXPECT_EQ(array.append(&v), 0);
  EXPECT_EQ(array.capacity(), 5u);
  EXPECT_EQ(array.growArray(), 0);
  EXPECT_EQ(array.capacity(), 8u);
  EXPECT_EQ(array.fillAt(3, 6, &v), 0);  // 9 elements: one more step
  EXPECT_EQ(array.capacity(), 11u);
  array.setGrowSize(0);
  EXPECT_EQ(array.growArray(), 1);
  while (array.entries() < array.capacity()) ASSERT_EQ(array.append(&v), 0);
  EXPECT_EQ(array.append(&v), 1);
  EXPECT_EQ(array.append(array), 1);
  EXPECT_EQ(array.shiftRight(1), 1);
  EXPECT_EQ(array.entries(), 11u);
  EXPECT_EQ(array.resize(20), 0);  // on demand all the same
  EXPECT_EQ(array.append(&v), 0);
  EXPECT_EQ(array.resize(4), 0);
  EXPECT_EQ(textOf(array), "0 1 9 9 ");
  array.setGrowSize(kNone - 2);
  EXPECT_EQ(array.growArray(), 2);
  EXPECT_EQ(array.append(&v), 2);
  EXPECT_EQ(textOf(array), "0 1 9 9 ");
  EXPECT_TRUE(array.validate());
}

TEST(ArrayEngine, Shifts) {
  ZoVArray array = makeArray(0, 4, 5);
  EXPECT_EQ(array.shiftLeft(6), 1);
  EXPECT_EQ(array.shiftLeft(2), 0);
  EXPECT_EQ(textOf(array), "2 3 4 ");
  EXPECT_EQ(array.shiftRight(2), 0);
  EXPECT_EQ(textOf(array), "0 0 2 3 4 ");
  EXPECT_EQ(array.shiftLeft(5), 0);
  EXPECT_TRUE(array.isEmpty());
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
  EXPECT_EQ(fixed.append(3), 1);
  EXPECT_EQ(fixed.insertAt(0, 3), 1);
  EXPECT_EQ(fixed.emplace(3), 1);
  EXPECT_EQ(fixed.append(array), 1);
  EXPECT_EQ(fixed.entries(), 3u);
}

TEST(Sorting, IsStableAndNeverQuadratic) {
  struct Counting final : ZoCompare<std::pair<int, int>> {
    mutable unsigned calls = 0;
    int compare(const std::pair<int, int>& a, const std::pair<int, int>& b) const override {
      ++calls;
      return a.first - b.first;
    }
  };
#ifdef ZO_GUARDED
  constexpr int kCount = 300;
#else
  constexpr int kCount = 10000;
#endif
  std::mt19937 random(7);
  using Shape = int (*)(std::mt19937&, int);
  const Shape shapes[] = {[](std::mt19937&, int i) { return i; },
                          [](std::mt19937&, int i) { return -i; },
                          [](std::mt19937&, int) { return 1; },
                          [](std::mt19937&, int i) { return i % 10; },
                          [](std::mt19937& r, int) { return static_cast<int>(r() % 100); },
                          [](std::mt19937&, int i) { return i < kCount / 2 ? i : kCount - i; }};
  for (const Shape shape : shapes) {
    for (const bool ascending : {true, false}) {
      ZoArray<std::pair<int, int>> array;
      ZoList<std::pair<int, int>> list;
      for (int i = 0; i < kCount; ++i) {
        array.append({shape(random, i), i});
        list.append(array[static_cast<unsigned>(i)]);
      }
      std::vector<std::pair<int, int>> expected(array.begin(), array.end());
      std::stable_sort(expected.begin(), expected.end(), [&](const auto& a, const auto& b) {
        return ascending ? a.first < b.first : a.first > b.first;
      });
      Counting compare;
      const auto* const second = list.at(1);
      ASSERT_EQ(array.sort(compare, ascending), 0);
      EXPECT_LT(compare.calls, kCount * (std::log2(kCount) + 1));
      ASSERT_EQ(list.sort(compare, ascending), 0);
      EXPECT_TRUE(std::equal(array.begin(), array.end(), expected.begin()));
      EXPECT_TRUE(std::equal(list.begin(), list.end(), expected.begin()));
      EXPECT_EQ(second->second, 1) << "nodes are relinked, elements stay";
      EXPECT_TRUE(list.engine().validate());
    }
  }
}

// ---- Hash table ----

ZoVHash makeHash(unsigned buckets = 128, double loadFactor = 0.7) {
  return ZoVHash(ZoHashTable<int, int>::make(buckets), buckets, loadFactor);
}

TEST(HashEngine, GrowsBeforeTheInsertionThatFindsItOverloaded) {
  ZoVHash hash = makeHash();
  EXPECT_EQ(hash.buckets(), 128u);
  for (int i = 0; i < 90; ++i) ASSERT_EQ(hash.insertAt(&i, &i, &kHashKey), 0);
  EXPECT_EQ(hash.buckets(), 128u);
  const int present = 5, absent = 90;
  ZoVHash refused(hash);
  EXPECT_EQ(refused.insertAt(&present, &present, &kHashKey), 1);
  EXPECT_EQ(refused.buckets(), 256u) << "the load is tested before the key";
  EXPECT_EQ(hash.insertAt(&absent, &absent, &kHashKey), 0);
  EXPECT_EQ(hash.buckets(), 256u);
  EXPECT_TRUE(hash.validate(&kHashKey));
}

TEST(HashEngine, CountsCollisionsAnewWhenItGrows) {
  ZoVHash hash = makeHash(4, 2.0);
  EXPECT_EQ(hash.collisionRatio(), 0.0);
  for (const int key : {0, 4, 8, 1, 5}) ASSERT_EQ(hash.insertAt(&key, &key, &kHashKey), 0);
  EXPECT_DOUBLE_EQ(hash.collisionRatio(), 3 / 5.0);
  EXPECT_EQ(hash.stats().longestChain, 3u);
  EXPECT_EQ(hash.stats().usedBuckets, 2u);
  const int four = 4;
  EXPECT_EQ(hash.removeAt(&four, nullptr, &kHashKey), 0);
  EXPECT_DOUBLE_EQ(hash.collisionRatio(), 3 / 4.0);  // what has happened stays counted
  EXPECT_EQ(hash.insertAt(&four, &four, &kHashKey), 0);
  EXPECT_EQ(hash.resize(&kHashKey), 0);
  EXPECT_EQ(hash.buckets(), 8u);
  EXPECT_DOUBLE_EQ(hash.collisionRatio(), 1 / 5.0);  // 0 and 8
  Collect<ZoHashApply<int>> collect;
  EXPECT_EQ(hash.apply(&collect), 0);
  EXPECT_EQ(collect.seen, "0 8 1 4 5 ");
  EXPECT_EQ(hash.getPosition(&four, &kHashKey), 4u);
  const int absent = 12;
  EXPECT_EQ(hash.getPosition(&absent, &kHashKey), kNone);
  EXPECT_EQ(hash.removeAll(), 0);
  EXPECT_EQ(hash.collisionRatio(), 0.0);
  EXPECT_EQ(hash.buckets(), 8u);
}

TEST(HashEngine, RefusesWhatMakesNoSense) {
  const int key = 3;
  int out = 7;
  ZoVHash none(nullptr, 16, 0.5);
  EXPECT_EQ(none.buckets(), 0u);
  EXPECT_EQ(none.insertAt(&key, &key, &kHashKey), 1);
  EXPECT_EQ(none.resize(&kHashKey), 1);
  EXPECT_EQ(none.setCapacity(10, 1, &kHashKey), 1);
  EXPECT_EQ(none.at(&key, &kHashKey), nullptr);
  EXPECT_EQ(none.removeAll(), 0);
  EXPECT_FALSE(none.contains(&key, &kHashCompare));

  ZoVHash hash = makeHash();
  EXPECT_EQ(hash.insertAt(&key, &key, nullptr), 1);
  EXPECT_EQ(hash.insertAt(nullptr, &key, &kHashKey), 1);
  EXPECT_EQ(hash.insertAt(&key, nullptr, &kHashKey), 1);
  EXPECT_EQ(hash.setAt(&key, &key, &kHashKey), 1);
  EXPECT_EQ(hash.removeAt(&key, &out, &kHashKey), 1);
  EXPECT_EQ(hash.getAt(&key, &out, &kHashKey), 1);
  EXPECT_EQ(hash.findKey(&key, &out, &kHashCompare), 1);
  EXPECT_EQ(hash.contains(&key, nullptr), false);
  EXPECT_EQ(hash.apply(nullptr), 1);
  EXPECT_EQ(out, 7);
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  for (const double loadFactor : {0.0, -1.0, kNan}) {
    EXPECT_EQ(hash.setCapacity(64, loadFactor, &kHashKey), 1);
    EXPECT_EQ(makeHash(16, loadFactor).loadFactor(), 0.7);
  }
  EXPECT_EQ(hash.setCapacity(0, 0.5, &kHashKey), 1);
  EXPECT_EQ((ZoHashDict<int, int>(0, kNan).buckets()), 128u);
  EXPECT_EQ(hash.buckets(), 128u);
}

TEST(HashEngine, SetCapacityRehashes) {
  ZoVHash hash = makeHash();
  for (int i = 0; i < 60; ++i) ASSERT_EQ(hash.insertAt(&i, &i, &kHashKey), 0);
  EXPECT_EQ(hash.setCapacity(1000, 0.5, &kHashKey), 0);
  EXPECT_EQ(hash.buckets(), 1000u);
  EXPECT_EQ(hash.loadFactor(), 0.5);
  EXPECT_TRUE(hash.validate(&kHashKey));
  EXPECT_EQ(hash.setCapacity(3, 2.0, &kHashKey), 0);  // too few: doubles on the way
  EXPECT_EQ(hash.buckets(), 48u);
  EXPECT_TRUE(hash.validate(&kHashKey));
  EXPECT_EQ(hash.setCapacity(1, std::numeric_limits<double>::infinity(), &kHashKey),
            0);  // one chain
  EXPECT_EQ(hash.buckets(), 1u);
  EXPECT_EQ(hash.stats().longestChain, 60u);
  for (int i = 0; i < 60; ++i) EXPECT_EQ(*static_cast<int*>(hash.at(&i, &kHashKey)), i);
}

TEST(HashEngine, IteratorSurvivesWhatHappensToOthers) {
  ZoVHash hash = makeHash(8, 0.5);
  for (int i = 0; i < 4; ++i) ASSERT_EQ(hash.insertAt(&i, &i, &kHashKey), 0);
  ZoVHashIterator it(hash);
  EXPECT_TRUE(it.atFirst());
  EXPECT_TRUE(it.next());
  EXPECT_TRUE(it.next());
  const auto here = [&] { return it.current() ? *static_cast<int*>(it.current()) : -1; };
  EXPECT_EQ(here(), 2);
  for (int i = 4; i < 40; ++i) ASSERT_EQ(hash.insertAt(&i, &i, &kHashKey), 0);  // grows three times
  const int one = 1, two = 2, nine = 9;
  hash.removeAt(&one, nullptr, &kHashKey);
  EXPECT_EQ(here(), 2);
  EXPECT_TRUE(it.findNext(&nine, &kHashCompare));
  EXPECT_EQ(*static_cast<const int*>(it.key()), 9);
  int out = 0;
  EXPECT_EQ(it.remove(&out), 0);
  EXPECT_EQ(out, 9);
  EXPECT_EQ(here(), 10);
  it.toFirst();
  it.next();
  EXPECT_EQ(here(), 2);
  hash.removeAt(&two, nullptr, &kHashKey);
  EXPECT_FALSE(it.isValid());
  EXPECT_EQ(it.key(), nullptr);
  EXPECT_EQ(it.remove(nullptr), 1);
  it.reset();
  unsigned n = 0;
  for (; it.isValid(); it.next()) ++n;
  EXPECT_EQ(n, hash.entries());
  it.reset();
  hash.removeAll();
  EXPECT_FALSE(it.isValid());
}

// ---- Layout ----

#if defined(__GNUC__)
// In this ABI a pointer to a virtual member is the offset of its slot, plus 1; the destructor takes
// the first two.
template <class Function>
std::size_t slotOf(Function function) {
  std::size_t word = 0;
  std::memcpy(&word, &function, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(Layout, VirtualOperationsKeepTheirOrder) {
  const std::size_t hash[] = {slotOf(&ZoVHash::contains),       slotOf(&ZoVHash::entries),
                              slotOf(&ZoVHash::findKey),        slotOf(&ZoVHash::getAt),
                              slotOf(&ZoVHash::isEmpty),        slotOf(&ZoVHash::isValid),
                              slotOf(&ZoVHash::collisionRatio), slotOf(&ZoVHash::setCapacity),
                              slotOf(&ZoVHash::apply),          slotOf(&ZoVHash::at),
                              slotOf(&ZoVHash::insertAt),       slotOf(&ZoVHash::setAt),
                              slotOf(&ZoVHash::removeAll),      slotOf(&ZoVHash::removeAt)};
  for (std::size_t i = 0; i < std::size(hash); ++i) EXPECT_EQ(hash[i], i + 2);
  EXPECT_EQ(slotOf(&ZoVHashKey::compare), 2u);
  EXPECT_EQ(slotOf(&ZoVHashKey::hash), 3u);
  using It = ZoVArrayIterator;
  const std::size_t iterator[] = {slotOf(static_cast<void (It::*)()>(&It::reset)),
                                  slotOf(static_cast<void (It::*)(ZoVArray&)>(&It::reset)),
                                  slotOf(&It::isValid),
                                  slotOf(&It::current),
                                  slotOf(&It::atFirst),
                                  slotOf(&It::atLast),
                                  slotOf(&It::toFirst),
                                  slotOf(&It::toLast),
                                  slotOf(&It::to),
                                  slotOf(&It::next),
                                  slotOf(&It::prev),
                                  slotOf(&It::insert),
                                  slotOf(&It::remove),
                                  slotOf(&It::findNext),
                                  slotOf(&It::findPrev)};
  for (std::size_t i = 0; i < std::size(iterator); ++i) EXPECT_EQ(iterator[i], i + 2);
}
#endif

TEST(Layout, EnginesKeepTheOrderOfTheirFields) {
  ZoVArray array = makeArray(7, 3, 2);
  unsigned fields[3];
  std::memcpy(fields, &array, sizeof fields);
  EXPECT_EQ(fields[0], 2u);
  EXPECT_EQ(fields[1], 7u);
  EXPECT_EQ(fields[2], 3u);
  ZoVHash hash = makeHash(4, 5.0);
  for (const int key : {0, 4, 1}) ASSERT_EQ(hash.insertAt(&key, &key, &kHashKey), 0);
  const char* const bytes = reinterpret_cast<const char*>(&hash) + sizeof(void*);
  double loadFactor = 0;
  std::memcpy(fields, bytes, sizeof fields);
  std::memcpy(&loadFactor, bytes + 16, sizeof loadFactor);
  EXPECT_EQ(fields[0], 3u);
  EXPECT_EQ(fields[1], 4u);
  EXPECT_EQ(fields[2], 1u);
  EXPECT_EQ(loadFactor, 5.0);
}

}  // namespace
