// What differs between two trees, by path.
#include <gtest/gtest.h>
#include <zo/variant/variant_report.h>

#include <vector>

#include "variant/variant_printers.h"

namespace {

using Options = ZoVariantReportOptions;

ZoVariant tree(const wchar_t* text) {
  ZoVariant value;
  unsigned int end = 0;
  EXPECT_EQ(value.parse(text, &end), 0) << end;
  return value;
}

TEST(VariantReport, TellsTheFewestChangesThatCount) {
  Options anyOrder, loose, noFlags, values;
  anyOrder.anyOrder = true;
  loose.tol = ZoTol(0.5, 0.25);
  noFlags.flags = values.flags = values.codes = false;
  struct Case {
    const wchar_t *before, *after, *report;
    Options options = {};
  };
  for (const Case& c : std::vector<Case>{
           {L"Int 1", L"Dict {}", L"* : Int 1 -> Dict {}\n"},
           {LR"(Dict { "a" = Int 1 "Gone" = Int 2 "part" = Part { "l" = Int 5 "a/b~" = Int 1 } })",
            LR"(Dict { "new" = String "x" "A" = Int 1 "PART" = Part { "l" = Int 6 } })",
            L"- Gone: Int 2\n+ new: String \"x\"\n- part/a~1b~0: Int 1\n* part/l: Int 5 -> Int "
            L"6\n"},
           {L"Sequence [Int 1 Int 2]", L"Sequence [Int 0 Int 1 Int 2]", L"+ 0: Int 0\n"},
           {L"Sequence [Int 1 Int 2 Int 3]", L"Sequence [Int 1 Int 3]", L"- 1: Int 2\n"},
           {L"Sequence [Int 1 Int 2]", L"Sequence [Int 7 Int 8 Int 9]",
            L"* 0: Int 1 -> Int 7\n* 1: Int 2 -> Int 8\n+ 2: Int 9\n"},
           {L"Sequence [Int 1 Int 2 Int 2]", L"Sequence [Int 2 Int 1 Int 1]",
            L"- 2: Int 2\n+ 2: Int 1\n", anyOrder},
           {L"Sequence [Dict { \"x\" = Sequence [Int 1 Int 2] } Int 5]",
            L"Sequence [Int 5 Dict { \"x\" = Sequence [Int 2 Int 1] }]", L"", anyOrder},
           {L"Sequence [Int 1 Int 2 Int 3 Int 4 Int 5]",
            L"Sequence [Int 0 Int 1 Int 2 Int 4 Int 5]", L"+ 0: Int 0\n- 2: Int 3\n"},
           {L"Sequence [Int 5 Int 1 Int 5 Int 2 Dict { \"x\" = Int 1 } Int 3 Int 5 Int 4]",
            L"Sequence [Int 1 Int 5 Int 2 Dict { \"x\" = Int 2 } Int 3 Int 5 Int 4 Int 9]",
            L"- 0: Int 5\n* 4/x: Int 1 -> Int 2\n+ 7: Int 9\n"},
           {L"Sequence [Int 2 Int 3]", L"Sequence [Int 3 Int 2 Int 2 Int 1 Int 3 Int 3 Int 2]",
            L"+ 0: Int 3\n+ 2: Int 2\n+ 3: Int 1\n+ 5: Int 3\n+ 6: Int 2\n"},
           {L"Sequence [Int 0 Sequence [Int 1 Int 2] Int 3]",
            L"Sequence [Sequence [Int 1 Int 2 Int 4] Int 3]", L"- 0: Int 0\n+ 0/2: Int 4\n"},
           {L"Sequence [Int 9 Int 1 Sequence [Int 2 Int 3]]",
            L"Sequence [Int 1 Sequence [Int 2 Int 3 Int 4]]", L"- 0: Int 9\n+ 1/2: Int 4\n"},
           {L"Sequence [Real 0 Real 0.4 Real 0.8]", L"Sequence [Real 0.8 Real 0 Real 1.2]",
            L"* 0: Real 0 -> Real 0.8\n", loose},
           {L"Sequence [Real nan Real inf]", L"Sequence [Real nan Real nan]",
            L"* 1: Real inf -> Real nan\n"},
           {L"Sequence [Real 1 Vector (0, 0, 0)]", L"Sequence [Real 1.5 Vector (0, 0.26, 0)]",
            L"* 1: Vector (0, 0, 0) -> Vector (0, 0.26, 0)\n", loose},
           {L"Sequence [Int:A 1 Part { \"x\" = Int 1 }]", L"Sequence [Int:B 1 Class {}]",
            L"* 0: Int:A 1 -> Int:B 1\n* 1: Part {} -> Class {}\n- 1/x: Int 1\n"},
           {L"Int:A 1", L"Int:B 1", L"", noFlags},
           {L"Length:A 1", L"Angle:B 1", L"* : Length:A 1 -> Angle:B 1\n", noFlags},
           {L"Length:A 1", L"Angle:B 1", L"", values},
           {L"Int 1", L"String \"1\"", L"* : Int 1 -> String \"1\"\n", values}})
    EXPECT_EQ(ZoVariantReport(tree(c.before), tree(c.after), c.options).asText(), c.report);
}

// Every change's path leads to its values; making the changes makes the old tree the new one.
TEST(VariantReport, IsAListOfChangesWhosePathsLeadToTheValues) {
  using Change = ZoVariantChange;
  const ZoVariant before = tree(
      LR"(Dict {
    "" = Dict { "x" = Int 1 }
    "a" = Dict { "x/y" = Int 1 "z" = Sequence [Int 1 Int 2] }
    "b" = Int 1 })");
  const ZoVariant after = tree(
      LR"(Dict {
    "" = Dict { "x" = Int 2 }
    "a" = Dict { "x/y" = Int 2 "z" = Sequence [Int 1 Int 5 Int 7] }
    "c/" = Dict { "" = Int 1 } })");
  const ZoVariantReport report(before, after);
  const ZoVariant rows = report.asVariant();
  EXPECT_EQ(rows.entries(), 6u);
  ZoVariant patched = before;
  unsigned int n = 0;
  for (const Change& change : report.changes()) {
    const wchar_t* const words[] = {L"", L"Added", L"Removed", L"Changed"};
    const ZoVariant& row = *rows.at(n++);
    EXPECT_EQ(row.text(L"Change"), words[change.kind]);
    EXPECT_EQ(row.text(L"Path"), change.path);
    EXPECT_TRUE(row.value(L"Before") == change.before && row.value(L"After") == change.after);
    EXPECT_EQ(row.entries(), change.kind == Change::kChanged ? 4u : 3u);
    const ZoVariant* const old = before.find(change.path);
    const ZoVariant* const now = after.find(change.path);
    EXPECT_EQ(old ? *old : ZoVariant(), change.before);
    EXPECT_EQ(now ? *now : ZoVariant(), change.after);
    EXPECT_EQ(change.kind == Change::kRemoved ? patched.asDict()->removeAt(change.path)
                                              : patched.put(change.path, change.after),
              0);
  }
  EXPECT_EQ(patched, after);
}

// Each of these took longer than anybody waits: the time doubled with every level, or grew with the
// third power of the elements.
TEST(VariantReport, LooksAtEachPairOfElementsOnce) {
  Options anyOrder;
  anyOrder.anyOrder = true;
  EXPECT_EQ(ZoVariantReport(nested(250, 1), nested(250, 2), anyOrder).changes().size(), 2u);
  EXPECT_TRUE(ZoVariantReport(nested(250, 1), nested(250, 1), anyOrder).isEmpty());
  ZoArray<ZoVariant> up, down;
  for (int i = 0; i < 5'000; ++i) {
    ASSERT_EQ(up.emplace(i), 0);
    ASSERT_EQ(down.prepend(i), 0);
  }
  EXPECT_TRUE(ZoVariantReport(up, down, anyOrder).isEmpty());
  EXPECT_EQ(ZoVariantReport(up, down).changes().size(), 2 * 4'999u);
}

}  // namespace
