// The engines as they are: refusals, the rules of growth, sorting, and the layout that others may
// know. What typed containers reach through them stands in random_operations_test.cpp.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "support/slots.h"

namespace {

constexpr unsigned kNone = zo::npos;

const ZoCompare<int> kByValue;
const ZoHashValue<int> kHash;
const ZoHashKey<int> kHashKey(kHash);

class Collect final : public ZoHashApply<int> {
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

template <class Engine, class Compare>
void expectRefusals(Engine engine, Engine none, const Compare& compare) {
  int value = 5;
  EXPECT_EQ(engine.removeFirst(&value), 1);
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
  for (const int status :
       {engine.append(nullptr), engine.setAt(0, nullptr), engine.getAt(0, nullptr),
        engine.remove(&value, nullptr, true), engine.sort(nullptr, true), engine.apply(nullptr),
        none.append(&value), none.append(engine), none.copyFrom(engine)})
    EXPECT_EQ(status, 1);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(engine.remove(engine.at(1), &compare, true), 0);  // by its own element
  EXPECT_TRUE(engine.validate() && engine.entries() == 2);
}

TEST(SequenceEngines, RefuseWhatMakesNoSense) {
  expectRefusals(makeArray(0, 4, 0), ZoVArray(nullptr), ZoArrayCompare<int>(kByValue));
  expectRefusals(ZoVList(new ZoListMem<int>), ZoVList(nullptr), ZoListCompare<int>(kByValue));
}

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
  expectGrown(1, 14, array.append(&v));
  expectGrown(0, 20, array.resize(20));  // on demand all the same
  expectGrown(0, 20, array.append(&v));
  expectGrown(0, 4, array.resize(4));
  array.setGrowSize(kNone - 2);
  expectGrown(2, 4, array.append(&v));
  ZoArray<int> typed;  // raises its grow size
  std::set<unsigned> capacities;
  for (int i = 0; i < 10000 && typed.append(i) == 0; ++i) capacities.insert(typed.capacity());
  EXPECT_LT(capacities.size(), 15u);
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
  using Shape = int (*)(int);
  for (const Shape shape :
       std::vector<Shape>{[](int i) { return i; }, [](int i) { return -i; },
                          [](int i) { return i % 10; }, [](int i) { return i * 7919 % 101; },
                          [](int i) { return i < kCount / 2 ? i : kCount - i; }}) {
    for (const bool ascending : {true, false}) {
      ZoArray<Item> array;
      for (int i = 0; i < kCount; ++i) ASSERT_EQ(array.append({shape(i), i}), 0);
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
    EXPECT_EQ(a.collisions, b.collisions);
    Collect ofHash, ofDict;
    EXPECT_EQ(hash.apply(&ofHash) + dict.apply(ofDict), 0);
    EXPECT_EQ(ofHash.seen, ofDict.seen) << "one order";
  };
  for (int i = 0; i < 90; ++i) insert(i * 37 % 1000, 0);
  expectSame(128);
  insert(37, 1);  // the load is tested before the key
  expectSame(256);
  EXPECT_EQ(hash.setCapacity(3, 2.0, &kHashKey), 0);  // too few: doubles on the way
  EXPECT_EQ(dict.setCapacity(3, 2.0), 0);
  expectSame(48);
}

TEST(HashEngine, RefusesWhatMakesNoSense) {
  const int key = 3;
  ZoVHash none(nullptr, 16, 0.5), hash = makeHash();
  for (const int status :
       {none.insertAt(&key, &key, &kHashKey), hash.insertAt(&key, &key, nullptr),
        hash.insertAt(nullptr, &key, &kHashKey), hash.setCapacity(0, 0.5, &kHashKey),
        hash.setCapacity(64, -1.0, &kHashKey), hash.setCapacity(64, std::nan(""), &kHashKey)})
    EXPECT_EQ(status, 1);
  EXPECT_EQ(hash.buckets(), 128u);
}

#if !defined(_MSC_VER)
TEST(Layout, VirtualOperationsKeepTheirOrder) {
  using H = ZoVHash;
  using zo::test::expectSlots;
  expectSlots(2, &H::contains, &H::entries, &H::findKey, &H::getAt, &H::isEmpty, &H::isValid,
              &H::collisionRatio, &H::setCapacity, &H::apply, &H::at, &H::insertAt, &H::setAt,
              &H::removeAll, &H::removeAt);
  expectSlots(2, &ZoVHashKey::compare, &ZoVHashKey::hash);
  using It = ZoVArrayIterator;
  expectSlots(2, static_cast<void (It::*)()>(&It::reset),
              static_cast<void (It::*)(ZoVArray&)>(&It::reset), &It::isValid, &It::current,
              &It::atFirst, &It::atLast, &It::toFirst, &It::toLast, &It::to, &It::next, &It::prev,
              &It::insert, &It::remove, &It::findNext, &It::findPrev);
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
