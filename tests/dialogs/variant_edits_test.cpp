// Edits of a variant without a window: each kind, refused ones, undo and redo against a model that
// keeps every state, and what a user sees.
#include <gtest/gtest.h>
#include <zo/dialogs/variant_edits.h>
#include <zo/results.h>
#include <zo/system/registry.h>
#include <zo/system/units.h>

#include <random>
#include <string>
#include <vector>

#include "support/printers.h"
#include "system/attached.h"

namespace {

ZoVariant sample() {
  ZoVariant v;
  const std::pair<const wchar_t*, ZoVariant> values[] = {
      {L"length", ZoVariant(12.0, ZoTypeCode::Length)},
      {L"name", ZoVariant(L"Bolt")},
      {L"count", ZoVariant(3)},
      {L"coated", ZoVariant(true)},
      {L"at", ZoVariant(ZoPoint(1, 2, 3))},
      {L"nothing", ZoVariant()},
      {L"holes", ZoVariant(ZoVariant::kSequence)},
      {L"holes/0", ZoVariant(1)},
      {L"holes/1", ZoVariant(L"two")},
      {L"holes/2", ZoVariant(3.5)},
      {L"a~1b", ZoVariant(L"slash")},
      {L"fixed", ZoVariant(ZoVariant::kDict, ZoTypeCode::Part, ZoFlagConstant)},
      {L"fixed/in", ZoVariant(5)},
      {L"hidden", ZoVariant(ZoVariant::kDict, ZoTypeCode::Dict, ZoFlagInvisible)},
      {L"hidden/length", ZoVariant(7)},
      {L"chunk", ZoVariant(L"00FF", ZoTypeCode::Chunk)},
      {L"pointer", ZoVariant(static_cast<void*>(nullptr))},
  };
  for (const auto& [path, value] : values) EXPECT_EQ(v.put(path, value), 0) << path;
  return v;
}

TEST(VariantEdits, TextsAreReadByKindAndCode) {
  const zo::test::Attached attached;
  const struct {
    const wchar_t* path;
    const wchar_t* text;
    int code;
    const wchar_t* after;
  } cases[] = {
      {L"length", L"2 in", 0, L"50.8"},
      {L"length", L"abc", 1, L"12"},
      {L"length", L"3 kg", 1, L"12"},
      {L"length", L"42.5", 0, L"42.5"},
      {L"length", L"1e999", 1, L"12"},
      {L"name", L"Nut", 0, L"Nut"},
      {L"name", L"", 0, L""},
      {L"count", L"4", 0, L"4"},
      {L"count", L"4.5", 1, L"3"},
      {L"coated", L"FALSE", 0, L"0"},
      {L"coated", L"1", 0, L"1"},
      {L"coated", L"maybe", 1, L"1"},
      {L"at", L"(4, 5, 6)", 0, L"(4, 5, 6)"},
      {L"at", L"4", 1, L"(1, 2, 3)"},
      {L"nothing", L"text", 0, L"text"},
      {L"holes/2", L"7", 0, L"7"},
      {L"a~1b", L"x/y", 0, L"x/y"},
  };
  for (const auto& c : cases) {
    ZoVariantEdits edits(sample());
    const ZoVariant before = edits.value();
    const ZoTypeCode code = before.value(c.path).code();
    EXPECT_EQ(edits.setText(c.path, c.text), c.code) << c.path << L" " << c.text;
    EXPECT_EQ(edits.value().text(c.path), c.after) << c.path;
    if (!before.value(c.path).isEmpty()) {
      EXPECT_EQ(edits.value().value(c.path).code(), code);
    }
    EXPECT_EQ(edits.undoCount(), edits.value() == before ? 0u : 1u);
    while (edits.undo() == 0) continue;
    EXPECT_EQ(edits.value(), before);
  }
}

TEST(VariantEdits, AShownTextChangesNothingHoweverItIsRounded) {
  const zo::test::Attached attached;
  ZoUnitFormat inches;
  inches.unit = L"in";
  inches.precision = 1;
  ASSERT_EQ(ZoSystem::units().setFormat(ZoTypeCode::Length, inches), 0);
  ZoVariantEdits edits(sample());
  const ZoString shown = ZoVariantEdits::textOf(edits.value().value(L"length"));
  EXPECT_EQ(shown, L"0.5 in");
  EXPECT_EQ(edits.setText(L"length", shown), 0);
  EXPECT_EQ(edits.value().value(L"length").asReal(), 12.0);
  EXPECT_FALSE(edits.isChanged());
  EXPECT_EQ(ZoVariantEdits::textOf(edits.value().value(L"coated")), L"true");
}

// One of a client that throws, and that another thread holds then.
TEST(VariantEdits, AUnitsServiceThatGivesNothingIsAskedOnceAndThrowsNothing) {
  const zo::test::Attached attached;
  struct Units : ZoStdUnits {
    Units() noexcept : ZoStdUnits(L'.', L'\0') {}
    int print(double, ZoTypeCode, ZoString&) override { return ++asked, answer(); }
    int parse(const wchar_t*, ZoTypeCode, double&) override { return answer(); }
    [[nodiscard]] int answer() const { return throws ? throw 5 : ZoResult::timeOut; }
    bool throws = true;
    int asked = 0;
  };
  auto* const units = new Units;
  ZoSystem::setUnits(units);
  ZoVariantEdits edits(sample());
  for (const int code : {ZoResult::refused, ZoResult::timeOut}) {
    units->asked = 0;
    for (int i = 0; i < 9; ++i)
      EXPECT_EQ(ZoVariantEdits::textOf(edits.value().value(L"length")), L"12");
    EXPECT_EQ(edits.setText(L"length", L"2 in"), code);
    EXPECT_TRUE(units->throws || units->asked < 3) << "not for each value";
    units->throws = false;
  }
  EXPECT_EQ(edits.undoCount(), 0u);
  delete &ZoSystem::units();
  ZoSystem::setUnits(nullptr);
  EXPECT_EQ(edits.setText(L"length", L"2 in"), 0);
}

TEST(VariantEdits, TheSameNameAndPlaceChangeNothing) {
  ZoVariantEdits edits(sample());
  EXPECT_EQ(edits.rename(L"NAME", L"name"), 0);
  EXPECT_EQ(edits.move(L"holes/1", 1), 0);
  EXPECT_EQ(edits.undoCount(), 0u);
  EXPECT_EQ(edits.rename(L"fixed/in", L"in"), 1) << "not to be edited";
  edits.setReadOnly(true);
  EXPECT_EQ(edits.move(L"holes/1", 1), 1);
}

TEST(VariantEdits, NullPointersAreEmptyTexts) {
  const wchar_t* const null = nullptr;
  ZoVariantEdits edits(sample());
  EXPECT_EQ(edits.elements(null).size(), edits.elements(L"").size());
  EXPECT_TRUE(edits.isEditable(null));
  EXPECT_EQ(edits.setText(L"name", null), 0);
  EXPECT_EQ(edits.value().text(L"name"), L"");
  for (const int code :
       {edits.setText(null, null), edits.setCode(null, ZoTypeCode::Length),
        edits.add(null, null, 1), edits.insert(null, 0, 1), edits.remove(null),
        edits.rename(null, null), edits.rename(L"name", null), edits.move(null, 0)})
    EXPECT_EQ(code, 1);
  EXPECT_EQ(edits.setFlags(null, ZoFlagGlobal), 0);
  EXPECT_EQ(edits.setValue(null, 1), 0);
  EXPECT_EQ(edits.value(), ZoVariant(1));
}

TEST(VariantEdits, WhatIsNotToBeEditedStays) {
  int variable = 5;
  ZoVariant value = sample();
  ASSERT_EQ(value.put(L"reference", ZoVariant(&variable)), 0);
  ZoVariantEdits edits(value);
  for (const wchar_t* path : {L"fixed", L"fixed/in", L"reference", L"chunk", L"pointer", L"gone",
                              L"holes/3", L"holes/x", L"name/x"}) {
    EXPECT_FALSE(edits.isEditable(path)) << path;
    EXPECT_EQ(edits.setText(path, L"1"), 1) << path;
    EXPECT_EQ(edits.setValue(path, ZoVariant(1)), 1) << path;
    EXPECT_EQ(edits.setCode(path, ZoTypeCode::NoType), 1) << path;
    EXPECT_EQ(edits.setFlags(path, 0), 1) << path;
  }
  EXPECT_EQ(edits.setText(L"holes", L"1"), 1) << "a container";
  for (const wchar_t* path : {L"", L"fixed", L"fixed/in", L"gone"})
    EXPECT_EQ(edits.remove(path), 1);
  EXPECT_EQ(edits.add(L"fixed", L"new", ZoVariant(1)), 1);
  EXPECT_EQ(edits.add(L"name", L"new", ZoVariant(1)), 1);
  EXPECT_EQ(edits.add(L"", L"", ZoVariant(1)), 1);
  EXPECT_EQ(edits.add(L"", L"NAME", ZoVariant(1)), 1) << "it is there";
  EXPECT_EQ(edits.insert(L"holes", 4, ZoVariant(1)), 1);
  EXPECT_EQ(edits.insert(L"", 0, ZoVariant(1)), 1);
  EXPECT_EQ(edits.rename(L"name", L"count"), 1);
  EXPECT_EQ(edits.rename(L"holes/0", L"x"), 1);
  EXPECT_EQ(edits.move(L"holes/0", 3), 1);
  EXPECT_EQ(edits.move(L"name", 0), 1);
  EXPECT_EQ(edits.setCode(L"name", ZoTypeCode::Length), 1);
  EXPECT_EQ(edits.value(), value);
  EXPECT_EQ(edits.undoCount(), 0u);
  EXPECT_EQ(edits.remove(L"reference"), 0);
  EXPECT_EQ(edits.undo(), 0);
  EXPECT_TRUE(edits.value().value(L"reference").isReference());
  EXPECT_EQ(variable, 5);
  edits.setReadOnly(true);
  EXPECT_EQ(edits.setText(L"name", L"x"), 1);
  EXPECT_EQ(edits.redo(), 1);
  EXPECT_EQ(edits.value(), value);
}

TEST(VariantEdits, DepthIsBounded) {
  ZoVariant deep = 1;
  std::wstring path;
  for (unsigned i = 0; i < ZoVariant::kMaxDepth; ++i) {
    ZoVariant outer(ZoVariant::kDict);
    ASSERT_EQ(outer.asDict()->insertAt(ZoString(L"a"), std::move(deep)), 0);
    deep = std::move(outer);
    path += i ? L"/a" : L"a";
  }
  ZoVariantEdits edits(deep);
  EXPECT_EQ(edits.setText(path, L"2"), 0);
  EXPECT_EQ(edits.setValue(path, ZoVariant(ZoVariant::kDict)), 1);
  EXPECT_EQ(edits.add(path.substr(2), L"b", ZoVariant(ZoVariant::kSequence)), 1);
  EXPECT_EQ(edits.add(path.substr(2), L"b", ZoVariant(1)), 0);
  EXPECT_EQ(edits.find(ZoRegExp(L"^b$")).size(), 1u);
}

TEST(VariantEdits, PlaceAndChangedFollowUndo) {
  ZoVariantEdits edits(sample());
  const auto at = [&](int code) {
    EXPECT_EQ(code, 0);
    return std::wstring(edits.place().data());
  };
  EXPECT_EQ(at(edits.add(L"", L"x/y", ZoVariant(1))), L"x~1y");
  EXPECT_EQ(at(edits.rename(L"x~1y", L"X/y")), L"X~1y") << "the same key in other case";
  EXPECT_EQ(at(edits.rename(L"X~1y", L"z")), L"z");
  EXPECT_EQ(at(edits.add(L"nothing", L"k", ZoVariant(1))), L"nothing");
  EXPECT_EQ(at(edits.move(L"holes/0", 2)), L"holes/2");
  EXPECT_EQ(at(edits.remove(L"HOLES/1")), L"HOLES");
  EXPECT_EQ(edits.value().text(L"holes/0"), L"two");
  edits.markSaved();
  EXPECT_EQ(at(edits.undo()), L"HOLES/1");
  EXPECT_TRUE(edits.isChanged());
  EXPECT_EQ(at(edits.redo()), L"HOLES");
  EXPECT_FALSE(edits.isChanged());
  EXPECT_EQ(edits.undo(), 0);
  EXPECT_EQ(edits.setText(L"name", L"x"), 0);
  EXPECT_EQ(edits.redoCount(), 0u);
  EXPECT_TRUE(edits.isChanged()) << "as many edits as were saved, but others";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(edits.undo(), 0);
  EXPECT_EQ(at(edits.undo()), L"X~1y");
  EXPECT_EQ(at(edits.undo()), L"x~1y");
  EXPECT_EQ(at(edits.undo()), L"");
  EXPECT_EQ(edits.undo(), ZoResult::refused);
  EXPECT_EQ(edits.value(), sample());
  EXPECT_EQ(std::move(edits).value(), sample());
}

// Random edits, most of them possible; every state is kept and must come back.
TEST(VariantEdits, UndoAndRedoPassThroughEveryState) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    ZoVariant start = sample();
    if (seed % 2) {
      ASSERT_EQ(start.put(L"holes", ZoVariant(ZoVariant::kSequence, ZoTypeCode::List)), 0);
      for (int i = 0; i < 3; ++i)
        ASSERT_EQ(start.put((L"holes/" + std::to_wstring(i)).c_str(), ZoVariant(i)), 0);
    }
    ZoVariantEdits edits(start);
    std::vector<ZoVariant> states{edits.value()};
    size_t at = 0;
    for (int i = 0; i < 150; ++i) {
      const std::wstring hole = L"holes/" + std::to_wstring(below(4));
      const std::wstring key = L"k" + std::to_wstring(below(5));
      int code = 0;
      switch (below(9)) {
        case 0:
          code = edits.setText(hole, std::to_wstring(i));
          break;
        case 1:
          code = edits.insert(L"holes", below(4), ZoVariant(i));
          break;
        case 2:
          code = edits.remove(below(2) ? hole : key);
          break;
        case 3:
          code = edits.add(L"", key, ZoVariant(i));
          break;
        case 4:
          code =
              edits.rename(key, below(2) ? L"K" + key.substr(1) : L"k" + std::to_wstring(below(5)));
          break;
        case 5:
          code = edits.move(hole, below(4));
          break;
        case 6:
          code = edits.setFlags(key, below(2) ? ZoFlagGlobal : ZoFlagParameter);
          break;
        default: {
          const bool isBack = below(2) != 0;
          const bool isPossible = isBack ? at > 0 : at + 1 < states.size();
          EXPECT_EQ(isBack ? edits.undo() : edits.redo(), isPossible ? 0 : 1);
          if (isPossible) at += isBack ? -1 : 1;
          ASSERT_EQ(edits.value(), states[at]);
          continue;
        }
      }
      if (code == 0 && edits.undoCount() == at + 1) {
        states.resize(++at);
        states.push_back(edits.value());
      }
      ASSERT_EQ(edits.value(), states[at]) << "refused, it changes nothing";
      ASSERT_EQ(edits.undoCount(), at);
    }
    while (edits.undo() == 0) ASSERT_EQ(edits.value(), states[--at]);
    EXPECT_EQ(at, 0u);
  }
}

TEST(VariantEdits, ElementsComeInOrderAndHiddenOnesNot) {
  const ZoVariantEdits edits(sample());
  std::wstring seen;
  for (const auto& element : edits.elements(L"")) seen += element.path + L"|";
  EXPECT_EQ(seen, L"a~1b|at|chunk|coated|count|fixed|holes|length|name|nothing|pointer|");
  seen.clear();
  for (const auto& element : edits.elements(L"holes"))
    seen += element.name + L"=" + ZoVariantEdits::textOf(*element.value) + L" ";
  EXPECT_EQ(seen, L"[0]=1 [1]=two [2]=3.5 ");
  EXPECT_TRUE(edits.elements(L"name").empty() && edits.elements(L"gone").empty());
}

TEST(VariantEdits, FindsNamesAndTexts) {
  const ZoVariantEdits edits(sample());
  using enum ZoVariantEdits::Where;
  const auto found = [&](const wchar_t* pattern, ZoVariantEdits::Where where, unsigned most = 99) {
    std::wstring paths;
    for (const ZoString& path : edits.find(ZoRegExp(pattern), where, most)) paths += path + L" ";
    return paths;
  };
  EXPECT_EQ(found(L"^(in|length)$", kInNames), L"fixed/in length ") << "the hidden one not";
  EXPECT_EQ(found(L"^[0-9.]+$", kInValues), L"count fixed/in holes/0 holes/2 length ");
  EXPECT_EQ(found(L"^[0-9.]+$", kInValues, 2), L"count fixed/in ");
  EXPECT_EQ(found(L"t", kInNamesAndValues),
            L"at coated count holes/1 length name nothing pointer ");
  EXPECT_EQ(found(L"[", kInNamesAndValues), L"") << "no expression";
}

TEST(VariantEdits, DifferencesAreThoseOfTheReport) {
  ZoVariantEdits edits(sample());
  ASSERT_EQ(edits.setText(L"holes/1", L"2"), 0);
  const ZoVariantReport report = edits.differencesFrom(sample());
  ASSERT_EQ(report.changes().size(), 1u);
  EXPECT_EQ(report.changes()[0].path, L"holes/1");
  EXPECT_EQ(report.changes()[0].after, ZoVariant(L"2"));
}

}  // namespace
