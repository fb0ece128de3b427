#include "support/message_box.h"

#include <windows.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace zo::test {

struct BoxUser::State {
  Press press;
  std::vector<Box> seen;
  std::set<HWND> known;
  HWND other;  // a window of ours that a task-modal box must lock
  HHOOK activation, filter;

  void meet(HWND dialog);
  static LRESULT CALLBACK onActivation(int code, WPARAM window, LPARAM data);
  static LRESULT CALLBACK onMessage(int code, WPARAM unused, LPARAM message);
};

namespace {

BoxUser::State* user = nullptr;  // of the one thread that shows boxes

std::wstring textOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(
      static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

std::wstring classOf(HWND window) {
  wchar_t name[64];
  return {name, static_cast<std::size_t>(GetClassNameW(window, name, 64))};
}

BOOL CALLBACK look(HWND control, LPARAM data) {
  Box& box = *reinterpret_cast<Box*>(data);
  const std::wstring kind = classOf(control);
  if (kind == L"Button" && (GetWindowLongPtrW(control, GWL_STYLE) & WS_VISIBLE)) {
    box.buttons.push_back(GetDlgCtrlID(control));
  } else if (kind == L"Static") {
    if (auto* const icon = reinterpret_cast<void*>(SendMessageW(control, STM_GETICON, 0, 0)))
      box.icon = icon;
    else
      box.text += textOf(control);
  }
  return TRUE;
}

}  // namespace

// A box becomes active before it is complete: see that it has a message to take.
LRESULT CALLBACK BoxUser::State::onActivation(int code, WPARAM window, LPARAM data) {
  if (code == HCBT_ACTIVATE) PostMessageW(reinterpret_cast<HWND>(window), WM_NULL, 0, 0);
  return CallNextHookEx(nullptr, code, window, data);
}

// A box takes messages when it waits for its user.
LRESULT CALLBACK BoxUser::State::onMessage(int code, WPARAM unused, LPARAM message) {
  const HWND window = reinterpret_cast<const MSG*>(message)->hwnd;
  const HWND dialog = window ? GetAncestor(window, GA_ROOT) : nullptr;
  if (code == MSGF_DIALOGBOX && user && dialog && classOf(dialog) == L"#32770" &&
      user->known.insert(dialog).second) {
    user->meet(dialog);
  }
  return CallNextHookEx(nullptr, code, unused, message);
}

void BoxUser::State::meet(HWND dialog) {
  Box box;
  box.caption = textOf(dialog);
  EnumChildWindows(dialog, look, reinterpret_cast<LPARAM>(&box));
  std::ranges::sort(box.buttons);
  box.ownWindowsLocked = !IsWindowEnabled(other);
  seen.push_back(box);
  PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(press(box)), 0);
}

BoxUser::BoxUser(Press press) : state_(std::make_unique<State>()) {
  state_->press = std::move(press);
  state_->other = CreateWindowExW(0, L"Static", L"", WS_POPUP | WS_VISIBLE, 0, 0, 1, 1, nullptr,
                                  nullptr, nullptr, nullptr);
  const DWORD thread = GetCurrentThreadId();
  state_->activation = SetWindowsHookExW(WH_CBT, State::onActivation, nullptr, thread);
  state_->filter = SetWindowsHookExW(WH_MSGFILTER, State::onMessage, nullptr, thread);
  if (!state_->other || !state_->activation || !state_->filter)
    throw std::runtime_error("no display for message boxes");
  user = state_.get();
}

BoxUser::~BoxUser() {
  user = nullptr;
  UnhookWindowsHookEx(state_->activation);
  UnhookWindowsHookEx(state_->filter);
  DestroyWindow(state_->other);
}

const std::vector<Box>& BoxUser::seen() const { return state_->seen; }

}  // namespace zo::test
