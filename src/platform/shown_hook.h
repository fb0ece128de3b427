// Whether one of the platform's older dialogs was shown at all: they answer the same when the user
// cancels and when no window could be made. Their hook tells; it also sets a title, for which they
// have no place, and keeps what a control shows first.
//
//   const zo::ShownHook hook(title);
//   request.lpfnHook = &zo::ShownHook::proc;
//   const BOOL taken = ChooseColorW(&request);
//
// Threads: hooks of one thread may be nested, as their dialogs are.
#pragma once

#include <windows.h>

#include <string>
#include <utility>

namespace zo {

class ShownHook {
 public:
  explicit ShownHook(std::wstring title, int control = 0) noexcept
      : title_(std::move(title)), control_(control), outer_(std::exchange(current(), this)) {}
  ~ShownHook() { current() = outer_; }
  ShownHook(const ShownHook&) = delete;
  ShownHook& operator=(const ShownHook&) = delete;

  static UINT_PTR CALLBACK proc(HWND window, UINT message, WPARAM, LPARAM) noexcept {
    if (message != WM_INITDIALOG || !current()) return FALSE;
    current()->wasShown_ = true;
    if (!current()->title_.empty()) SetWindowTextW(window, current()->title_.c_str());
    current()->keepFirstText(window);
    return TRUE;
  }
  [[nodiscard]] bool wasShown() const noexcept { return wasShown_; }
  // Of the control, as far as there was room; empty without one.
  [[nodiscard]] const wchar_t* firstText() const noexcept { return firstText_; }

 private:
  void keepFirstText(HWND window) noexcept {
    if (control_) GetDlgItemTextW(window, control_, firstText_, static_cast<int>(kRoom));
  }
  static ShownHook*& current() noexcept {
    static thread_local ShownHook* innermost = nullptr;
    return innermost;
  }

  static constexpr size_t kRoom = 16;

  std::wstring title_;
  int control_;
  wchar_t firstText_[kRoom] = {};
  ShownHook* outer_;
  bool wasShown_ = false;
};

}  // namespace zo
