// window_user TITLE STEP...: works on the editor of another program, whose window has that title,
// as its user does.
//
//   edit=TEXT  types over the value of the row that is selected
//   run=LINE   runs another program meanwhile, and prints its exit code
//   box=ID     presses a button of the message box that comes then, and waits until it is gone
//   ID         a command, or button, by its number
#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

constexpr int kField = 102;
constexpr WPARAM kEdit = 200;
constexpr DWORD kLongest = 20'000, kPause = 20;

// Nothing tells one program what another one's windows do.
template <class Done>
bool waitUntil(Done done) {
  for (DWORD waited = 0; waited < kLongest; waited += kPause) {
    if (done()) return true;
    Sleep(kPause);
  }
  return false;
}

// Another one than the editor's, which has the same title as its message boxes.
HWND windowTitled(const wchar_t* title, HWND editor = nullptr) {
  HWND window = nullptr;
  waitUntil([&] {
    while ((window = FindWindowExW(nullptr, window, nullptr, title)) != nullptr)
      if (window != editor && IsWindowVisible(window)) return true;
    return false;
  });
  return window;
}

void post(HWND window, std::wstring_view id) {
  PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(std::stoi(std::wstring(id))), 0);
}

bool press(const wchar_t* title, HWND editor, std::wstring_view id) {
  HWND const box = windowTitled(title, editor);
  if (box) post(box, id);
  return box && waitUntil([&] { return !IsWindow(box); });
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
    } else if (step.starts_with(L"box=")) {
      if (!press(arguments[1], window, step.substr(4))) return 3;
    } else {
      post(window, step);
    }
  }
  return 0;
}
