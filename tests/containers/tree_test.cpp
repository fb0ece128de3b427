// The tree engine: balance after every operation, order, positions, and what iterators promise.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

const ZoCompare<int> kByValue;
const ZoTreeCompare<int> kCompare(kByValue);

// An element that is a key alone.
class KeyMem final : public ZoVTreeMem {
 public:
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
  int assignKey(void* to, const void* from) override { return zo::assignElement<int>(to, from); }
  int assignValue(void* to, const void* from) override { return zo::assignElement<int>(to, from); }
  int moveValue(void* to, void* from) override { return zo::moveElement<int>(to, from); }

 private:
  struct Node : ZoVTreeNode {
    int key = 0;
  };
};

std::vector<int> keysOf(const ZoVTree& tree) {
  std::vector<int> keys;
  for (ZoVTreeIterator it(tree); it.isValid(); it.next())
    keys.push_back(*static_cast<int*>(it.current()));
  return keys;
}

TEST(Tree, StaysBalancedForEveryOrderOfEightKeys) {
  std::vector<int> order(8);
  std::iota(order.begin(), order.end(), 0);
  std::vector<int> removal(order.rbegin(), order.rend());
  unsigned orders = 0;
  do {
#ifdef ZO_GUARDED
    if (orders++ % 500 != 0) continue;
#else
    ++orders;
#endif
    ZoVTree tree(new KeyMem);
    for (const int key : order) {
      ASSERT_EQ(tree.insert(&key, &kCompare), 0);
      ASSERT_TRUE(tree.validate(&kCompare));
    }
    ASSERT_EQ(tree.count(), 8u);
    // Every order of removal comes up too: the removal order runs through the permutations beside.
    std::next_permutation(removal.begin(), removal.end());
    for (const int key : removal) {
      ASSERT_EQ(tree.remove(&key, &kCompare), 0);
      ASSERT_TRUE(tree.validate(&kCompare));
    }
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(orders, 40320u);
}

TEST(Tree, StaysBalancedUnderRandomOperations) {
#ifdef ZO_GUARDED
  constexpr int kOperations = 1000;
#else
  constexpr int kOperations = 100000;
#endif
  std::mt19937 random(3);
  ZoVTree tree(new KeyMem);
  std::set<int> model;
  for (int i = 0; i < kOperations; ++i) {
    // Phases of growth and of shrinking, small enough that checking each time is cheap.
    const int key = static_cast<int>(random() % 64);
    if (random() % 100 < (i / 5000 % 2 == 0 ? 60u : 40u)) {
      ASSERT_EQ(tree.insert(&key, &kCompare), model.insert(key).second ? 0 : 1);
    } else {
      int out = -1;
      const bool present = model.erase(key) > 0;
      ASSERT_EQ(tree.removeAt(&key, &out, &kCompare), present ? 0 : 1);
      ASSERT_EQ(out, present ? key : -1);
    }
    ASSERT_TRUE(tree.validate(&kCompare)) << i;
    ASSERT_EQ(tree.count(), model.size());
    if (i % 101 == 0) {
      ASSERT_EQ(keysOf(tree), std::vector<int>(model.begin(), model.end()));
    }
  }
}

TEST(Tree, AnswersByKeyAndByPosition) {
  ZoVTree tree(new ZoTreeMem<int, int>);
  int out = -1;
  unsigned index = 7;
  EXPECT_EQ(tree.first(), nullptr);
  EXPECT_EQ(tree.removeFirst(&kCompare, &out), 1);
  EXPECT_EQ(tree.insert(&out, &kCompare), 1) << "these elements have a value";
  for (const int key : {30, 10, 20, 50, 40}) {
    const int value = key * 2;
    ASSERT_EQ(tree.insertAt(&key, &value, &kCompare), 0);
    ASSERT_EQ(tree.insertAt(&key, &value, &kCompare), 1);
  }
  const int forty = 40, absent = 41, value = 5;
  EXPECT_EQ(*static_cast<int*>(tree.at(&forty, &kCompare)), 80);
  EXPECT_EQ(tree.at(&absent, &kCompare), nullptr);
  EXPECT_EQ(tree.getAt(&forty, &out, &kCompare), 0);
  EXPECT_EQ(out, 80);
  EXPECT_EQ(tree.getAt(&absent, &out, &kCompare), 1);
  EXPECT_EQ(tree.setAt(&forty, &value, &kCompare), 0);
  EXPECT_EQ(tree.setAt(&absent, &value, &kCompare), 1);
  EXPECT_EQ(*static_cast<int*>(tree.at(&forty, &kCompare)), 5);
  EXPECT_EQ(tree.getIndex(&forty, &index, &kCompare), 0);
  EXPECT_EQ(index, 3u);
  EXPECT_EQ(tree.getIndex(&absent, &index, &kCompare), 1);
  EXPECT_EQ(tree.at(&forty, nullptr), nullptr);
  EXPECT_EQ(tree.remove(&forty, nullptr), 1);
  EXPECT_EQ(tree.insertAt(&absent, &value, nullptr), 1);
  EXPECT_EQ(tree.apply(nullptr), 1);
  EXPECT_EQ(tree.dump(nullptr, true), 1);
  ZoVTree copy(new ZoTreeMem<int, int>, tree, &kCompare);
  EXPECT_EQ(tree.removeFirst(&kCompare, &out), 0);
  EXPECT_EQ(out, 20);
  EXPECT_EQ(tree.removeLast(&kCompare, &out), 0);
  EXPECT_EQ(out, 100);
  EXPECT_EQ(tree.count(), 3u);
  EXPECT_EQ(copy.count(), 5u);
  EXPECT_TRUE(copy.validate(&kCompare));
}

TEST(Tree, ShowsItsShape) {
  ZoVTree tree(new KeyMem);
  for (int key = 1; key <= 6; ++key) ASSERT_EQ(tree.insert(&key, &kCompare), 0);
  struct Shape final : ZoVTreeDump {
    std::string text;
    void dump(const void* element, unsigned depth, int balance) override {
      text += std::to_string(*static_cast<const int*>(element)) + '@' + std::to_string(depth) +
              (balance < 0   ? "- "
               : balance > 0 ? "+ "
                             : " ");
    }
  };
  Shape parentsFirst, inOrder;
  EXPECT_EQ(tree.dump(&parentsFirst, true), 0);
  EXPECT_EQ(tree.dump(&inOrder, false), 0);
  EXPECT_EQ(parentsFirst.text, "4@0 2@1 1@2 3@2 5@1+ 6@2 ");
  EXPECT_EQ(inOrder.text, "1@2 2@1 3@2 4@0 5@1+ 6@2 ");
}

TEST(Tree, IteratorIsNotValidAfterAChange) {
  ZoVTree tree(new KeyMem);
  for (int key = 1; key <= 6; ++key) tree.insert(&key, &kCompare);
  ZoVTreeIterator it(tree);
  it.next();
  const int three = 3;
  tree.remove(&three, &kCompare);
  EXPECT_FALSE(it.isValid());
  EXPECT_FALSE(it.next());
  EXPECT_EQ(it.current(), nullptr);
  EXPECT_TRUE(it.toFirst());
  tree.removeAll();
  EXPECT_FALSE(it.isValid());
  EXPECT_FALSE(it.toFirst());
}

}  // namespace
