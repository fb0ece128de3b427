// The balance of the tree engine, and what its iterator promises.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

const ZoCompare<int> kByValue;
const ZoTreeCompare<int> kCompare(kByValue);

struct Tree : ZoVTree {
  Tree() : ZoVTree(new ZoTreeMem<int, int>) {}
  int add(int key) { return insertAt(&key, &key, &kCompare); }
  int drop(int key) { return removeAt(&key, nullptr, &kCompare); }
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
    for (const int key : removal) ASSERT_TRUE(tree.drop(key) == 0 && tree.isSound());
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(orders, 40320u);
}

TEST(TreeEngine, IsNotWalkedOnAfterAChange) {
  Tree tree;
  for (int key = 1; key <= 6; ++key) ASSERT_EQ(tree.add(key), 0);
  ZoVTreeIterator it(tree);
  for (const bool removing : {true, false}) {
    EXPECT_TRUE(it.toFirst() && it.next());
    EXPECT_EQ(removing ? tree.drop(3) : tree.add(3), 0);
    EXPECT_FALSE(it.isValid() || it.next());
  }
}

}  // namespace
