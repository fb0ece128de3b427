// Trees of any depth: what works on them, and what refuses them with a clear answer.
#include <windows.h>
// windows.h before Automation's headers
#include <gtest/gtest.h>
#include <oleauto.h>
#include <zo/variant/ole_variant.h>
#include <zo/variant/variant.h>
#include <zo/variant/variant_report.h>

#include <sstream>
#include <string>

#include "variant/variant_printers.h"

namespace {

constexpr unsigned int kMost = ZoVariant::kMaxDepth;

TEST(VariantDepth, TakesNoStack) {
  constexpr unsigned int kLevels = 15'000;
  ZoVariant tree = nested(kLevels);
  ZoVariant copy = tree;
  EXPECT_TRUE(tree.isTooDeep() && copy == tree && copy.isEqualTo(tree) && tree.copy() == tree);
  EXPECT_NE(nested(kLevels, L"another"), tree);
  EXPECT_NE(nested(kLevels + 3), tree);
  copy = ZoVariant(*tree.asSequence());
  EXPECT_EQ(copy, tree);
  for (const bool anyOrder : {false, true}) {
    const ZoVariantReport report(tree, nested(kLevels, 5), {.anyOrder = anyOrder});
    ASSERT_EQ(report.changes().size(), anyOrder ? 2u : 1u);
    EXPECT_NE(report.asText().index(L" ..."), ZoString::npos);
  }
  copy = tree.at(1u)->takeDict();
  tree.clear();
  EXPECT_EQ(copy.entries(), 1u);
}

// Every element holds the next levels, so that many containers wait for their end at once.
TEST(VariantDepth, WideTreesAreDestroyedToo) {
  ZoVariant tree;
  for (int level = 0; level < 300; ++level) {
    ZoArray<ZoVariant> array{1, ZoArray<ZoVariant>{}, nested(3), L"text", nested(2)};
    ASSERT_EQ(array.insertAt(static_cast<unsigned int>(level % 6), std::move(tree)), 0);
    tree = ZoVariant(std::move(array));
  }
  ZoVariant copy = tree;
  EXPECT_EQ(copy, tree);
}

TEST(VariantDepth, TheLimitIsStoredPrintedAndExchangedAndOneMoreIsRefused) {
  for (const bool dicts : {false, true}) {
    ZoVariant most(5);
    for (unsigned int level = 0; level < kMost; ++level)
      most = dicts ? inDict(std::move(most)) : inSequence(std::move(most));
    const ZoVariant more = dicts ? inDict(most) : inSequence(most);
    EXPECT_TRUE(!most.isTooDeep() && more.isTooDeep() && most.isTooDeep(1));
    ZoVariant back;
    EXPECT_EQ(back.parse(most.format()), 0);
    EXPECT_EQ(back, most);
    EXPECT_EQ(back.parse(L"Sequence [" + std::wstring(most.format().view()) + L"]"), 1);
    ZoString text(L"untouched");
    EXPECT_EQ(more.format(text), 1);
    EXPECT_EQ(more.get(text), 1);
    std::wostringstream out;
    EXPECT_TRUE((out << more).fail());
    VARIANT ole;
    VariantInit(&ole);
    ASSERT_EQ(ZoVariantToOle(most, ole), 0);
    EXPECT_EQ(ZoVariantToOle(more, ole), 1);
    back = 1;
    EXPECT_EQ(ZoOleToVariant(ole, back), 0);
    EXPECT_EQ(back, most);
    EXPECT_EQ(VariantClear(&ole), S_OK);
  }
}

TEST(VariantDepth, PutAndParseGoNoDeeper) {
  std::wstring path = L"a";
  for (unsigned int level = 1; level < kMost; ++level) path += L"/a";
  ZoVariant tree;
  EXPECT_EQ(tree.put(path + L"/a", 1), 1);
  EXPECT_TRUE(tree.isEmpty());
  EXPECT_EQ(tree.put(path, inSequence(1)), 1);
  EXPECT_EQ(tree.put(path, 1), 0);
  EXPECT_FALSE(tree.isTooDeep());
  EXPECT_EQ(tree.put(L"b", nested(kMost)), 1);
  EXPECT_EQ(tree.put(L"b", nested(kMost - 1)), 0);
  EXPECT_FALSE(tree.isTooDeep());
  std::wstring opened;
  for (int i = 0; i < 100'000; ++i) path += L"/a", opened += L"Sequence [";
  EXPECT_EQ(tree.put(path, 1) + tree.parse(opened), 2);
}

}  // namespace
