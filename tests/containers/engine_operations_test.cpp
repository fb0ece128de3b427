// Operations of the engines that the typed containers do by themselves, or not at all.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <string>
#include <utility>
#include <vector>

#include "support/failing_memory.h"

namespace {

using zo::test::FailingMemory;

const ZoCompare<int> kByValue;
const ZoHashValue<int> kHash;
const ZoHashKey<int> kHashKey(kHash);

template <class Base>
class Collect final : public Base {
 public:
  std::string seen;
  void applyTo(void* element) override { add(*static_cast<const int*>(element)); }
  void add(int value) { seen += std::to_string(value) + ' '; }
};

template <class Engine, class Apply>
std::string textOf(Engine& engine) {
  Collect<Apply> collect;
  EXPECT_EQ(engine.apply(&collect), 0);
  return collect.seen;
}

template <class Iterator, class Apply, class Engine, class Compare>
void expectSequence(Engine engine, Engine empty, const Compare& compare) {
  const auto text = [](Engine& e) { return textOf<Engine, Apply>(e); };
  const int five = 5, nine = 9;
  int out = 0;
  for (int i = 0; i < 5; ++i) ASSERT_EQ(engine.append(&i), 0);
  EXPECT_EQ(engine.getAt(3, &out) + engine.setAt(3, &five) + engine.prepend(&nine), 0);
  EXPECT_EQ(out, 3);
  EXPECT_EQ(text(engine), "9 0 1 2 5 4 ");

  Engine copy(engine), assigned(empty);
  assigned = copy;
  EXPECT_TRUE(copy.isEqualTo(engine, &compare) && assigned.isEqualTo(engine, &compare));
  EXPECT_EQ(copy.removeLast(&out), 0);
  EXPECT_FALSE(copy.isEqualTo(engine, &compare) || copy.isEqualTo(engine, nullptr));
  EXPECT_EQ(copy.removeFirst(nullptr) + copy.reverse(), 0);
  assigned = std::move(copy);
  EXPECT_EQ(text(assigned), "5 2 1 0 ");
  EXPECT_EQ(empty.copyFrom(assigned) + assigned.copyFrom(assigned) + empty.append(empty), 0);
  EXPECT_EQ(text(empty), "5 2 1 0 5 2 1 0 ");

  Iterator it(empty);
  EXPECT_TRUE(it.atFirst() && it.findNext(&five, &compare) && it.findPrev(&five, &compare));
  EXPECT_TRUE(it.atFirst() && !it.findPrev(&five, &compare) && !it.isValid());
  EXPECT_EQ(it.current(), nullptr);
  EXPECT_EQ(it.remove(nullptr), 1);
  EXPECT_EQ(it.insert(nullptr), 1);
  EXPECT_EQ(it.insert(&nine), 0);
  EXPECT_TRUE(it.atLast() && *static_cast<int*>(it.current()) == 9);
  EXPECT_TRUE(it.to(1));
  EXPECT_EQ(it.remove(&out) + it.insert(&nine), 0);
  EXPECT_EQ(text(empty), "5 9 1 0 5 2 1 0 9 ");
  EXPECT_TRUE(it.next() && it.toLast() && !it.next() && !it.next() && !it.prev());
  EXPECT_FALSE(it.toFirst() && it.findNext(&nine, nullptr));
  EXPECT_FALSE(it.toLast() && it.findPrev(nullptr, &compare));
  it.reset(engine);
  EXPECT_EQ(it.current(), engine.first());
  if (!FailingMemory::isPossible()) return;
  const FailingMemory poor(1, FailingMemory::kForGood);
  EXPECT_EQ(engine.append(empty), 2);
  EXPECT_EQ(engine.copyFrom(empty), 2);
}

TEST(SequenceEngines, DoWhatTypedContainersSeldomAsk) {
  expectSequence<ZoVArrayIterator, ZoVArrayApply>(ZoVArray(new ZoArrayTable<int>, 0, 4),
                                                  ZoVArray(new ZoArrayTable<int>, 0, 4),
                                                  ZoArrayCompare<int>(kByValue));
  expectSequence<ZoVListIterator, ZoVListApply>(
      ZoVList(new ZoListMem<int>), ZoVList(new ZoListMem<int>), ZoListCompare<int>(kByValue));
  ZoVArray array(new ZoArrayTable<int>, 4, 3);
  for (int i = 1; i < 4; ++i) ASSERT_EQ(array.append(&i), 0);
  EXPECT_EQ(array.shiftRight(2) * 10 + array.shiftLeft(9), 1);
  EXPECT_EQ((textOf<ZoVArray, ZoVArrayApply>(array)), "0 0 1 2 3 ");
  EXPECT_EQ(array.shiftLeft(3) + array.shiftLeft(0) + array.shiftRight(0), 0);
  EXPECT_EQ((textOf<ZoVArray, ZoVArrayApply>(array)), "2 3 ");
  EXPECT_EQ(array.removeAll(true), 0);
  EXPECT_EQ(array.capacity(), 0u);
}

TEST(HashEngine, DoesWhatTypedDictionariesSeldomAsk) {
  ZoVHash hash(ZoHashTable<int, int>::make(4), 4, 9.0);
  const ZoHashCompare<int> compare(kByValue);
  for (const int i : {8, 4, 1, 0}) ASSERT_EQ(hash.insertAt(&i, &i, &kHashKey), 0);
  const int four = 4, five = 5;
  int out = 0;
  EXPECT_TRUE(hash.contains(&four, &compare) && hash.isValid(&four, &kHashKey));
  EXPECT_FALSE(hash.contains(&five, &compare) || hash.isValid(&five, &kHashKey));
  EXPECT_EQ(hash.findKey(&four, &out, &compare) + hash.getAt(&four, &out, &kHashKey), 0);
  EXPECT_EQ(hash.findKey(&five, &out, &compare), 1);
  EXPECT_EQ(hash.setAt(&four, &five, &kHashKey) * 10 + hash.setAt(&five, &five, &kHashKey), 1);
  EXPECT_EQ(hash.getPosition(&four, &kHashKey), 0u);
  EXPECT_EQ(hash.getPosition(&five, &kHashKey), zo::npos);
  EXPECT_EQ(hash.collisionRatio(), 0.5);
  const auto text = [&] { return textOf<ZoVHash, ZoVHashApply>(hash); };
  EXPECT_EQ(text(), "8 5 0 1 ");
  EXPECT_EQ(hash.resize(&kHashKey), 0);
  EXPECT_EQ(text(), "8 0 1 5 ") << "bucket by bucket, and in a bucket as before";

  ZoVHashIterator it(hash);
  EXPECT_TRUE(it.atFirst() && it.findNext(&four, &compare) && !it.atFirst());
  EXPECT_EQ(*static_cast<const int*>(it.key()), 4);
  EXPECT_EQ(it.remove(&out) * 10 + it.remove(&out), 1) << "it stood on the last";
  EXPECT_TRUE(out == 5 && !it.key() && !it.current() && !it.next());
  EXPECT_FALSE(it.toFirst() && it.findNext(&four, nullptr));
  EXPECT_EQ(hash.removeAt(&four, &out, &kHashKey) + hash.removeAt(&five, nullptr, &kHashKey), 2);

  // Only resize() gives everything up when there is no memory, and says so.
  if (!FailingMemory::isPossible()) return;
  const auto withoutMemory = [](auto operation) {
    const FailingMemory poor(1, FailingMemory::kForGood);
    return operation();
  };
  EXPECT_EQ(withoutMemory([&] { return hash.setCapacity(64, 0.7, &kHashKey); }), 2);
  EXPECT_EQ(text(), "8 0 1 ");
  EXPECT_EQ(hash.loadFactor(), 9.0);
  it.toFirst();
  EXPECT_EQ(withoutMemory([&] { return hash.resize(&kHashKey); }), 2);
  EXPECT_TRUE(hash.isEmpty() && hash.buckets() == 0 && !it.isValid());
  EXPECT_EQ(hash.insertAt(&four, &four, &kHashKey) + hash.resize(&kHashKey), 2);
}

// Keys alone: an element that is its own key and value.
struct KeyMem final : ZoVTreeMem {
  struct Node : ZoVTreeNode {
    int key = 0;
  };
  KeyMem() : ZoVTreeMem(sizeof(Node), alignof(Node)) {}
  ZoVTreeMem* makeNew() const override { return new KeyMem; }
  int newNode(const void* key, const void*, ZoVTreeNode*& node) override {
    auto* const made = ::new (pool_.allocate()) Node;
    made->key = *static_cast<const int*>(key);
    made->element = &made->key;
    node = made;
    return 0;
  }
  void deleteNode(ZoVTreeNode* node) override { pool_.release(node); }
  const void* key(const void* element) const override { return element; }
  void* value(void* element) const override { return element; }
  int assignKey(void* to, const void* from) override { return assignValue(to, from); }
  int assignValue(void* to, const void* from) override {
    *static_cast<int*>(to) = *static_cast<const int*>(from);
    return 0;
  }
  int moveValue(void* to, void* from) override { return assignValue(to, from); }
};

class Shape final : public ZoVTreeDump {
 public:
  std::string seen;
  void dump(const void* element, unsigned depth, int balance) override {
    seen += std::to_string(*static_cast<const int*>(element)) + '@' + std::to_string(depth) +
            (balance == 0  ? " "
             : balance > 0 ? "+ "
                           : "- ");
  }
};

TEST(TreeEngine, DoesWhatTypedTreesSeldomAsk) {
  const ZoTreeCompare<int> compare(kByValue);
  const auto backwards = zo::compareBy<int>([](int a, int b) { return b - a; });
  const ZoTreeCompare<int> descending(backwards);
  ZoVTree tree(new KeyMem);
  for (const int key : {2, 1, 3, 4}) ASSERT_EQ(tree.insert(&key, &compare), 0);
  const int one = 1, nine = 9;
  int out = 0;
  unsigned index = 7;
  EXPECT_EQ(tree.insert(&one, &compare), 1);
  EXPECT_EQ(tree.getIndex(&one, &index, &compare) + tree.getAt(&one, &out, &compare), 0);
  EXPECT_TRUE(index == 0 && out == 1);
  EXPECT_EQ(tree.getIndex(&nine, &index, &compare) + tree.setAt(&nine, &one, &compare), 2);
  Shape parents, inOrder;
  EXPECT_EQ(tree.dump(&parents, true) + tree.dump(&inOrder, false) + tree.dump(nullptr, true), 1);
  EXPECT_EQ(parents.seen, "2@0+ 1@1 3@1+ 4@2 ");
  EXPECT_EQ(inOrder.seen, "1@1 2@0+ 3@1+ 4@2 ");

  ZoVTree copy(new KeyMem, tree, &descending);
  EXPECT_TRUE(copy.validate(&descending) && copy.count() == 4);
  EXPECT_EQ((textOf<ZoVTree, ZoVTreeApply>(copy)), "4 3 2 1 ");
  ZoVTreeIterator it(copy);
  EXPECT_EQ(copy.removeFirst(&descending, &out) + copy.removeLast(&descending, nullptr), 0);
  EXPECT_TRUE(out == 4 && !it.isValid() && it.toFirst() && it.next() && !it.next());
  tree = std::move(copy);
  EXPECT_EQ((textOf<ZoVTree, ZoVTreeApply>(tree)), "3 2 ");
  EXPECT_EQ(tree.remove(&one, &descending) + tree.remove(nullptr, &descending) +
                tree.removeFirst(nullptr, nullptr) + ZoVTree(nullptr).insert(&one, &compare),
            4);
}

TEST(TreeEngine, IsNotWalkedOnAfterAChange) {
  const ZoTreeCompare<int> compare(kByValue);
  ZoVTree tree(new KeyMem);
  for (int key = 1; key <= 6; ++key) ASSERT_EQ(tree.insert(&key, &compare), 0);
  const int three = 3;
  ZoVTreeIterator it(tree);
  for (const bool removing : {true, false}) {
    EXPECT_TRUE(it.toFirst() && it.next());
    EXPECT_EQ(removing ? tree.remove(&three, &compare) : tree.insert(&three, &compare), 0);
    EXPECT_FALSE(it.isValid() || it.next());
  }
}

}  // namespace
