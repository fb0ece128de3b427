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

struct Tree : ZoVTree {
  Tree() : ZoVTree(new ZoTreeMem<int, int>) {}
  int add(int key) { return insertAt(&key, &key, &kCompare); }
  int drop(int key, int* out = nullptr) { return removeAt(&key, out, &kCompare); }
  bool isSound() const { return validate(&kCompare); }
};

TEST(TreeEngine, StaysBalancedForEveryOrderOfEightKeys) {
#ifdef ZO_GUARDED
  constexpr unsigned kEach = 500;
#else
  constexpr unsigned kEach = 1;
#endif
  std::vector<int> order(8);
  std::iota(order.begin(), order.end(), 0);
  std::vector<int> removal(order.rbegin(), order.rend());
  unsigned orders = 0;
  do {
    // The removal order runs through the permutations beside.
    std::next_permutation(removal.begin(), removal.end());
    if (orders++ % kEach != 0) continue;
    Tree tree;
    for (const int key : order) ASSERT_TRUE(tree.add(key) == 0 && tree.isSound());
    ASSERT_EQ(tree.count(), 8u);
    for (const int key : removal) ASSERT_TRUE(tree.drop(key) == 0 && tree.isSound());
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(orders, 40320u);
}

TEST(TreeEngine, StaysBalancedUnderRandomOperations) {
#ifdef ZO_GUARDED
  constexpr int kOperations = 1000;
#else
  constexpr int kOperations = 100000;
#endif
  std::mt19937 random(3);
  Tree tree;
  std::set<int> model;
  for (int i = 0; i < kOperations; ++i) {
    // Phases of growth and of shrinking, small enough that checking each time is cheap.
    const int key = static_cast<int>(random() % 64);
    if (random() % 100 < (i / 5000 % 2 == 0 ? 60u : 40u)) {
      ASSERT_EQ(tree.add(key), model.insert(key).second ? 0 : 1);
    } else {
      int out = -1;
      const bool present = model.erase(key) > 0;
      ASSERT_EQ(tree.drop(key, &out), present ? 0 : 1);
      ASSERT_EQ(out, present ? key : -1);
    }
    ASSERT_TRUE(tree.isSound()) << i;
    ASSERT_EQ(tree.count(), model.size());
  }
}

TEST(TreeEngine, AnswersByKeyAndByPositionAndRefusesWhatMakesNoSense) {
  Tree tree;
  int out = -1;
  unsigned index = 7;
  EXPECT_EQ(tree.first(), nullptr);
  EXPECT_EQ(tree.removeFirst(&kCompare, &out), 1);
  EXPECT_EQ(tree.insert(&out, &kCompare), 1) << "these elements have a value";
  for (const int key : {30, 10, 20, 50, 40}) ASSERT_TRUE(tree.add(key) == 0 && tree.add(key) == 1);
  const int forty = 40, absent = 41, value = 5;
  EXPECT_EQ(tree.setAt(&absent, &value, &kCompare), 1);
  EXPECT_EQ(tree.getAt(&absent, &out, &kCompare), 1);
  EXPECT_EQ(tree.getIndex(&absent, &index, &kCompare), 1);
  EXPECT_EQ(tree.at(&forty, nullptr), nullptr);
  EXPECT_EQ(tree.remove(&forty, nullptr), 1);
  EXPECT_EQ(tree.insertAt(&absent, &value, nullptr), 1);
  EXPECT_EQ(tree.apply(nullptr), 1);
  EXPECT_EQ(tree.dump(nullptr, true), 1);
  EXPECT_EQ(tree.getAt(&forty, &out, &kCompare), 0);
  EXPECT_EQ(out, 40);
  EXPECT_EQ(tree.getIndex(&forty, &index, &kCompare), 0);
  EXPECT_EQ(index, 3u);
  EXPECT_EQ(tree.setAt(&forty, &value, &kCompare), 0);
  EXPECT_EQ(*static_cast<int*>(tree.at(&forty, &kCompare)), 5);
  const ZoVTree copy(new ZoTreeMem<int, int>, tree, &kCompare);
  EXPECT_EQ(tree.removeFirst(&kCompare, &out), 0);
  EXPECT_EQ(out, 10);
  EXPECT_EQ(tree.removeLast(&kCompare, &out), 0);
  EXPECT_EQ(out, 50);
  EXPECT_EQ(tree.count(), 3u);
  EXPECT_EQ(copy.count(), 5u);
  EXPECT_TRUE(copy.validate(&kCompare));
}

TEST(TreeEngine, ShowsItsShapeAndIsNotWalkedOnAfterAChange) {
  Tree tree;
  for (int key = 1; key <= 6; ++key) ASSERT_EQ(tree.add(key), 0);
  struct Shape final : ZoVTreeDump {
    std::string text;
    void dump(const void* element, unsigned depth, int balance) override {
      text += std::to_string(*static_cast<const int*>(element)) + '@' + std::to_string(depth) +
              "- +"[balance + 1] + ' ';
    }
  };
  Shape parentsFirst, inOrder;
  EXPECT_EQ(tree.dump(&parentsFirst, true), 0);
  EXPECT_EQ(tree.dump(&inOrder, false), 0);
  EXPECT_EQ(parentsFirst.text, "4@0  2@1  1@2  3@2  5@1+ 6@2  ");
  EXPECT_EQ(inOrder.text, "1@2  2@1  3@2  4@0  5@1+ 6@2  ");

  ZoVTreeIterator it(tree);
  for (const bool removing : {true, false}) {
    EXPECT_TRUE(it.toFirst() && it.next());
    EXPECT_EQ(removing ? tree.drop(3) : tree.add(3), 0);
    EXPECT_FALSE(it.isValid());
    EXPECT_FALSE(it.next());
    EXPECT_EQ(it.current(), nullptr);
  }
  tree.removeAll();
  EXPECT_FALSE(it.toFirst());
}

}  // namespace
