// window_user TITLE STEP...: works on the editor of another program, whose window has that title,
// as its user does.
//
//   edit=TEXT  types over the value of the row that is selected
//   run=LINE   runs another program meanwhile, and prints its exit code
//   ID         a command, or button, by its number
#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

constexpr int kField = 102;
constexpr WPARAM kEdit = 200;
constexpr DWORD kLongest = 20'000, kPause = 20;

HWND windowTitled(const wchar_t* title) {
  for (DWORD waited = 0; waited < kLongest; waited += kPause) {
    HWND const window = FindWindowW(nullptr, title);
    if (window && IsWindowVisible(window)) return window;
    Sleep(kPause);  // nothing tells one program that another one's window is there
  }
  return nullptr;
}

bool run(std::wstring line) {
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION started;
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                      &started))
    return false;
  WaitForSingleObject(started.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(started.hProcess, &code);
  std::printf("%lu\n", code);
  CloseHandle(started.hProcess);
  CloseHandle(started.hThread);
  return true;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  HWND const window = count > 1 ? windowTitled(arguments[1]) : nullptr;
  if (!window) return 1;
  for (int i = 2; i < count; ++i) {
    const std::wstring_view step = arguments[i];
    if (step.starts_with(L"edit=")) {
      SendMessageW(window, WM_COMMAND, kEdit, 0);
      SendDlgItemMessageW(window, kField, WM_SETTEXT, 0,
                          reinterpret_cast<LPARAM>(step.substr(5).data()));
    } else if (step.starts_with(L"run=")) {
      if (!run(std::wstring(step.substr(4)))) return 2;
    } else {
      PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(std::stoi(std::wstring(step))), 0);
    }
  }
  return 0;
}
