#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system/std_error.h>

#include <functional>
#include <string>

#include "system/other_thread.h"
#include "system/suppressed_boxes.h"

namespace {

std::wstring shown;          // captions and texts
std::function<int()> atBox;  // gives the button to press

// Sees each box when it is complete.
LRESULT CALLBACK onMessageDone(int code, WPARAM unused, LPARAM data) {
  const auto& done = *reinterpret_cast<const CWPRETSTRUCT*>(data);
  if (code == HC_ACTION && done.message == WM_INITDIALOG) {
    wchar_t text[512];
    GetWindowTextW(done.hwnd, text, 512);
    shown += text + std::wstring(L"|");
    for (HWND child = nullptr;
         (child = FindWindowExW(done.hwnd, child, L"Static", nullptr)) != nullptr;) {
      GetWindowTextW(child, text, 512);
      shown += text;
    }
    PostMessageW(done.hwnd, WM_COMMAND, static_cast<WPARAM>(atBox()), 0);
  }
  return CallNextHookEx(nullptr, code, unused, data);
}

TEST(MessageBoxes, LookLikeTheirKindAreShownUntilIgnoredAndOneAtATime) {
  const HHOOK hook =
      SetWindowsHookExW(WH_CALLWNDPROCRET, onMessageDone, nullptr, GetCurrentThreadId());
  zo::test::Impatient<ZoStdError> service;
  const auto expect = [&](const std::wstring& seen, int button, std::function<int()> report) {
    shown.clear();
    atBox = [&] {
      // While a box is up, what other threads report is dropped.
      EXPECT_EQ(zo::test::inOtherThread(report), ZoResult::refused);
      return button;
    };
    EXPECT_EQ(report(), 0);
    EXPECT_EQ(shown, seen);
  };
  const std::wstring large(1000, L'x');
  const auto error = [&] { return service.error(L"f.cpp", L"load", 12, L"100 %d %s"); };
  const auto warning = [&] { return service.warning(L"f.cpp", 12, L"%d%% of %s", 5, L"%s"); };
  expect(L"Error|\n*** Error: \n\n\nposition: -1 \n", IDRETRY,
         [&] { return service.error(nullptr, nullptr, -1, nullptr); });
  expect(L"Error|\n*** Error: " + large.substr(0, 256 - 12), IDABORT,
         [&] { return service.error(L"f", L"g", 1, large.c_str()); });
  expect(L"Error|\n*** Error: 100 %d %s\nf.cpp\nload\nposition: 12 \n", IDIGNORE, error);
  expect(L"", 0, error);
  expect(L"Warning|\n*** Warning: 5% of %s\nf.cpp\nposition: 12 \n", IDIGNORE, warning);
  expect(L"", 0, warning);
  expect(L"Prompt|%d" + large.substr(0, 254), IDOK,
         [&] { return service.prompt(L"%s%s", L"%d", large.c_str()); });
  expect(L"", 0, [&] { return service.trace(L"text"); });
  zo::suppressedBoxes.errors = zo::suppressedBoxes.warnings = false;
  UnhookWindowsHookEx(hook);
}

}  // namespace
