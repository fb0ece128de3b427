// What callers and machines give dialogs that they should not: owners that are not theirs or go,
// threads of another kind, odd filters.
#include <gtest/gtest.h>
#include <objbase.h>
#include <zo/dialogs.h>

#include <memory>

#include "dialogs/dialog_fixture.h"
#include "support/child_process.h"

namespace {

using zo::test::DialogUser;

// Until it is killed.
ZO_TEST_CHILD(window_owner) {
  HWND const window = CreateWindowExW(0, L"Static", L"foreign", WS_OVERLAPPED, 0, 0, 10, 10,
                                      nullptr, nullptr, nullptr, nullptr);
  parent.say(std::to_string(reinterpret_cast<std::uintptr_t>(window)));
  MSG message;  // a dialog sends its owner some
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}

class BadInput : public zo::test::DialogTest {
 protected:
  using Made = std::unique_ptr<ZoDialog>;
  // One of each kind that needs no printer.
  static std::vector<Made> everyDialog() {
    std::vector<Made> dialogs;
    dialogs.push_back(std::make_unique<ZoMessageBox>(L"text", ZoMessageBox::kOkCancel));
    dialogs.push_back(std::make_unique<ZoTaskDialog>(L"text"));
    EXPECT_EQ(static_cast<ZoTaskDialog&>(*dialogs.back()).addButton(100, L"button"), 0);
    dialogs.push_back(std::make_unique<ZoFileDialog>(ZoFileDialog::kOpen));
    dialogs.push_back(std::make_unique<ZoFileDialog>(ZoFileDialog::kSave));
    dialogs.push_back(std::make_unique<ZoFolderDialog>());
    dialogs.push_back(std::make_unique<ZoColorDialog>());
    dialogs.push_back(std::make_unique<ZoFontDialog>());
    dialogs.push_back(std::make_unique<ZoVariantDialog>());
    return dialogs;
  }
  static int cancel(ZoDialog& dialog, HWND owner = nullptr) {
    DialogUser user([](HWND window) { DialogUser::press(window, IDCANCEL); });
    const int code = dialog.show(owner);
    EXPECT_EQ(user.shown(), 1);
    return code;
  }
};

TEST_F(BadInput, AnOwnerThatGoesEndsTheDialog) {
  for (const Made& dialog : everyDialog()) {
    HWND const owner = window();
    {
      const DialogUser user([&](HWND) { DestroyWindow(owner); });
      EXPECT_EQ(dialog->show(owner), ZoResult::noOwner) << typeid(*dialog).name();
    }
    EXPECT_FALSE(IsWindow(owner));
    EXPECT_EQ(cancel(*dialog), ZoResult::cancelled) << "and it can be shown again";
  }
}

TEST_F(BadInput, AnOwnerMayBeAnotherProcesses) {
  zo::test::ChildProcess child(L"window_owner");
  HWND const owner =
      reinterpret_cast<HWND>(static_cast<std::uintptr_t>(std::stoull(*child.hear())));
  for (const Made& dialog : everyDialog())
    EXPECT_EQ(cancel(*dialog, owner), ZoResult::cancelled) << typeid(*dialog).name();
  child.kill();
  for (const Made& dialog : everyDialog())
    EXPECT_EQ(dialog->show(owner), ZoResult::noOwner) << typeid(*dialog).name();
}

TEST_F(BadInput, ThreadsOfEveryKindShowDialogs) {
  for (const DWORD kind : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED})
    zo::test::inOtherThread([&] {
      EXPECT_EQ(CoInitializeEx(nullptr, kind), S_OK);
      for (const Made& dialog : everyDialog())
        EXPECT_EQ(cancel(*dialog), ZoResult::cancelled) << typeid(*dialog).name();
      CoUninitialize();
    });
}

TEST_F(BadInput, NamesThatNoFileCanHaveAreLeftOut) {
  for (const std::size_t length : {256, 300, 40000})
    for (const auto kind : {ZoFileDialog::kOpen, ZoFileDialog::kOpenSeveral, ZoFileDialog::kSave}) {
      ZoFileDialog dialog(kind);
      const std::wstring name(length, L'n');
      dialog.setFile(ZoFileName(L"C:\\" + name + L'\\' + name));
      dialog.setFolder(ZoFileName(L"C:\\" + name));
      EXPECT_EQ(cancel(dialog), ZoResult::cancelled) << length;
    }
}

TEST_F(BadInput, OddFiltersAreShown) {
  ZoFileDialog dialog;
  for (const wchar_t* patterns :
       {L"*", L"..", L"[a", L"a b", L"?", L"*.*.*", L"\\", L"*.a;*.b;*.c", L"\xD800"})
    EXPECT_EQ(dialog.addFilter(L"&\t", patterns), 0);
  EXPECT_EQ(dialog.addFilter(std::wstring(5000, L'n'), std::wstring(5000, L'*')), 0);
  for (int i = 0; i < 300; ++i) dialog.addFilter(ZoFileName::kVal);
  for (const unsigned filter : {0u, 9u, 309u}) {
    EXPECT_EQ(dialog.setFilter(filter), 0);
    EXPECT_EQ(cancel(dialog), ZoResult::cancelled);
    EXPECT_EQ(dialog.filter(), filter);
  }
}

}  // namespace
