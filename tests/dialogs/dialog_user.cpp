#include "dialogs/dialog_user.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <utility>
#include <vector>

namespace zo::test {
namespace {

DialogUser* current = nullptr;

constexpr int kOldNameField = 1148;
constexpr int kNameField = 1152;

LRESULT CALLBACK refuseWindows(int code, WPARAM w, LPARAM l) {
  return code == HCBT_CREATEWND ? 1 : CallNextHookEx(nullptr, code, w, l);
}

std::wstring textOf(HWND window) {
  std::wstring text(2000, L'\0');
  text.resize(static_cast<size_t>(
      SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

BOOL CALLBACK addWords(HWND window, LPARAM words) {
  *reinterpret_cast<std::wstring*>(words) += L"|" + textOf(window);
  return TRUE;
}

}  // namespace

DialogUser::DialogUser(Act act)
    : act_(std::move(act)),
      hook_(SetWindowsHookExW(WH_CALLWNDPROCRET, onMessageDone, nullptr, GetCurrentThreadId())),
      outer_(std::exchange(current, this)) {}

DialogUser::~DialogUser() {
  UnhookWindowsHookEx(hook_);
  current = outer_;
}

LRESULT CALLBACK DialogUser::onMessageDone(int code, WPARAM w, LPARAM l) {
  const auto& done = *reinterpret_cast<const CWPRETSTRUCT*>(l);
  const bool isDialog = code == HC_ACTION && done.message == WM_INITDIALOG &&
                        (GetWindowLongW(done.hwnd, GWL_STYLE) & WS_CHILD) == 0;
  if (isDialog && current) {
    if (current->shown_++ == 0) current->title_ = textOf(done.hwnd);
    current->act_(done.hwnd);
  }
  return CallNextHookEx(nullptr, code, w, l);
}

void DialogUser::press(HWND dialog, int button) {
  PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
}

void DialogUser::type(HWND dialog, int control, const std::wstring& text) {
  SendDlgItemMessageW(dialog, control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void DialogUser::typeName(HWND dialog, const std::wstring& name) {
  type(dialog, GetDlgItem(dialog, kOldNameField) ? kOldNameField : kNameField, name);
}

std::wstring DialogUser::words(HWND dialog) {
  std::wstring words = textOf(dialog);
  EnumChildWindows(dialog, addWords, reinterpret_cast<LPARAM>(&words));
  return words;
}

NoWindows::NoWindows()
    : hook_(SetWindowsHookExW(WH_CBT, refuseWindows, nullptr, GetCurrentThreadId())) {}

bool hasDisplay() { return std::getenv("DISPLAY") != nullptr; }

Picture::Picture(HWND window) {
  ShowWindow(window, SW_SHOW);
  RedrawWindow(window, nullptr, nullptr,
               RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_UPDATENOW | RDW_ALLCHILDREN);
  RECT box;
  GetWindowRect(window, &box);
  width = box.right - box.left;
  height = box.bottom - box.top;
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof info.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HDC const from = GetWindowDC(window);
  HDC const into = CreateCompatibleDC(from);
  HBITMAP const bitmap = CreateDIBSection(into, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ const before = SelectObject(into, bitmap);
  BitBlt(into, 0, 0, width, height, from, 0, 0, SRCCOPY);
  GdiFlush();
  pixels.assign(static_cast<const unsigned int*>(bits),
                static_cast<size_t>(width) * static_cast<size_t>(height));
  for (unsigned int& pixel : pixels) pixel &= 0xFFFFFF;
  SelectObject(into, before);
  DeleteObject(bitmap);
  DeleteDC(into);
  ReleaseDC(window, from);
}

void Picture::write(const std::string& name) const {
  const char* const folder = std::getenv("ZO_PICTURES");
  if (!folder) return;
  std::ofstream file(std::string(folder) + "/" + name + ".bmp", std::ios::binary);
  const auto bytes = static_cast<DWORD>(pixels.size() * sizeof pixels[0]);
  BITMAPFILEHEADER head = {};
  head.bfType = 0x4D42;
  head.bfOffBits = sizeof head + sizeof(BITMAPINFOHEADER);
  head.bfSize = head.bfOffBits + bytes;
  const BITMAPINFOHEADER info = {sizeof info, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  file.write(reinterpret_cast<const char*>(&head), sizeof head);
  file.write(reinterpret_cast<const char*>(&info), sizeof info);
  file.write(reinterpret_cast<const char*>(pixels.data()), bytes);
}

bool Picture::showsSomething() const {
  std::map<unsigned int, size_t> counts;
  for (const unsigned int pixel : pixels) ++counts[pixel];
  size_t most = 0;
  for (const auto& [pixel, count] : counts) most = std::max(most, count);
  return counts.size() >= 4 && counts[0] < pixels.size() / 2 && most < pixels.size() * 99 / 100;
}

}  // namespace zo::test
