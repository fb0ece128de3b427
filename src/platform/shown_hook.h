// Whether one of the platform's older dialogs was shown at all: they answer the same when the user
// cancels and when no window could be made. Their hook tells; it also sets a title, for which they
// have no place.
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
  explicit ShownHook(std::wstring title) noexcept
      : title_(std::move(title)), outer_(std::exchange(current(), this)) {}
  ~ShownHook() { current() = outer_; }
  ShownHook(const ShownHook&) = delete;
  ShownHook& operator=(const ShownHook&) = delete;

  static UINT_PTR CALLBACK proc(HWND window, UINT message, WPARAM, LPARAM) noexcept {
    if (message != WM_INITDIALOG || !current()) return FALSE;
    current()->wasShown_ = true;
    if (!current()->title_.empty()) SetWindowTextW(window, current()->title_.c_str());
    return TRUE;
  }
  [[nodiscard]] bool wasShown() const noexcept { return wasShown_; }

 private:
  static ShownHook*& current() noexcept {
    static thread_local ShownHook* innermost = nullptr;
    return innermost;
  }

  std::wstring title_;
  ShownHook* outer_;
  bool wasShown_ = false;
};

}  // namespace zo
