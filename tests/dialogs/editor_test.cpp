// The editor of variants as a user has it before him.
#include <gtest/gtest.h>
#include <objbase.h>
#include <zo/dialogs/message_box.h>
#include <zo/dialogs/variant_dialog.h>

#include <ranges>
#include <vector>

#include "dialogs/dialog_fixture.h"
#include "dialogs/editor_user.h"

namespace {

using zo::test::DialogUser;
using zo::test::edit;
using zo::test::EditorUser;
using namespace zo;  // the editor's controls

ZoVariant sample() {
  ZoVariant v;
  const std::pair<const wchar_t*, ZoVariant> values[] = {
      {L"length", ZoVariant(12.0, ZoTypeCode::Length)},
      {L"name", ZoVariant(L"Bolt")},
      {L"holes", ZoVariant(ZoVariant::kSequence)},
      {L"holes/0", ZoVariant(1)},
      {L"holes/1", ZoVariant(L"two")},
      {L"holes/2", ZoVariant(3.5)},
      {L"deep/inner/x", ZoVariant(7)},
      {L"a~1b", ZoVariant(L"slash")},
      {L"fixed", ZoVariant(5, ZoTypeCode::Int, ZoFlagConstant)},
      {L"lines", ZoVariant(L"one\ntwo")},
      {L"hidden", ZoVariant(1, ZoTypeCode::Int, ZoFlagInvisible)},
  };
  for (const auto& [path, value] : values) EXPECT_EQ(v.put(path, value), 0) << path;
  return v;
}

ZoVariant without(const ZoVariant& value, const wchar_t* path) {
  ZoVariantEdits edits(value);
  EXPECT_EQ(edits.remove(path), 0);
  return edits.value();
}

// Further dialogs: a message box is answered, an element's dialog filled in.
std::function<void(EditorUser)> press(int button) {
  return [button](const EditorUser& box) { DialogUser::press(box.window(), button); };
}
enum ElementControl { kName = 100, kType, kValue, kFlags, kReason };
std::function<void(EditorUser)> fill(const wchar_t* name, const wchar_t* type,
                                     const wchar_t* value) {
  return [=](const EditorUser& element) {
    element.type(kName, name);
    SendMessageW(element.item(kType), CB_SELECTSTRING, static_cast<WPARAM>(-1),
                 reinterpret_cast<LPARAM>(type));
    element.type(kValue, value);
    DialogUser::press(element.window(), IDOK);
  };
}

class Editing : public zo::test::DialogTest {
 protected:
  ZoVariantDialog dialog_{sample()};
};

TEST_F(Editing, ListAndTreeShowWhatIsThere) {
  const auto look = [](const EditorUser& user) {
    EXPECT_EQ(user.column(), L"a/b deep fixed holes length lines name");
    EXPECT_EQ(user.branch(), L"deep holes");
    EXPECT_EQ(user.column(1), L"String Dictionary Integer Sequence Length String String");
    EXPECT_EQ(user.cell(1, 2), L"Elements: 1");
    EXPECT_EQ(user.cell(2, 3), L"Constant Value");
    EXPECT_EQ(user.status(), L"a~1b");
    user.select(L"holes");
    user.key(kEditorList, VK_RETURN);
    EXPECT_EQ(user.column(), L"[0] [1] [2]");
    EXPECT_EQ(user.textOf(user.next(nullptr, TVGN_CARET)), L"holes");
    user.key(kEditorList, VK_BACK);
    EXPECT_EQ(user.status(), L"holes") << "back where it was entered";
    HTREEITEM const deep = user.next(user.next(nullptr, TVGN_ROOT), TVGN_CHILD);
    user.choose(deep);
    EXPECT_EQ(user.column(), L"inner");
    EXPECT_EQ(user.branch(deep), L"") << "not filled before it is opened";
    user.key(kEditorTree, VK_RETURN);
    EXPECT_EQ(user.branch(deep), L"inner");
    user.choose(user.next(deep, TVGN_CHILD));
    EXPECT_EQ(user.column(2), L"7");
    user.command(IDCANCEL);
  };
  EXPECT_EQ(edit(dialog_, {look}), ZoResult::cancelled);
}

TEST_F(Editing, WhatIsTypedIsTakenOrRefusedWithAReason) {
  const struct {
    const wchar_t* row;
    int command;
    const wchar_t* typed;
    const wchar_t* says;  // null: taken
  } cases[] = {
      {L"length", kEditorEdit, L"abc", L"\u201Cabc\u201D is no value of the type Length."},
      {L"length", kEditorEdit, L"2 in", nullptr},
      {L"a/b", kEditorEdit, L"x/y~", nullptr},
      {L"name", kEditorRename, L"", L"A name is needed."},
      {L"name", kEditorRename, L"LENGTH", L"There is an element LENGTH already."},
      {L"name", kEditorRename, L"Na/me", nullptr},
      {L"holes", kEditorRename, L"holes", nullptr},
  };
  const auto type = [&](const EditorUser& user) {
    for (const auto& c : cases) {
      user.enter(c.row, c.command, c.typed);
      EXPECT_EQ(user.isFieldOpen(), c.says != nullptr) << c.typed;
      if (!c.says) continue;
      EXPECT_EQ(user.status(), c.says);
      user.command(IDOK);
      user.command(kEditorRemove);
      EXPECT_TRUE(user.isFieldOpen()) << "neither leaves nor loses what is typed";
      EXPECT_EQ(user.text(kEditorField), c.typed);
      user.key(kEditorField, VK_ESCAPE);
      EXPECT_FALSE(user.isFieldOpen());
    }
    EXPECT_EQ(user.column(), L"Na/me a/b deep fixed holes length lines");
    user.select(L"Na/me");
    user.command(kEditorEdit);
    user.type(kEditorField, L"typed last");
    user.command(IDOK);
  };
  EXPECT_EQ(edit(dialog_, {type}), 0);
  ZoVariant after = without(sample(), L"name");
  EXPECT_EQ(after.put(L"length", ZoVariant(50.8, ZoTypeCode::Length)), 0);
  EXPECT_EQ(after.put(L"a~1b", ZoVariant(L"x/y~")), 0);
  EXPECT_EQ(after.put(L"Na~1me", ZoVariant(L"typed last")), 0);
  EXPECT_EQ(dialog_.value(), after);
}

TEST_F(Editing, ElementsAreAddedMovedRemovedAndAllComesBack) {
  const auto work = [](const EditorUser& user) {
    user.command(kEditorAdd);
    EXPECT_EQ(user.status(), L"new~1one");
    user.command(kEditorAdd);
    EXPECT_EQ(user.branch(), L"deep holes list");
    user.select(L"holes");
    user.key(kEditorList, VK_RETURN);
    user.select(0);
    user.key(kEditorList, VK_INSERT);
    EXPECT_EQ(user.column(2), L"1 30 mm two 3.5");
    EXPECT_EQ(user.selected(), 1);
    user.key(kEditorList, VK_DOWN, {VK_MENU});
    user.key(kEditorList, VK_DOWN, {VK_MENU});
    user.key(kEditorList, VK_DOWN, {VK_MENU});
    EXPECT_EQ(user.column(2), L"1 two 3.5 30 mm") << "and no further";
    user.key(kEditorList, VK_UP, {VK_MENU});
    user.select(0);
    user.key(kEditorList, VK_DELETE);
    EXPECT_EQ(user.column(2), L"two 30 mm 3.5");
    EXPECT_EQ(user.selected(), 0);
    user.choose(user.next(user.next(nullptr, TVGN_ROOT), TVGN_CHILD));
    user.key(kEditorTree, VK_DELETE);
    EXPECT_EQ(user.branch(), L"holes list") << "the tree's own choice, not the list's";
    user.choose(user.next(nullptr, TVGN_ROOT));
    const std::wstring whole = user.column();
    user.key(kEditorTree, VK_DELETE);
    EXPECT_EQ(user.column(), whole) << "nor is the list's removed for the whole value";
    for (int i = 0; i < 99; ++i) user.key(kEditorList, 'Z', {VK_CONTROL});
    EXPECT_FALSE(IsWindowEnabled(user.item(kEditorUndo)));
    EXPECT_EQ(user.branch(), L"deep holes");
    EXPECT_EQ(user.column(), L"a/b deep fixed holes length lines name");
    for (int i = 0; i < 99; ++i) user.key(kEditorList, 'Y', {VK_CONTROL});
    EXPECT_EQ(user.branch(), L"holes list");
    user.command(IDOK);
  };
  EXPECT_EQ(edit(dialog_, {work, fill(L"new/one", L"Mass", L"2 kg"), fill(L"list", L"List", L""),
                           fill(L"", L"Length", L"30")}),
            0);
  EXPECT_EQ(dialog_.value().text(L"holes/1"), L"30");
  EXPECT_EQ(dialog_.value().value(L"holes/1").code(), ZoTypeCode::Length);
  EXPECT_EQ(dialog_.value().value(L"new~1one").code(), ZoTypeCode::Mass);
  EXPECT_EQ(dialog_.value().value(L"list").code(), ZoTypeCode::List);
  EXPECT_FALSE(dialog_.value().find(L"deep"));
}

TEST_F(Editing, TheElementsDialogRefusesAndStaysOpen) {
  const auto open = [](const EditorUser& user) {
    user.command(kEditorAdd);
    user.select(L"length");
    user.key(kEditorList, VK_RETURN, {VK_MENU});
    user.select(L"lines");
    user.command(kEditorEdit);
    user.command(IDOK);
  };
  const auto repeat = [](const EditorUser& element) {
    const std::pair<const wchar_t*, const wchar_t*> refused[] = {
        {L"", L"A name is needed."}, {L"NAME", L"There is an element NAME already."}};
    for (const auto& [name, reason] : refused) {
      element.type(kName, name);
      element.command(IDOK);
      EXPECT_EQ(element.text(kReason), reason);
    }
    fill(L"fine", L"Bool", L"perhaps")(element);
    element.command(IDOK);
    EXPECT_EQ(element.text(kReason), L"\u201Cperhaps\u201D is no value of the type Bool.");
    fill(L"fine", L"Bool", L"true")(element);
  };
  const auto flag = [](const EditorUser& element) {
    LVITEMW ticked = {};
    ticked.stateMask = LVIS_STATEIMAGEMASK;
    ticked.state = INDEXTOSTATEIMAGEMASK(2U);
    SendMessageW(element.item(kFlags), LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&ticked));
    fill(L"length", L"XDistance", L"1 m")(element);
  };
  const auto lines = [](const EditorUser& element) {
    EXPECT_EQ(element.text(kValue), L"one\r\ntwo");
    fill(L"lines", L"Path", L"three\r\nfour")(element);
  };
  EXPECT_EQ(edit(dialog_, {open, repeat, flag, lines}), 0);
  EXPECT_EQ(dialog_.value().value(L"fine"), ZoVariant(true));
  EXPECT_EQ(dialog_.value().value(L"length"),
            ZoVariant(1000.0, ZoTypeCode::XDistance, ZoFlagCreateList));
  EXPECT_EQ(dialog_.value().value(L"lines"), ZoVariant(L"three\nfour", ZoTypeCode::Path));
}

TEST_F(Editing, WhatIsNotToBeEditedIsOnlyShown) {
  int variable = 5;
  ZoVariant value = sample();
  const std::wstring_view zero(L"a\0b", 3);
  const std::pair<const wchar_t*, ZoVariant> odd[] = {
      {L"reference", ZoVariant(&variable)},
      {L"pointer", ZoVariant(static_cast<void*>(&variable))},
      {L"chunk", ZoVariant(std::wstring(9000, L'F'), ZoTypeCode::Chunk)},
      {L"zero", ZoVariant(zero)},
  };
  for (const auto& [name, each] : odd) EXPECT_EQ(value.put(name, each), 0);
  dialog_.setValue(value);
  const auto tryAll = [&](const EditorUser& user) {
    for (const auto& [name, each] : odd) {
      user.select(name);
      user.command(kEditorEdit);
      EXPECT_FALSE(user.isFieldOpen()) << name;
    }
    user.select(L"fixed");
    user.command(kEditorRemove);
    EXPECT_EQ(user.status(), L"This value is not to be edited.");
    user.command(IDOK);
  };
  const auto look = [](const EditorUser& element) {
    const auto style = GetWindowLongW(element.item(kValue), GWL_STYLE);
    EXPECT_TRUE(style & ES_READONLY);
    EXPECT_TRUE(style & ES_AUTOHSCROLL) << "to wrap long texts takes minutes";
    EXPECT_LE(element.text(kValue).size(), 4096u) << "of a chunk the beginning";
    if (element.text(kName) == L"chunk") {
      EXPECT_EQ(element.text(kReason), L"Only the first 4096 of 9000 characters are shown.");
    }
    element.command(IDCANCEL);
  };
  EXPECT_EQ(edit(dialog_, {tryAll, look, look, look, look}), 0);
  EXPECT_EQ(dialog_.value(), value);
  EXPECT_EQ(variable, 5);

  dialog_.setReadOnly(true);
  const auto onlyLook = [&](const EditorUser& user) {
    EXPECT_FALSE(IsWindowVisible(user.item(IDOK)));
    for (int id = kEditorAdd; id <= kEditorRedo; ++id) {
      EXPECT_EQ(IsWindowEnabled(user.item(id)) != 0, id == kEditorProperties) << id;
      if (id != kEditorProperties) user.command(id);
    }
    user.select(L"name");
    user.command(kEditorRename);
    EXPECT_FALSE(user.isFieldOpen());
    user.key(kEditorList, VK_RETURN);
    user.command(IDCANCEL);
  };
  EXPECT_EQ(edit(dialog_, {onlyLook, look}), ZoResult::cancelled);
  EXPECT_EQ(dialog_.value(), value);
}

TEST_F(Editing, ClosingAsksOnlyWhenSomethingChanged) {
  const std::function<void(const EditorUser&)> ways[] = {
      [](const EditorUser& user) { user.command(IDCANCEL); },
      [](const EditorUser& user) { user.key(kEditorList, VK_ESCAPE); },
      [](const EditorUser& user) { SendMessageW(user.window(), WM_SYSCOMMAND, SC_CLOSE, 0); },
  };
  for (const auto& leave : ways) {
    EXPECT_EQ(edit(dialog_, {leave}), ZoResult::cancelled);
    const auto change = [&](const EditorUser& user) {
      user.enter(L"name", kEditorEdit, L"Nut");
      leave(user);
      user.enter(L"name", kEditorEdit, L"Screw");  // it stayed
      leave(user);
    };
    EXPECT_EQ(edit(dialog_, {change, press(IDNO), press(IDYES)}), ZoResult::cancelled);
    const auto undone = [&](const EditorUser& user) {
      user.enter(L"name", kEditorEdit, L"Nut");
      user.command(kEditorUndo);
      leave(user);
    };
    EXPECT_EQ(edit(dialog_, {undone}), ZoResult::cancelled);
    for (const wchar_t* const typed : {L"2 in", L"refused"}) {
      const auto type = [&](const EditorUser& user) {
        user.select(L"length");
        user.command(kEditorEdit);
        user.type(kEditorField, typed);
        leave(user);
        leave(user);
      };
      EXPECT_EQ(edit(dialog_, {type, press(IDNO), press(IDYES)}), ZoResult::cancelled);
    }
    EXPECT_EQ(dialog_.value(), sample());
  }
}

TEST_F(Editing, WhatCannotBeTakenIsSaidAndStaysWithItsEdits) {
  std::vector<ZoString> given;
  dialog_.takeBy([&](const ZoVariant& value) {
    given.push_back(value.text(L"name"));
    return ZoString(given.size() < 3 ? L"The disk is full." : L"");
  });
  const auto work = [](const EditorUser& user) {
    user.enter(L"name", kEditorEdit, L"Nut");
    user.command(IDOK);
    user.command(kEditorUndo);
    user.command(IDOK);
    user.command(kEditorRedo);
    user.command(IDOK);
  };
  const auto say = [](const EditorUser& box) {
    EXPECT_NE(DialogUser::words(box.window()).find(L"The disk is full."), std::wstring::npos);
    DialogUser::press(box.window(), IDOK);
  };
  EXPECT_EQ(edit(dialog_, {work, say, say}), 0);
  EXPECT_EQ(given, (std::vector<ZoString>{L"Nut", L"Bolt", L"Nut"}));
  EXPECT_EQ(dialog_.value().text(L"name"), L"Nut");
}

TEST_F(Editing, FindsNamesAndTextsOneAfterTheOther) {
  const auto look = [](const EditorUser& user) {
    user.key(kEditorList, 'F', {VK_CONTROL});
    EXPECT_EQ(GetFocus(), user.item(kEditorFind));
    user.type(kEditorFind, L"^(X|two|LENGTH)$");
    const wchar_t* const rows[] = {L"[1]", L"length", L"x", L"[1]"};
    user.key(kEditorFind, VK_RETURN);
    EXPECT_EQ(user.cell(user.selected(), 0), L"x");
    EXPECT_EQ(user.status(), L"Found: 1 of 3.");
    for (const wchar_t* const row : rows) {
      user.key(kEditorList, VK_F3);
      EXPECT_EQ(user.cell(user.selected(), 0), row);
    }
    user.key(kEditorList, VK_F3, {VK_SHIFT});
    EXPECT_EQ(user.cell(user.selected(), 0), L"x");
    for (const wchar_t* const pattern : {L"[", L"nowhere"}) {
      user.type(kEditorFind, pattern);
      user.command(kEditorFindNext);
      EXPECT_EQ(user.cell(user.selected(), 0), L"x");
      EXPECT_EQ(user.status() == L"Nothing was found.", *pattern == L'n') << user.status();
    }
    user.type(kEditorFind, L"");
    user.key(kEditorFind, VK_RETURN);
    EXPECT_EQ(user.status(), L"deep/inner/x") << "no more of what was looked for before";
    user.command(IDCANCEL);
  };
  EXPECT_EQ(edit(dialog_, {look}), ZoResult::cancelled);
}

TEST_F(Editing, OnlyDifferencesAreShownBesideTheOtherValues) {
  ZoVariant other = without(without(sample(), L"name"), L"holes/0");
  EXPECT_EQ(other.put(L"deep/inner/x", ZoVariant(8)), 0);
  EXPECT_EQ(other.put(L"gone", ZoVariant(L"before")), 0);
  dialog_.compareWith(other);
  const auto look = [](const EditorUser& user) {
    user.command(kEditorOnlyDifferences);
    EXPECT_EQ(user.column(), L"deep holes name gone");
    EXPECT_EQ(user.cell(3, EditorRows::kOther), L"before");
    EXPECT_EQ(user.cell(3, EditorRows::kValue), L"");
    user.command(kEditorRemove);
    user.select(L"gone");
    for (const int id : {kEditorEdit, kEditorRename, kEditorRemove, kEditorProperties})
      user.command(id);
    user.select(L"holes");
    user.command(kEditorEdit);
    EXPECT_EQ(user.column(2), L"1");
    user.command(kEditorOuter);
    user.command(kEditorUndo);
    user.select(L"deep");
    user.command(kEditorEdit);
    user.command(kEditorEdit);
    EXPECT_EQ(user.column(EditorRows::kOther), L"8");
    user.enter(L"x", kEditorEdit, L"8");
    EXPECT_EQ(user.rows(), 0) << "no difference any more";
    user.command(kEditorOuter);
    EXPECT_TRUE(IsDlgButtonChecked(user.window(), kEditorOnlyDifferences)) << "but elsewhere";
    user.type(kEditorFind, L"Bolt|slash");
    user.command(kEditorFindNext);
    EXPECT_EQ(user.cell(user.selected(), 0), L"a/b") << "what is found is shown";
    EXPECT_FALSE(IsDlgButtonChecked(user.window(), kEditorOnlyDifferences));
    user.command(IDOK);
  };
  EXPECT_EQ(edit(dialog_, {look}), 0);
  ZoVariant after = sample();
  EXPECT_EQ(after.put(L"deep/inner/x", ZoVariant(8)), 0);
  EXPECT_EQ(dialog_.value(), after);
}

TEST_F(Editing, NothingIsTooDeepNorTooMuch) {
  ZoVariant deep = 1;
  for (unsigned i = 0; i < ZoVariant::kMaxDepth; ++i) {
    ZoVariant outer(ZoVariant::kDict);
    ASSERT_EQ(outer.asDict()->insertAt(ZoString(L"a"), std::move(deep)), 0);
    deep = std::move(outer);
  }
  dialog_.setValue(deep);
  const auto goDown = [](const EditorUser& user) {
    for (unsigned i = 1; i < ZoVariant::kMaxDepth; ++i) user.command(kEditorEdit);
    user.enter(L"a", kEditorEdit, L"2");
    EXPECT_EQ(user.column(2), L"2");
    user.command(kEditorAdd);
    user.command(IDOK);
  };
  const auto tooDeep = [](const EditorUser& element) {
    fill(L"b", L"Dictionary", L"")(element);
    element.command(IDOK);
    EXPECT_EQ(element.text(kReason), L"That is not possible here.");
    element.command(IDCANCEL);
  };
  EXPECT_EQ(edit(dialog_, {goDown, tooDeep}), 0);

  static constexpr int kMany = 20'000;
  ZoArray<ZoVariant> many;
  for (int i = 0; i < kMany; ++i) {
    ZoVariant one(ZoVariant::kDict);
    ASSERT_EQ(one.put(L"n", ZoVariant(i)), 0);
    ASSERT_EQ(many.append(std::move(one)), 0);
  }
  dialog_.setValue(ZoVariant(std::move(many)));
  const auto goFar = [](const EditorUser& user) {
    EXPECT_EQ(user.rows(), kMany);
    HTREEITEM item = user.next(user.next(nullptr, TVGN_ROOT), TVGN_CHILD);
    for (unsigned i = 0; i < EditorTree::kMostInBranch; ++i) item = user.next(item, TVGN_NEXT);
    EXPECT_EQ(user.textOf(item), L"19000 more: see the list");
    user.choose(item);
    user.select(kMany - 1);
    user.command(kEditorEdit);
    EXPECT_EQ(user.textOf(user.next(nullptr, TVGN_CARET)), L"[19999]");
    user.enter(L"n", kEditorEdit, L"-1");
    user.command(kEditorOuter);
    user.command(kEditorRemove);
    EXPECT_EQ(user.rows(), kMany - 1);
    EXPECT_EQ(user.selected(), kMany - 2);
    user.command(kEditorUndo);
    user.command(IDOK);
  };
  EXPECT_EQ(edit(dialog_, {goFar}), 0);
  EXPECT_EQ(dialog_.value().text(L"19999/n"), L"-1");
}

TEST_F(Editing, OddWholesAndEmptyKeysAreSurvived) {
  const auto all = [](const EditorUser& user) {
    for (int id = kEditorRename; id <= kEditorOuter; ++id)
      if (id != kEditorAdd && id != kEditorProperties) user.command(id);
    user.key(kEditorField, VK_ESCAPE);
    user.command(IDOK);
  };
  ZoVariant emptyKey(ZoVariant::kDict);
  EXPECT_EQ(emptyKey.asDict()->insertAt(ZoString(), ZoVariant(3)), 0);
  for (const ZoVariant& odd :
       {ZoVariant(), ZoVariant(5), ZoVariant(ZoVariant::kSequence), emptyKey}) {
    dialog_.setValue(odd);
    EXPECT_EQ(edit(dialog_, {all}), 0);
    EXPECT_EQ(dialog_.value(), odd);
  }
  dialog_.setValue(ZoVariant());
  const auto begin = [](const EditorUser& user) {
    user.command(kEditorAdd);
    EXPECT_EQ(user.column(), L"first");
    user.command(IDOK);
  };
  EXPECT_EQ(edit(dialog_, {begin, fill(L"first", L"String", L"x")}), 0);
  EXPECT_EQ(dialog_.value().text(L"first"), L"x");
}

TEST_F(Editing, OnAnyThreadAndUntilItsOwnerIsGone) {
  zo::test::inOtherThread([&] {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(edit(dialog_, {press(IDOK)}), 0);
    CoUninitialize();
    return 0;
  });
  HWND const owner = window();
  const auto lose = [&](const EditorUser& user) {
    user.enter(L"name", kEditorEdit, L"Nut");
    DestroyWindow(owner);
  };
  EXPECT_EQ(edit(dialog_, {lose}, owner), ZoResult::noOwner);
  EXPECT_EQ(dialog_.value(), sample());
}

// What the user types arrives by the platform's own queue.
TEST_F(Editing, ByTheKeyboardAlone) {
  if (!zo::test::hasDisplay()) GTEST_SKIP();
  const auto strike = [](std::vector<int> keys) {
    for (const int key : keys) keybd_event(static_cast<BYTE>(key), 0, 0, 0);
    for (const int key : std::views::reverse(keys))
      keybd_event(static_cast<BYTE>(key), 0, KEYEVENTF_KEYUP, 0);
  };
  const auto type = [&](const EditorUser& user) {
    ShowWindow(user.window(), SW_SHOW);
    SetForegroundWindow(user.window());
    SetFocus(user.item(kEditorList));
    for (const int key : {VK_END, VK_RETURN, int{'N'}, int{'U'}, int{'T'}, VK_RETURN, VK_F2,
                          int{'P'}, VK_ESCAPE, VK_HOME, VK_DELETE})
      strike({key});
    strike({VK_CONTROL, 'Z'});
    for (int i = 0; i < 3; ++i) strike({VK_SHIFT, VK_TAB});  // by the tree to Cancel and OK
    strike({VK_RETURN});
  };
  EXPECT_EQ(edit(dialog_, {type}), 0);
  ZoVariant after = sample();
  EXPECT_EQ(after.put(L"name", ZoVariant(L"nut")), 0);
  EXPECT_EQ(dialog_.value(), after);
}

}  // namespace
