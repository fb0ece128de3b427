// What the single dialogs add to what all promise.
#include <gtest/gtest.h>
#include <objbase.h>
#include <zo/dialogs.h>
#include <limits>

#include "dialogs/dialog_fixture.h"
#include "dialogs/task_dialog_call.h"
#include "platform/item_dialog.h"

namespace {

using zo::test::DialogUser;

// The words that a dialog shows when it is answered by a button.
class Choices : public zo::test::DialogTest {
 protected:
  int show(ZoDialog& dialog, int button, HWND owner = nullptr) {
    shown_ = L"";
    DialogUser user([&](HWND window) {
      shown_ += DialogUser::words(window);
      DialogUser::press(window, button);
    });
    return dialog.show(owner);
  }
  [[nodiscard]] bool shows(const wchar_t* words) const {
    return shown_.find(words) != std::wstring::npos;
  }
  std::wstring shown_;
};

TEST_F(Choices, ATickedMessageIsAnsweredAloneUntilItIsForgotten) {
  constexpr const wchar_t* kTick = L"Do not show this again";
  ZoMessageBox box(L"Replace?", ZoMessageBox::kYesNoCancel, ZoMessageBox::kQuestion);
  box.remember(L"parts@replace");
  const auto tickAndPress = [&](int button) {
    shown_ = L"";
    DialogUser user([&](HWND window) {
      shown_ += DialogUser::words(window);
      for (HWND child = nullptr; (child = FindWindowExW(window, child, L"Button", kTick));)
        SendMessageW(child, BM_CLICK, 0, 0);
      DialogUser::press(window, button);
    });
    return box.show();
  };
  EXPECT_EQ(tickAndPress(IDCANCEL), ZoResult::cancelled);
  EXPECT_TRUE(shows(kTick));
  EXPECT_EQ(show(box, IDYES), 0);
  EXPECT_TRUE(shows(L"Replace?")) << "neither was kept";
  EXPECT_EQ(tickAndPress(IDNO), 0);
  for (int i = 0; i < 2; ++i) {
    const zo::test::NoWindows none;
    ZoMessageBox later(L"Replace?", ZoMessageBox::kYesNo);
    later.remember(L"parts@replace");
    EXPECT_EQ(later.show(), 0);
    EXPECT_EQ(later.button(), ZoMessageBox::kNo);
  }
  ZoMessageBox other(L"Replace?", ZoMessageBox::kOkCancel);
  other.remember(L"parts@replace");
  EXPECT_EQ(show(other, IDOK), 0) << "it has no such button";
  EXPECT_TRUE(shows(kTick));
  EXPECT_EQ(ZoMessageBox::forget(L"parts@replace"), 0);
  EXPECT_EQ(ZoMessageBox::forget(L"parts@replace"), ZoResult::refused);
  EXPECT_EQ(show(box, IDYES), 0);
  EXPECT_TRUE(shows(kTick));
}

TEST_F(Choices, ButtonsAreThoseOfTheBox) {
  ZoMessageBox box(L"?", ZoMessageBox::kYesNo);
  for (const auto button : {ZoMessageBox::kNone, ZoMessageBox::kOkButton, ZoMessageBox::kCancel}) {
    EXPECT_EQ(box.setDefault(button), ZoResult::refused);
    EXPECT_EQ(box.setButton(button), ZoResult::refused);
  }
  EXPECT_EQ(box.setDefault(ZoMessageBox::kNo), 0);
  ZoTaskDialog task(L"?");
  EXPECT_EQ(task.setButton(ZoMessageBox::kOkButton), 0);
  EXPECT_EQ(task.addButton(99, L"a"), ZoResult::refused);
  EXPECT_EQ(task.addButton(100, L""), ZoResult::refused);
  EXPECT_EQ(task.addButton(100, L"a"), 0);
  EXPECT_EQ(task.addButton(100, L"b"), ZoResult::refused);
  EXPECT_EQ(task.setDefault(101), ZoResult::refused);
  EXPECT_EQ(task.setButton(ZoMessageBox::kOkButton), ZoResult::refused);
  task.setTick(L"", true);
  EXPECT_FALSE(task.isTicked());
}

TEST_F(Choices, AMessageBoxTakesATaskDialogsPlace) {
  zo::withoutTaskDialogs = true;
  ZoTaskDialog task(L"Head");
  task.setText(L"Body");
  EXPECT_EQ(show(task, IDOK), 0);
  EXPECT_TRUE(shows(L"Head\n\nBody"));
  EXPECT_EQ(task.button(), ZoMessageBox::kOkButton);
  EXPECT_EQ(task.addButton(100, L"Replace"), 0);
  EXPECT_EQ(task.addButton(101, L"Keep"), 0);
  EXPECT_EQ(show(task, IDNO), 0);
  EXPECT_TRUE(shows(L"Yes: Replace\n\nNo: Keep"));
  EXPECT_EQ(task.button(), 101);
  EXPECT_EQ(show(task, IDCANCEL), ZoResult::cancelled);
  const auto enter = [&](int number) {
    EXPECT_EQ(task.setDefault(number), 0);
    const DialogUser user([](HWND box) { PostMessageW(box, WM_KEYDOWN, VK_RETURN, 0); });
    return task.show();
  };
  EXPECT_EQ(enter(ZoMessageBox::kCancel), ZoResult::cancelled);
  EXPECT_EQ(enter(101) + task.button(), 101);
  EXPECT_EQ(task.addButton(102, L"More"), 0);
  EXPECT_EQ(task.show(), ZoResult::notShown);
  ZoMessageBox box(L"Always");
  box.remember(L"key");
  EXPECT_EQ(show(box, IDCANCEL), 0) << "closing a box with OK alone is OK";
  EXPECT_TRUE(shows(L"Always"));
  zo::withoutTaskDialogs = false;
}

TEST_F(Choices, AFileThatIsNotThereIsRefusedAndTheDialogStays) {
  ZoFileDialog dialog;
  dialog.setFolder(ZoFileName(folder() + L"\\"));
  HWND first = nullptr;
  DialogUser user([&](HWND window) {
    if (!first) {
      first = window;
      DialogUser::typeName(window, L"gone.val");
      DialogUser::press(window, IDOK);
      return;
    }
    DialogUser::press(window, IDOK);
    DialogUser::typeName(first, L"b.val");
    DialogUser::press(first, IDOK);
  });
  EXPECT_EQ(dialog.show(), 0);
  EXPECT_EQ(user.shown(), 2);
  EXPECT_STREQ(dialog.file().fileNameExt(), L"b.val");
}

// The name of the file that a relative one means, which tells the folder.
TEST_F(Choices, TheStartFolderGivesWayToTheRememberedOneAndThatToTheFilesOwn) {
  const auto folderOf = [&](ZoFileDialog& dialog) {
    dialog.remember(L"test");
    DialogUser user([](HWND window) {
      DialogUser::typeName(window, L"new.val");
      DialogUser::press(window, IDOK);
    });
    EXPECT_EQ(dialog.show(), 0);
    return std::filesystem::path(std::wstring(dialog.file().view())).parent_path().wstring();
  };
  const auto made = [&](const std::wstring& start, const wchar_t* file = L"") {
    ZoFileDialog dialog(ZoFileDialog::kSave);
    dialog.setFolder(ZoFileName(start));
    dialog.setFile(ZoFileName(file));
    return folderOf(dialog);
  };
  const std::wstring inner = folder() + L"\\inner";
  EXPECT_EQ(made(inner + L"\\"), inner);
  EXPECT_EQ(made(folder() + L"\\"), inner) << "remembered";
  EXPECT_EQ(made(inner + L"\\", (folder() + L"\\a.val").c_str()), folder());
  EXPECT_EQ(ZoSystem::cfg().put(L"dialogs@test@folder", L"Q:\\gone\\"), 0);
  EXPECT_EQ(made(inner + L"\\"), inner) << "a drive that is gone fails nothing";
}

TEST_F(Choices, FiltersAreCleanedAndOddOnesRefused) {
  ZoFileDialog dialog;
  const std::wstring_view zero(L"*.a\0b", 5);
  for (const auto& odd : {ZoString(), ZoString(L" ; ;"), ZoString(zero)})
    EXPECT_EQ(dialog.addFilter(L"x", odd), ZoResult::refused);
  EXPECT_EQ(dialog.addFilter(ZoString(zero), L"*.a"), ZoResult::refused);
  EXPECT_EQ(dialog.setFilter(0), ZoResult::refused);
  EXPECT_EQ(dialog.addFilter(L"", L" *.a ;; *.b c"), 0);
  dialog.addFilter(ZoFileName::kValOrMdb);
  dialog.addFilter(ZoFileName::kAnyFile);
  const std::pair<const wchar_t*, const wchar_t*> wanted[] = {
      {L"*.a;*.b c", L"*.a;*.b c"}, {L"VAL, MDB files", L"*.val;*.mdb"}, {L"All files", L"*.*"}};
  ASSERT_EQ(dialog.filters().size(), std::size(wanted));
  for (size_t i = 0; i < std::size(wanted); ++i) {
    EXPECT_EQ(dialog.filters()[i].name, wanted[i].first);
    EXPECT_EQ(dialog.filters()[i].patterns, wanted[i].second);
  }
  EXPECT_EQ(dialog.setFilter(2), 0);
}

TEST_F(Choices, TheOlderDialogsServeWhereComDoesNot) {
  const auto inThread = [&](zo::ItemDialogRequest::Kind kind, const std::wstring& name,
                            int button) {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    zo::ItemDialogRequest request;
    request.kind = kind;
    request.folder = folder();
    request.title = L"Old";
    DialogUser user([&](HWND window) {
      if (!name.empty()) DialogUser::typeName(window, name);
      DialogUser::press(window, button);
    });
    auto answer = zo::askForItems(request, nullptr);
    CoUninitialize();
    return answer;
  };
  using enum zo::ItemDialogRequest::Kind;
  const auto several =
      zo::test::inOtherThread([&] { return inThread(kOpenSeveral, L"\"a.val\" \"b.val\"", IDOK); });
  EXPECT_EQ(several.names,
            (std::vector<std::wstring>{folder() + L"\\a.val", folder() + L"\\b.val"}));
  for (const auto kind : {kOpen, kSave, kFolder})
    EXPECT_EQ(zo::test::inOtherThread([&] { return inThread(kind, L"", IDCANCEL); }).error,
              static_cast<unsigned long>(ERROR_CANCELLED));
  const auto chosen = zo::test::inOtherThread([&] { return inThread(kFolder, L"", IDOK); });
  EXPECT_EQ(chosen.names.size(), 1u) << "its tree may not have come as far as the start folder";
}

// More than a buffer for one name holds.
TEST_F(Choices, ManyFilesAreChosenAtOnce) {
  constexpr int kMany = 250;
  std::vector<std::wstring> wanted;
  std::wstring typed;
  for (int i = 0; i < kMany; ++i) {
    const std::wstring name = std::wstring(140, L'n') + L' ' + std::to_wstring(i) + L".val";
    std::ofstream(folder_.path() / name) << i;
    wanted.push_back(folder() + L'\\' + name);
    typed += L'"' + name + L"\" ";
  }
  for (const DWORD kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
    const auto chosen = zo::test::inOtherThread([&] {
      EXPECT_EQ(CoInitializeEx(nullptr, kind), S_OK);
      zo::ItemDialogRequest request;
      request.kind = zo::ItemDialogRequest::kOpenSeveral;
      request.folder = folder();
      DialogUser user([&](HWND window) {
        DialogUser::typeName(window, typed);
        DialogUser::press(window, IDOK);
      });
      auto answer = zo::askForItems(request, nullptr);
      CoUninitialize();
      return answer;
    });
    EXPECT_EQ(chosen.names, wanted) << (kind == COINIT_MULTITHREADED ? "older" : "present");
  }
}

TEST_F(Choices, TenThousandNamesAreTakenApart) {
  std::wstring buffer = L"C:\\";
  std::vector<std::wstring> wanted;
  for (int i = 0; i < 10000; ++i) {
    wanted.push_back(L"C:\\" + std::wstring(200, L'n') + std::to_wstring(i));
    buffer += L'\0' + wanted.back().substr(3);
  }
  buffer += std::wstring(2, L'\0');
  EXPECT_EQ(zo::namesInBuffer(buffer.data()), wanted);
  EXPECT_EQ(zo::namesInBuffer(std::wstring(L"C:\\a\0", 6).data()).front(), L"C:\\a");
}

TEST_F(Choices, ColorsKeepTheirTypeOrBecomeWhatTheyLookLike) {
  const auto picked = [&](const ZoColor& from, bool palette, const wchar_t* rgb) {
    ZoColorDialog dialog(from);
    dialog.setPalette(palette);
    DialogUser user([&](HWND window) {
      std::wstring values = rgb;
      for (int i = 0; i < 3 && !values.empty(); ++i)
        DialogUser::type(window, 706 + i, values.substr(4 * static_cast<size_t>(i), 3));
      DialogUser::press(window, IDOK);
    });
    EXPECT_EQ(dialog.show(), 0);
    return std::wstring(dialog.color().toString().data());
  };
  EXPECT_EQ(picked(ZoColor::kRed, true, L""), L"red");
  EXPECT_EQ(picked(ZoColor(0x01000000u), true, L""), ZoColor(0x01000000u).toString().data());
  EXPECT_EQ(picked(ZoColor::kGreen, true, L"000 000 255"), L"blue");
  EXPECT_EQ(picked(ZoColor::kGreen, false, L"000 000 255"), L"#0000FF");
}

TEST_F(Choices, APrinterThatIsGoneGivesWayToTheDefaultOne) {
  zo::test::Printers printers;
  if (!zo::test::Printers::hasDefault()) {
    ZoPrintDialog noPrint;
    EXPECT_EQ(show(noPrint, IDCANCEL), ZoResult::noPrinter);
    ZoPageSetupDialog noPage;
    EXPECT_EQ(show(noPage, IDCANCEL), ZoResult::noPrinter);
  }
  printers.add();
  ZoPrinter gone{L"no such printer", std::vector<unsigned char>(3000, 0xFF)};
  ZoPrintDialog print;
  print.setPrinter(gone);
  EXPECT_EQ(show(print, IDOK), 0);
  EXPECT_FALSE(print.printer().name.isEmpty());
  EXPECT_NE(print.printer().name, gone.name);
  ZoPageSetupDialog page;
  page.setPrinter(print.printer());
  EXPECT_EQ(show(page, IDOK), 0);
  EXPECT_EQ(page.printer().name, print.printer().name);
}

TEST_F(Choices, CopiesAreTheDialogsWhateverTheSettingsSay) {
  zo::test::Printers printers;
  printers.add();
  ZoPrintDialog print;
  for (const unsigned copies : {7u, 3u, 9999u}) {
    EXPECT_EQ(print.setCopies(copies), 0);
    EXPECT_EQ(show(print, IDOK), 0);
    EXPECT_EQ(print.copies(), copies);
    ZoPrinter printer = print.printer();
    DEVMODEW& settings = *reinterpret_cast<DEVMODEW*>(printer.settings.data());
    EXPECT_EQ(settings.dmCopies, 1) << "who prints makes them";
    settings.dmCopies = 4;
    print.setPrinter(printer);
  }
}

TEST_F(Choices, WhatIsLeftAsItIsShownStaysAsItWasSet) {
  zo::test::Printers printers;
  printers.add();
  for (const double points : {10.5, 0.0, 12.0}) {
    ZoFontDialog font(ZoFont{L"", points});
    EXPECT_EQ(show(font, IDOK), 0);
    EXPECT_EQ(font.font().points, points);
  }
  ZoFontDialog font(ZoFont{L"", 10.5});
  const DialogUser user([](HWND window) {
    constexpr int kSize = 0x472;
    SendDlgItemMessageW(window, kSize, CB_SELECTSTRING, 0, reinterpret_cast<LPARAM>(L"20"));
    SendMessageW(window, WM_COMMAND, MAKEWPARAM(kSize, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(GetDlgItem(window, kSize)));
    DialogUser::press(window, IDOK);
  });
  EXPECT_EQ(font.show(), 0);
  EXPECT_EQ(font.font().points, 20);
  for (const auto& [width, height] : {std::pair(210, 297), std::pair(297, 210)}) {
    ZoPageSetupDialog page;
    EXPECT_EQ(page.setPaper(width, height), 0);
    EXPECT_EQ(show(page, IDOK), 0);
    EXPECT_TRUE(page.width().asReal() == width && page.height().asReal() == height);
  }
}

TEST_F(Choices, ANameToSaveGetsNoWildcardAsItsExtension) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"*.t?t", L"new"}, {L"*.?;*.txt", L"new"}, {L"*.*", L"new"}, {L"*.t;*.?", L"new.t"}};
  for (const DWORD kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED})
    zo::test::inOtherThread([&] {
      EXPECT_EQ(CoInitializeEx(nullptr, kind), S_OK);
      for (const auto& [patterns, wanted] : cases) {
        ZoFileDialog dialog(ZoFileDialog::kSave);
        dialog.setFolder(ZoFileName(folder() + L"\\"));
        EXPECT_EQ(dialog.addFilter(L"", patterns), 0);
        const DialogUser user([](HWND window) {
          DialogUser::typeName(window, L"new");
          DialogUser::press(window, IDOK);
        });
        EXPECT_EQ(dialog.show(), 0);
        EXPECT_STREQ(dialog.file().fileNameExt(), wanted) << patterns;
      }
      CoUninitialize();
    });
}

TEST_F(Choices, PagesPapersAndMarginsAreChecked) {
  ZoPrintDialog print;
  for (const int odd : {-1, 3, 7})
    EXPECT_EQ(print.setRange(static_cast<ZoPrintDialog::Range>(odd)), ZoResult::refused);
  EXPECT_EQ(print.setPages(2, 1), ZoResult::refused);
  EXPECT_EQ(print.setPages(0, 1), ZoResult::refused);
  EXPECT_EQ(print.setPages(1, 65536), ZoResult::refused);
  EXPECT_EQ(print.setRange(ZoPrintDialog::kPages, 1, 1), ZoResult::refused);
  EXPECT_EQ(print.setRange(ZoPrintDialog::kSelection), ZoResult::refused);
  EXPECT_EQ(print.setPages(1, 9), 0);
  EXPECT_EQ(print.setRange(ZoPrintDialog::kPages, 4, 10), ZoResult::refused);
  EXPECT_EQ(print.setRange(ZoPrintDialog::kPages, 4, 9), 0);
  EXPECT_EQ(print.setPages(1, 5), 0);
  EXPECT_EQ(print.range(), ZoPrintDialog::kAll);
  EXPECT_EQ(print.fromPage() + print.toPage(), 0u);
  print.setSelection(true);
  EXPECT_EQ(print.setRange(ZoPrintDialog::kSelection), 0);
  print.setSelection(false);
  EXPECT_EQ(print.range(), ZoPrintDialog::kAll);
  for (const unsigned copies : {0u, 10000u}) EXPECT_EQ(print.setCopies(copies), ZoResult::refused);
  ZoPageSetupDialog page;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& odd : {ZoVariant(0), ZoVariant(-1), ZoVariant(nan), ZoVariant(1e9), ZoVariant(),
                          ZoVariant(L"210")})
    EXPECT_EQ(page.setPaper(odd, 297), ZoResult::refused);
  EXPECT_EQ(page.setMargins({100, 0, 110, 0}), ZoResult::refused);
  EXPECT_EQ(page.setMargins({100, 0, 109, -1}), ZoResult::refused);
  EXPECT_EQ(page.setMargins({100, 0, 109, 0}), 0);
  EXPECT_EQ(page.margins().left.code(), ZoTypeCode::Length);
  EXPECT_EQ(page.setPaper(209, 297), ZoResult::refused) << "nothing between the margins";
  EXPECT_EQ(page.setMargins({5, 0, 5.004, 0}), 0);
  EXPECT_EQ(page.margins().right.asReal(), 5);
  EXPECT_EQ(page.setPaper(10.004, 20), ZoResult::refused);
  EXPECT_EQ(page.setPaper(10.006, 20.004), 0);
  EXPECT_EQ(page.width().asReal(), 10.01);
  EXPECT_EQ(page.height().asReal(), 20);
  EXPECT_EQ(page.setPaper(20, 0.004), ZoResult::refused);
}

TEST_F(Choices, DialogsNestAndAreOwned) {
  HWND const owner = window();
  ZoMessageBox outer(L"outer", ZoMessageBox::kOkCancel);
  ZoMessageBox inner(L"inner", ZoMessageBox::kYesNo);
  int depth = 0;
  DialogUser user([&](HWND window) {
    if (++depth == 1) {
      EXPECT_EQ(GetWindow(window, GW_OWNER), owner);
      EXPECT_EQ(inner.show(window), 0);
      DialogUser::press(window, IDCANCEL);
    } else {
      DialogUser::press(window, IDNO);
    }
  });
  EXPECT_EQ(outer.show(owner), ZoResult::cancelled);
  EXPECT_EQ(inner.button(), ZoMessageBox::kNo);
  DestroyWindow(owner);
}

TEST_F(Choices, TheOwnerIsTheHostsMainWindowAsLongAsItIsThere) {
  EXPECT_EQ(ZoDialogs::owner(), nullptr);
  HWND const main = window();
  ZoSystem::cad().setMainWindow(main);
  EXPECT_EQ(ZoDialogs::owner(), main);
  DestroyWindow(main);
  EXPECT_EQ(ZoDialogs::owner(), nullptr);
}

}  // namespace
