// The rows of the editor's list beside the elements that ZoVariantEdits has.
#include "dialogs/editor_rows.h"

#include <gtest/gtest.h>

#include "dialogs/editor_user.h"

namespace {

using zo::EditorRows;

ZoVariant odd() {
  ZoVariant value = zo::test::part();
  for (const wchar_t* const key : {L"a~1b", L"a~0b", L"Z", L"z1", L"z10", L"z2", L"\xE4", L"0"})
    EXPECT_EQ(value.put(key, ZoVariant(key)), 0);
  EXPECT_EQ(value.put(L"hidden", ZoVariant(1, ZoTypeCode::Int, ZoFlagInvisible)), 0);
  EXPECT_EQ(value.put(L"many", ZoVariant(ZoVariant::kSequence)), 0);
  for (int i = 0; i < 12; ++i)
    EXPECT_EQ(value.put(ZoString(L"many/" + std::to_wstring(i)).view(), ZoVariant(i)), 0);
  EXPECT_EQ(value.put(L"many/5", ZoVariant(5, ZoTypeCode::Int, ZoFlagInvisible)), 0);
  EXPECT_EQ(value.find(L"supplier")->asDict()->insertAt(ZoString(), ZoVariant(3)), 0);
  return value;
}

TEST(EditorRows, AreTheElementsOfEachContainer) {
  const ZoVariantEdits edits(odd());
  for (const wchar_t* const container : {L"", L"holes", L"many", L"supplier"}) {
    const auto elements = edits.elements(container);
    const EditorRows rows(edits, ZoString(container), nullptr);
    ASSERT_EQ(rows.count(), static_cast<int>(elements.size())) << container;
    for (int i = 0; i < rows.count(); ++i) {
      const auto& element = elements[static_cast<size_t>(i)];
      EXPECT_EQ(rows.at(i)->path, element.path);
      EXPECT_EQ(rows.at(i)->name, element.name);
      EXPECT_EQ(rows.at(i)->value, element.value);
      EXPECT_EQ(rows.text(i, EditorRows::kName), element.name);
      EXPECT_EQ(rows.indexOf(element.path), i) << element.path.toUtf8();
      EXPECT_EQ(edits.value().find(element.path.view()), element.value);
      EXPECT_LE(rows.startingWith(element.name.view(), 0), i);
      EXPECT_EQ(rows.startingWith(element.name.view(), i), i);
    }
    for (const int none : {-1, rows.count()})
      EXPECT_TRUE(!rows.at(none) && rows.text(none, EditorRows::kOther).isEmpty());
    for (const wchar_t* const none : {L"hidden", L"many/5", L"gone", L"many/99"})
      EXPECT_EQ(rows.indexOf(ZoString(none)), -1);
  }
}

TEST(EditorRows, HaveTheOtherOnesBesideAndBehind) {
  const ZoVariantEdits edits(odd());
  ZoVariant other = edits.value();
  EXPECT_EQ(other.put(L"many/7", ZoVariant(70)), 0);
  EXPECT_EQ(other.put(L"many/12", ZoVariant(12)), 0);
  EXPECT_EQ(other.put(L"gone~1too", ZoVariant(L"x")), 0);
  const zo::EditorDifferences differences(edits.value(), other);
  const auto shown = [&](const wchar_t* container) {
    const EditorRows rows(edits, ZoString(container), &differences);
    std::wstring all;
    for (int i = 0; i < rows.count(); ++i)
      for (const int column : {EditorRows::kName, EditorRows::kValue, EditorRows::kOther})
        all += std::wstring(rows.text(i, column).view()) + L"|";
    return all;
  };
  EXPECT_EQ(shown(L"many"), L"[7]|7|70|[12]||12|");
  EXPECT_EQ(shown(L""), L"many|Elements: 12||gone/too||x|");
  EXPECT_EQ(shown(L"name"), L"") << "no such element";
  EXPECT_EQ(shown(L"length"), L"Value|12||");
}

// All that is in it differs, and has no element of the other one beside it.
TEST(EditorRows, HaveAllOfWhatIsOfAnotherKindThere) {
  ZoVariant value(ZoVariant::kDict), five = 5;
  for (const wchar_t* const path : {L"same", L"x/p", L"x/q/deep"}) EXPECT_EQ(value.put(path, 1), 0);
  const auto shown = [&](const ZoVariant& other, const wchar_t* container) {
    const ZoVariantEdits edits(value);
    const zo::EditorDifferences differences(value, other);
    const EditorRows rows(edits, ZoString(container), &differences);
    std::wstring all;
    for (int i = 0; i < rows.count(); ++i) {
      if (edits.value().find(rows.at(i)->path.view()) == rows.at(i)->value) {
        EXPECT_EQ(rows.indexOf(rows.at(i)->path), i);
      }
      all += std::wstring(rows.text(i, EditorRows::kName).view()) + L'|' +
             rows.text(i, EditorRows::kOther).data() + L'|';
    }
    return all;
  };
  EXPECT_EQ(shown(five, L""), L"Value|5|same||x||");
  EXPECT_EQ(shown(ZoVariant(), L""), L"Value||same||x||");
  EXPECT_EQ(shown(ZoVariant(ZoVariant::kSequence), L""), L"Value|Elements: 0|same||x||");
  EXPECT_EQ(shown(five, L"x/q"), L"deep||");
  ZoVariant inside = value;
  EXPECT_EQ(inside.put(L"x", five), 0);
  EXPECT_EQ(shown(inside, L""), L"x|5|");
  EXPECT_EQ(shown(inside, L"x"), L"p||q||");
  EXPECT_EQ(shown(inside, L"x/q"), L"deep||");
  ZoVariant heads = value;
  heads.setFlags(ZoFlagParameter);
  heads.find(L"x")->setFlags(ZoFlagParameter);
  EXPECT_EQ(shown(heads, L""), L"Value||x||") << "only flags";
  EXPECT_EQ(shown(heads, L"x"), L"");
  EXPECT_EQ(value.asDict()->insertAt(ZoString(), ZoVariant(1)), 0);
  ZoVariant unnamed = value;
  *unnamed.asDict()->at(ZoString()) = ZoVariant(2);
  EXPECT_EQ(shown(unnamed, L""), L"|2|") << "its path is that of the whole";
}

TEST(EditorRows, StayWhenOneValueChangesInItsPlace) {
  ZoVariantEdits edits(odd());
  const EditorRows rows(edits, ZoString(), nullptr);
  const int row = rows.indexOf(ZoString(L"z10"));
  EXPECT_EQ(edits.setText(L"z10", L"other"), 0);
  EXPECT_EQ(rows.text(row, EditorRows::kValue), L"other");
  EXPECT_EQ(rows.indexOf(ZoString(L"z10")), row);
  EXPECT_EQ(edits.undo(), 0);
  EXPECT_EQ(rows.text(row, EditorRows::kValue), L"z10");
}

}  // namespace
