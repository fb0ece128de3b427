// The editor's window: where it stands, what part of it each pane has, and what it looks like.
#include <gtest/gtest.h>
#include <zo/dialogs/variant_dialog.h>

#include "dialogs/dialog_fixture.h"
#include "dialogs/editor_user.h"

namespace {

using zo::test::edit;
using zo::test::EditorUser;
using namespace zo;  // the editor's controls

RECT boxOf(HWND window) {
  RECT box;
  GetWindowRect(window, &box);
  return box;
}

class EditorWindow : public zo::test::DialogTest {
 protected:
  // In what part of the window's width the list begins, and how wide a column is.
  static LONG border(const EditorUser& user) {
    return boxOf(user.item(kEditorList)).left - boxOf(user.window()).left;
  }
  static LRESULT width(const EditorUser& user, WPARAM column) {
    return SendMessageW(user.item(kEditorList), LVM_GETCOLUMNWIDTH, column, 0);
  }
  static void setWidth(const EditorUser& user, WPARAM column, LPARAM width) {
    SendMessageW(user.item(kEditorList), LVM_SETCOLUMNWIDTH, column, width);
  }
  // As the mouse makes the first column wider.
  static void dragColumn(const EditorUser& user) {
    const LRESULT header = SendMessageW(user.item(kEditorList), LVM_GETHEADER, 0, 0);
    const auto send = [&](UINT message, LRESULT x) {
      SendMessageW(reinterpret_cast<HWND>(header), message, MK_LBUTTON, MAKELPARAM(x, 5));
    };
    const LRESULT edge = width(user, 0) - 1;
    send(WM_LBUTTONDOWN, edge);
    send(WM_MOUSEMOVE, edge + 25);
    send(WM_LBUTTONUP, edge + 25);
    for (MSG posted; PeekMessageW(&posted, user.window(), WM_APP, WM_APP, PM_REMOVE);)
      DispatchMessageW(&posted);
  }
  // Drags the border by so many pixels, with the mouse or, without its button, not at all.
  static void drag(const EditorUser& user, LONG by, bool isPressed = true) {
    POINT at{boxOf(user.item(kEditorTree)).right + 1, boxOf(user.item(kEditorTree)).top + 9};
    ScreenToClient(user.window(), &at);
    const auto send = [&](UINT message, LONG x) {
      SendMessageW(user.window(), message, 0, MAKELPARAM(x, at.y));
    };
    if (isPressed) send(WM_LBUTTONDOWN, at.x);
    send(WM_MOUSEMOVE, at.x + by);
    if (isPressed) send(WM_LBUTTONUP, at.x + by);
    send(WM_MOUSEMOVE, at.x + 2 * by);
  }
  int show(std::function<void(const EditorUser&)> act) {
    return edit(dialog_, {[&](const EditorUser& user) {
                  act(user);
                  user.command(IDCANCEL);
                }});
  }

  ZoVariantDialog dialog_{zo::test::part()};
};

TEST_F(EditorWindow, ItsPlaceIsKeptAndItsSizeHasAMinimum) {
  RECT kept{};
  show([&](const EditorUser& user) {
    SetWindowPos(user.window(), nullptr, 30, 40, 10, 10, SWP_NOZORDER);
    const RECT least = boxOf(user.window());
    EXPECT_GT(least.right - least.left, 300);
    EXPECT_GT(least.bottom - least.top, 200);
    SetWindowPos(user.window(), nullptr, 30, 40, 900, 700, SWP_NOZORDER);
    kept = boxOf(user.window());
  });
  RECT again{};
  const auto see = [&](const EditorUser& user) {
    again = boxOf(user.window());
    EXPECT_LT(boxOf(user.item(kEditorList)).right, again.right);
    EXPECT_LT(boxOf(user.item(IDCANCEL)).bottom, again.bottom);
  };
  show(see);
  EXPECT_TRUE(EqualRect(&kept, &again));
  for (const wchar_t* const odd :
       {L"", L"x", L"-30000 -30000 500 400", L"1 2 99999999999 4", L"0 0 0 0", L"10 10 -5 -5"}) {
    EXPECT_EQ(ZoSystem::cfg().put(L"dialogs@variant@place", ZoString(odd)), 0);
    show(see);
    EXPECT_TRUE(again.left > -1000 && again.right - again.left > 300) << odd;
  }
}

TEST_F(EditorWindow, ItBeginsWithinItsScreen) {
  const RECT area{100, 50, 740, 530};
  const std::pair<RECT, RECT> cases[] = {{{100, 57, 752, 522}, {100, 57, 740, 522}},
                                         {{0, 0, 3000, 3000}, area},
                                         {{700, 500, 800, 600}, {640, 430, 740, 530}},
                                         {{200, 60, 300, 90}, {200, 60, 300, 90}}};
  for (const auto& [box, wanted] : cases) {
    const RECT fitted = fittedInto(area, box);
    EXPECT_TRUE(EqualRect(&fitted, &wanted)) << box.left;
  }
  show([&](const EditorUser& user) {
    const RECT box = boxOf(user.window());
    const RECT fitted = fittedInto({0, 0, GetSystemMetrics(SM_CXSCREEN), LONG_MAX}, box);
    EXPECT_TRUE(EqualRect(&fitted, &box))
        << "drawn at " << box.left << ", as wide as " << box.right - box.left;
  });
}

TEST_F(EditorWindow, TheBorderIsMovedByMouseAndKeysAndNoPaneIsLost) {
  show([](const EditorUser& user) {
    const LONG first = border(user), right = boxOf(user.item(kEditorList)).right;
    drag(user, 60);
    EXPECT_NEAR(border(user), first + 60, 3);
    EXPECT_EQ(boxOf(user.item(kEditorList)).right, right);
    EXPECT_LT(boxOf(user.item(kEditorTree)).right, boxOf(user.item(kEditorList)).left);
    drag(user, -60);
    EXPECT_NEAR(border(user), first, 3);
    drag(user, 60, false);
    EXPECT_NEAR(border(user), first, 3) << "the mouse only passes";
    user.key(kEditorList, VK_RIGHT, {VK_MENU});
    EXPECT_GT(border(user), first);
    user.key(kEditorTree, VK_LEFT, {VK_MENU});
    EXPECT_NEAR(border(user), first, 2);
    for (const LONG by : {-3000, 3000}) {
      drag(user, by);
      for (int i = 0; i < 9; ++i) user.key(kEditorList, by < 0 ? VK_LEFT : VK_RIGHT, {VK_MENU});
      for (const int pane : {kEditorTree, kEditorList}) {
        const RECT box = boxOf(user.item(pane));
        EXPECT_GT(box.right - box.left, 60) << by;
      }
      const LONG end = border(user);
      user.key(kEditorList, by < 0 ? VK_RIGHT : VK_LEFT, {VK_MENU});
      EXPECT_NE(border(user), end) << "one key leads back";
    }
  });
}

TEST_F(EditorWindow, BorderAndColumnsAreKeptOrMadeAnew) {
  constexpr const wchar_t* kSetting = L"dialogs@variant@columns";
  dialog_.compareWith(ZoVariant(ZoVariant::kDict));
  LONG first = 0, moved = 0;
  LRESULT name = 0;
  show([&](const EditorUser& user) {
    first = border(user), name = width(user, 0);
    drag(user, 50);
    moved = border(user);
    setWidth(user, EditorRows::kName, 77);
    user.command(kEditorOnlyDifferences);
    setWidth(user, EditorRows::kOther, 55);
    user.command(kEditorOnlyDifferences);
  });
  for (const bool isShownAtTheEnd : {false, true})
    show([&](const EditorUser& user) {
      EXPECT_NEAR(border(user), moved, 1);
      EXPECT_EQ(width(user, EditorRows::kName), 77);
      user.command(kEditorOnlyDifferences);
      EXPECT_EQ(width(user, EditorRows::kOther), 55);
      if (!isShownAtTheEnd) user.command(kEditorOnlyDifferences);
    });
  for (const wchar_t* const odd : {L"", L"x", L"1 2", L"5000 1 2 3 4 x", L"5000 1 2 3 4 99999",
                                   L"5000 1 2 3 4 5 6", L"-1 -1 -1 -1 -1 -1"}) {
    EXPECT_EQ(ZoSystem::cfg().put(kSetting, ZoString(odd)), 0);
    show([&](const EditorUser& user) {
      EXPECT_NEAR(border(user), first, 1) << odd;
      EXPECT_EQ(width(user, 0), name) << odd;
    });
  }
  EXPECT_EQ(ZoSystem::cfg().put(kSetting, ZoString(L"32767 0 0 0 0 0")), 0);
  show([&](const EditorUser& user) {
    EXPECT_LT(border(user), boxOf(user.item(kEditorList)).right - boxOf(user.window()).left);
    EXPECT_GT(width(user, 0), 10) << "a column of no width is not found again";
  });
}

TEST_F(EditorWindow, TheFieldStaysOverItsCellWithWhatIsTyped) {
  show([](const EditorUser& user) {
    user.select(L"coating");
    user.command(kEditorEdit);
    user.type(kEditorField, L"tin");
    const std::function<void()> changes[] = {
        [&] { SetWindowPos(user.window(), nullptr, 0, 0, 900, 700, SWP_NOZORDER); },
        [&] { drag(user, 70); },
        [&] { dragColumn(user); },
        [&] { SetWindowPos(user.window(), nullptr, 0, 0, 700, 500, SWP_NOZORDER); },
    };
    for (const auto& change : changes) {
      change();
      RECT cell{LVIR_LABEL, EditorRows::kValue, 0, 0};
      SendMessageW(user.item(kEditorList), LVM_GETSUBITEMRECT, 0, reinterpret_cast<LPARAM>(&cell));
      MapWindowPoints(user.item(kEditorList), nullptr, reinterpret_cast<POINT*>(&cell), 2);
      const RECT field = boxOf(user.item(kEditorField));
      EXPECT_TRUE(user.isFieldOpen() && user.text(kEditorField) == L"tin");
      EXPECT_TRUE(field.left == cell.left && field.top == cell.top) << &change - changes;
    }
    user.key(kEditorField, VK_RETURN);
    EXPECT_EQ(user.cell(0, EditorRows::kValue), L"tin");
    user.command(kEditorUndo);
  });
}

TEST_F(EditorWindow, DifferencesAndPropertiesAreDrawn) {
  ZoVariant other = zo::test::part();
  EXPECT_EQ(other.put(L"length", ZoVariant(25.4, ZoTypeCode::Length)), 0);
  EXPECT_EQ(other.put(L"coating", ZoVariant(L"nickel", ZoTypeCode::String, ZoFlagParameter)), 0);
  EXPECT_EQ(other.put(L"finish", ZoVariant(L"polished")), 0);
  dialog_.compareWith(other);
  const auto compare = [](const EditorUser& user) {
    user.command(kEditorOnlyDifferences);
    expectPicture(user.window(), "variant_differences");
    user.select(L"length");
    user.command(kEditorProperties);
    user.command(IDCANCEL);
  };
  const auto look = [](const EditorUser& element) {
    expectPicture(element.window(), "variant_properties");
    element.command(IDCANCEL);
  };
  EXPECT_EQ(edit(dialog_, {compare, look}), ZoResult::cancelled);
}

}  // namespace
