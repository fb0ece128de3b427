// What differs between two trees, by path.
#include <gtest/gtest.h>
#include <zo/variant/variant_report.h>

#include <sstream>
#include <string>
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

void expectReport(const wchar_t* before, const wchar_t* after, const wchar_t* report,
                  const Options& options = {}) {
  SCOPED_TRACE(testing::PrintToString(ZoString(before)) + testing::PrintToString(ZoString(after)));
  EXPECT_EQ(ZoVariantReport(tree(before), tree(after), options).asText(), report);
}

TEST(VariantReport, NamesWhatWasAddedRemovedAndChanged) {
  expectReport(L"Int 1", L"Int 1", L"");
  expectReport(L"Int 1", L"Dict {}", L"* : Int 1 -> Dict {}\n");
  expectReport(
      LR"(Dict { "keep" = Int 1 "Gone" = Int 2
                  "part" = Part { "length" = Length 5 "a/b~" = Int 1 } })",
      LR"(Dict { "new" = String "x" "KEEP" = Int 1 "PART" = Part { "length" = Length 6 } })",
      LR"(- Gone: Int 2
+ new: String "x"
- part/a~1b~0: Int 1
* part/length: Length 5 -> Length 6
)");
  expectReport(L"Dict {}", L"Dict { \"d\" = Dict { \"x\" = Int 1 } }",
               L"+ d: Dict {\n\t\"x\" = Int 1\n}\n");
}

TEST(VariantReport, OneInsertedElementIsOneAddition) {
  const wchar_t* const three = L"Sequence [Int 1 Int 2 Int 3]";
  for (const auto& [after, report] : std::vector<std::pair<const wchar_t*, const wchar_t*>>{
           {L"Sequence [Int 0 Int 1 Int 2 Int 3]", L"+ 0: Int 0\n"},
           {L"Sequence [Int 1 Int 9 Int 2 Int 3]", L"+ 1: Int 9\n"},
           {L"Sequence [Int 1 Int 2 Int 3 Int 3]", L"+ 3: Int 3\n"},
           {L"Sequence [Int 1 Int 3]", L"- 1: Int 2\n"},
           {L"Sequence []", L"- 0: Int 1\n- 1: Int 2\n- 2: Int 3\n"},
           {L"Sequence [Int 7 Int 8 Int 9 Int 10]",
            L"* 0: Int 1 -> Int 7\n* 1: Int 2 -> Int 8\n* 2: Int 3 -> Int 9\n+ 3: Int 10\n"}})
    expectReport(three, after, report);
  expectReport(L"Sequence [Sequence [Int 1] Int 5]", L"Sequence [Sequence [Int 2] Int 5]",
               L"* 0/0: Int 1 -> Int 2\n");
}

TEST(VariantReport, OrderDoesNotCountWhenToldSo) {
  Options any;
  any.anyOrder = true;
  expectReport(L"Sequence [Int 1 Int 2 Int 2]", L"Sequence [Int 2 Int 1 Int 2]", L"", any);
  expectReport(L"Sequence [Int 1 Int 2 Int 2]", L"Sequence [Int 2 Int 1 Int 1]",
               L"- 2: Int 2\n+ 2: Int 1\n", any);
  expectReport(L"Sequence [Int 1]", L"Sequence [Int 2 Int 3 Int 1]", L"+ 0: Int 2\n+ 1: Int 3\n",
               any);
  const wchar_t* const nested =
      L"Dict { \"l\" = Sequence [Dict { \"x\" = Sequence [Int 1 Int 2] } Int 5] }";
  const wchar_t* const turned =
      L"Dict { \"l\" = Sequence [Int 5 Dict { \"x\" = Sequence [Int 2 Int 1] }] }";
  expectReport(nested, turned, L"", any);
  EXPECT_FALSE(ZoVariantReport(tree(nested), tree(turned)).isEmpty());
}

TEST(VariantReport, TolerancesDecideAndNotANumberIsNoChange) {
  Options loose;
  loose.tol = ZoTol(0.5, 0.25);
  expectReport(L"Sequence [Real 1 Point (0, 0, 0) Vector (0, 0, 0)]",
               L"Sequence [Real 1.5 Point (0.5, 0, 0) Vector (0, 0.26, 0)]",
               L"* 2: Vector (0, 0, 0) -> Vector (0, 0.26, 0)\n", loose);
  expectReport(L"Sequence [Real nan Real inf]", L"Sequence [Real nan Real nan]",
               L"* 1: Real inf -> Real nan\n");
}

TEST(VariantReport, CodesAndFlagsCountUnlessToldOtherwise) {
  const wchar_t* const before =
      L"Dict { \"a\" = Length:A 1 \"b\" = Part { \"x\" = Int 1 } \"c\" = Int 1 }";
  const wchar_t* const after =
      L"Dict { \"a\" = Angle:B 1 \"b\" = Class:C { \"x\" = Int 1 } \"c\" = Real 1 }";
  expectReport(before, after,
               L"* a: Length:A 1 -> Angle:B 1\n* b: Part {} -> Class:C {}\n* c: Int 1 -> Real 1\n");
  Options noFlags;
  noFlags.flags = false;
  expectReport(L"Int:A 1", L"Int:B 1", L"", noFlags);
  expectReport(L"Length:A 1", L"Angle:B 1", L"* : Length:A 1 -> Angle:B 1\n", noFlags);
  Options values;
  values.flags = values.codes = false;
  expectReport(before, after, L"", values);
  expectReport(L"Int 1", L"String \"1\"", L"* : Int 1 -> String \"1\"\n", values);
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
  ZoVariant patched = before;
  for (const Change& change : report.changes()) {
    const ZoVariant* const old = before.find(change.path);
    const ZoVariant* const now = after.find(change.path);
    EXPECT_EQ(old ? *old : ZoVariant(), change.before);
    EXPECT_EQ(now ? *now : ZoVariant(), change.after);
    EXPECT_EQ(change.kind == Change::kRemoved ? patched.asDict()->removeAt(change.path)
                                              : patched.put(change.path, change.after),
              0);
  }
  EXPECT_EQ(patched, after);
  EXPECT_EQ(report.count(Change::kChanged), 3u);
  EXPECT_EQ(report.count(Change::kAdded), 2u);
  EXPECT_EQ(report.count(Change::kRemoved), 1u);

  const ZoVariantReport brief(tree(LR"(Dict { "a" = Int 1 "b" = Int 2 })"),
                              tree(LR"(Dict { "b" = Int 3 "c" = Int 4 })"));
  EXPECT_EQ(brief.asVariant(), tree(LR"(Sequence [
    Dict { "Change" = String "Removed" "Path" = String "a" "Before" = Int 1 }
    Dict { "Change" = String "Changed" "Path" = String "b" "Before" = Int 2 "After" = Int 3 }
    Dict { "Change" = String "Added" "Path" = String "c" "After" = Int 4 }
  ])"));
  std::wostringstream out;
  out << brief;
  EXPECT_EQ(out.str(), L"- a: Int 1\n* b: Int 2 -> Int 3\n+ c: Int 4\n");
}

}  // namespace
