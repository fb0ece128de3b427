// Browsing into libraries: members as rows, and the way through both windows of a file dialog.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>
#include <zo/library/library.h>
#include <zo/names/member_name.h>

#include "dialogs/dialog_fixture.h"
#include "dialogs/member_dialog.h"

namespace {

using zo::MemberDialog;
using zo::MemberRows;
using zo::test::DialogUser;

class Libraries : public zo::test::DialogTest {
 protected:
  Libraries() {
    make(L"parts.lib", {L"b.val", L"A.val", L"bolts/m8.val", L"bolts\\steel/m10.val",
                        L"bolts/x.txt", L"BOLTS/m12.val", L"bolts.txt", L"x//y|z.val"});
    make(L"more.lib", {L"c.val"});
    std::ofstream(folder_.path() / "fake.lib") << "no library";
  }
  void make(const wchar_t* name, std::initializer_list<const wchar_t*> members) {
    ZoLibrary library;
    ASSERT_EQ(library.open(ZoFileName(path(name)), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
    for (const wchar_t* member : members)
      ASSERT_EQ(library.addFile(ZoFileName(path(L"a.val")), ZoFileName(member), false), 0)
          << member;
    ASSERT_EQ(library.close(), 0);
  }
  [[nodiscard]] std::wstring path(const wchar_t* name) const { return folder() + L"\\" + name; }

  // What the user does in one window after the other.
  struct Step {
    std::vector<const wchar_t*> chosen;  // a file's name, or rows; folders first
    int button = IDOK;
    int filter = -1;
  };
  static bool isOurs(HWND window) { return GetDlgItem(window, MemberDialog::kList) != nullptr; }
  static int rowOf(HWND list, const wchar_t* name) {
    LVFINDINFOW what = {};
    what.flags = LVFI_STRING;
    what.psz = name;
    return static_cast<int>(SendMessageW(list, LVM_FINDITEMW, static_cast<WPARAM>(-1),
                                         reinterpret_cast<LPARAM>(&what)));
  }
  static void setChosen(HWND list, int row, bool chosen) {
    LVITEMW state = {};
    state.stateMask = LVIS_SELECTED;
    state.state = chosen ? LVIS_SELECTED : 0;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&state));
  }
  static std::wstring textOf(HWND list, int row) {
    wchar_t text[100] = L"";
    LVITEMW item = {};
    item.pszText = text;
    item.cchTextMax = 100;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
  }
  // With a mark before those that are chosen.
  void note(HWND list) {
    const auto count = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
    for (int row = 0; row < count; ++row) {
      const bool isChosen =
          SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
      shown_ += (row ? L" " : L"") + std::wstring(isChosen ? L">" : L"") + textOf(list, row);
    }
    shown_ += L'\n';
  }
  void chooseMembers(HWND window, const Step& step) {
    HWND const list = GetDlgItem(window, MemberDialog::kList);
    if (step.filter >= 0) {
      SendDlgItemMessageW(window, MemberDialog::kFilters, CB_SETCURSEL,
                          static_cast<WPARAM>(step.filter), 0);
      SendMessageW(window, WM_COMMAND, MAKEWPARAM(MemberDialog::kFilters, CBN_SELCHANGE), 0);
    }
    note(list);
    setChosen(list, -1, false);
    for (const std::wstring name : step.chosen) {
      if (name == L"..") {
        SendMessageW(list, WM_KEYDOWN, VK_BACK, 0);
        note(list);
        setChosen(list, -1, false);
        continue;
      }
      const int row = rowOf(list, name.c_str());
      ASSERT_GE(row, 0) << ZoString(name).toUtf8();
      setChosen(list, row, true);
      if (!textOf(list, row).ends_with(L'/')) continue;
      SendMessageW(window, WM_COMMAND, IDOK, 0);  // enters it
      note(list);
      setChosen(list, -1, false);
    }
    DialogUser::press(window, step.button);
  }
  int show(ZoFileDialog& dialog, const std::vector<Step>& steps) {
    shown_.clear();
    size_t next = 0;
    DialogUser user([&](HWND window) {
      ASSERT_LT(next, steps.size());
      const Step& step = steps[next++];
      if (isOurs(window)) {
        expectGuardsFree();
        expectPicture(window, "members");
        return chooseMembers(window, step);
      }
      if (!step.chosen.empty()) DialogUser::typeName(window, step.chosen[0]);
      DialogUser::press(window, step.button);
    });
    const int code = dialog.show();
    EXPECT_EQ(next, steps.size());
    return code;
  }
  [[nodiscard]] std::wstring names(const ZoFileDialog& dialog) const {
    std::wstring all;
    for (const ZoFileName& name : dialog.files())
      all += (all.empty() ? L"" : L" ") + std::wstring(name.view().substr(folder().size() + 1));
    return all;
  }
  std::wstring shown_;
};

TEST_F(Libraries, MembersAreRowsOfTheirFolders) {
  MemberRows rows;
  EXPECT_FALSE(rows.read(ZoFileName(path(L"fake.lib"))));
  EXPECT_FALSE(rows.read(ZoFileName(path(L"none.lib"))));
  ASSERT_TRUE(rows.read(ZoFileName(path(L"parts.lib"))));
  const auto all = [&] {
    std::wstring text;
    for (const MemberRows::Row& row : rows.rows()) (text += row.name) += row.member ? L" " : L"/ ";
    return text;
  };
  const struct {
    const wchar_t *folder, *filter, *rows;
  } kTable[] = {
      {L"", L"", L"BOLTS/ x/ A.val b.val bolts.txt "},
      {L"", L"*.val", L"BOLTS/ x/ A.val b.val "},
      {L"bolts", L"", L"steel/ m12.val m8.val x.txt "},
      {L"Bolts", L"*.txt;m12*", L"steel/ m12.val x.txt "},
      {L"bolts\\STEEL", L"*.*", L"m10.val "},
      {L"x", L"", L"y|z.val "},
      {L"bolt", L"", L""},
      {L"b.val", L"", L""},
  };
  for (const auto& row : kTable) {
    rows.enter(row.folder);
    rows.setFilter(row.filter);
    EXPECT_EQ(all(), row.rows) << ZoString(row.folder).toUtf8();
  }
  rows.setFilter(L"");
  rows.enter(L"bolts/steel");
  EXPECT_EQ(rows.rows()[rows.placeOf(L"M10.VAL")].member->name.view(),
            path(L"parts.lib") + L"|bolts\\steel/m10.val");
  rows.enterOuter();
  EXPECT_EQ(rows.folder(), L"bolts");
  rows.enterOuter();
  rows.enterOuter();
  EXPECT_EQ(rows.folder(), L"");
}

TEST_F(Libraries, AMemberIsTakenThroughBothWindows) {
  ZoFileDialog dialog;
  ASSERT_EQ(dialog.browseLibraries(L"*.lib"), 0);
  ASSERT_EQ(dialog.browseLibraries(ZoString(std::wstring_view(L"*.a\0b", 5))), ZoResult::refused);
  dialog.addFilter(ZoFileName::kVal);
  dialog.addFilter(ZoFileName::kAnyFile);
  dialog.setFolder(ZoFileName(folder() + L"\\"));
  dialog.remember(L"test");
  EXPECT_EQ(show(dialog, {{{L"parts.lib"}}, {{L"bolts", L"steel", L"m10.val"}}}), 0);
  EXPECT_EQ(names(dialog), L"parts.lib|bolts\\steel/m10.val");
  EXPECT_EQ(shown_, L">BOLTS/ x/ A.val b.val\n>steel/ m12.val m8.val\n>m10.val\n");
  ZoFile file;
  EXPECT_EQ(file.open(dialog.file(), ZoFile::kRead), 0);
  EXPECT_EQ(ZoSystem::cfg().get(L"dialogs@test@folder", ZoString()), folder() + L"\\");
  // Back from the library to the files, and with another filter into it again.
  EXPECT_EQ(show(dialog, {{{}, IDOK},
                          {{}, MemberDialog::kBack},
                          {{L"parts.lib"}},
                          {{L"..", L"..", L"bolts.txt"}, IDOK, 1}}),
            0);
  EXPECT_EQ(names(dialog), L"parts.lib|bolts.txt");
  EXPECT_EQ(shown_,
            L">m10.val\n>m10.val\n>steel/ m12.val m8.val x.txt\n"
            L">BOLTS/ x/ A.val b.val bolts.txt\n")
      << "begins where it was taken before";
  EXPECT_EQ(dialog.filter(), 1u);
}

TEST_F(Libraries, WhatIsTakenIsWhatTheUserChose) {
  const struct {
    const char* name;
    ZoFileDialog::Kind kind;
    const wchar_t* patterns;
    std::vector<Step> steps;
    int code;
    const wchar_t* names;
  } kTable[] = {
      {"no member",
       ZoFileDialog::kOpen,
       L"*.lib",
       {{{L"parts.lib"}}, {{}, IDCANCEL}},
       ZoResult::cancelled,
       L"old.val"},
      {"no file",
       ZoFileDialog::kOpen,
       L"*.lib",
       {{{L"parts.lib"}, IDCANCEL}},
       ZoResult::cancelled,
       L"old.val"},
      {"no library", ZoFileDialog::kOpen, L"*.lib", {{{L"fake.lib"}}}, 0, L"fake.lib"},
      {"another name", ZoFileDialog::kOpen, L"*.zlb", {{{L"parts.lib"}}}, 0, L"parts.lib"},
      {"not asked for", ZoFileDialog::kOpen, L"", {{{L"parts.lib"}}}, 0, L"parts.lib"},
      {"to save", ZoFileDialog::kSave, L"*.lib", {{{L"new.lib"}}}, 0, L"new.lib"},
      {"a name that a file cannot have",
       ZoFileDialog::kOpen,
       L"*.lib",
       {{{L"parts.lib"}}, {{L"x", L"y|z.val"}}},
       0,
       L"parts.lib|x//y<|z.val"},
      {"several of several",
       ZoFileDialog::kOpenSeveral,
       L"*.lib",
       {{{L"\"parts.lib\" \"a.val\" \"more.lib\""}}, {{L"A.val", L"b.val"}}, {{L"c.val"}}},
       0,
       L"parts.lib|A.val parts.lib|b.val a.val more.lib|c.val"},
  };
  for (const auto& row : kTable) {
    SCOPED_TRACE(row.name);
    ZoFileDialog dialog(row.kind);
    ASSERT_EQ(dialog.browseLibraries(row.patterns), 0);
    dialog.setFile(ZoFileName(path(L"old.val")));
    EXPECT_EQ(show(dialog, row.steps), row.code);
    EXPECT_EQ(names(dialog), row.names);
  }
}

}  // namespace
