#include "platform/modal_dialog.h"

#include <algorithm>

RECT zo::fittedInto(const RECT& area, const RECT& box) noexcept {
  const LONG width = std::min(box.right - box.left, area.right - area.left);
  const LONG height = std::min(box.bottom - box.top, area.bottom - area.top);
  const LONG left = std::clamp(box.left, area.left, area.right - width);
  const LONG top = std::clamp(box.top, area.top, area.bottom - height);
  return {left, top, left + width, top + height};
}

void zo::ModalDialog::fitIntoScreen() const noexcept {
  MONITORINFO screen = {};
  screen.cbSize = sizeof screen;
  RECT box;
  if (!GetMonitorInfoW(MonitorFromWindow(window_, MONITOR_DEFAULTTONEAREST), &screen) ||
      !GetWindowRect(window_, &box))
    return;
  const RECT fitted = fittedInto(screen.rcWork, box);
  if (EqualRect(&fitted, &box)) return;
  SetWindowPos(window_, nullptr, fitted.left, fitted.top, fitted.right - fitted.left,
               fitted.bottom - fitted.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

// Sees the keys of the innermost dialog of its thread.
class zo::ModalDialog::Keys {
 public:
  explicit Keys(ModalDialog& dialog) noexcept
      : outer_(std::exchange(current(), &dialog)),
        hook_(SetWindowsHookExW(WH_MSGFILTER, onInput, nullptr, GetCurrentThreadId())) {}
  ~Keys() {
    UnhookWindowsHookEx(hook_);
    current() = outer_;
  }
  Keys(const Keys&) = delete;
  Keys& operator=(const Keys&) = delete;

 private:
  static ModalDialog*& current() noexcept {
    static thread_local ModalDialog* innermost = nullptr;
    return innermost;
  }
  static LRESULT CALLBACK onInput(int code, WPARAM w, LPARAM l) noexcept {
    const auto& message = *reinterpret_cast<const MSG*>(l);
    const bool isKey = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    ModalDialog* const dialog = current();
    // A key whose code has thrown is done with, too: Enter must not go on to the button OK.
    if (code == MSGF_DIALOGBOX && isKey && dialog && dialog->isStarted_ &&
        IsChild(dialog->window_, message.hwnd) &&
        dialog->guarded([&] { return dialog->onKey(message); }, true))
      return TRUE;
    return CallNextHookEx(nullptr, code, w, l);
  }

  ModalDialog* outer_;
  HHOOK hook_;
};

int zo::ModalDialog::ask(HWND owner, const DialogTemplate& form) {
  window_ = nullptr;
  isStarted_ = false;
  thrown_ = nullptr;
  const Keys keys(*this);
  SetLastError(ERROR_SUCCESS);
  const INT_PTR button = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), form.get(), owner, proc,
                                                 reinterpret_cast<LPARAM>(this));
  error_ = isStarted_ ? ERROR_SUCCESS : GetLastError();
  if (thrown_) std::rethrow_exception(thrown_);
  if (!isStarted_) return 0;
  return button > 0 ? static_cast<int>(button) : IDCANCEL;
}

template <class Work>
auto zo::ModalDialog::guarded(Work work, decltype(work()) otherwise) noexcept -> decltype(work()) {
  try {
    return work();
  } catch (...) {
    if (!isStarted_ || !survives()) {
      if (!thrown_) thrown_ = std::current_exception();
      end(IDCANCEL);
    }
    return otherwise;
  }
}

INT_PTR CALLBACK zo::ModalDialog::proc(HWND window, UINT message, WPARAM w, LPARAM l) noexcept {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, l);
    reinterpret_cast<ModalDialog*>(l)->window_ = window;
  }
  auto* const dialog = reinterpret_cast<ModalDialog*>(GetWindowLongPtrW(window, DWLP_USER));
  return dialog ? dialog->guarded([&] { return dialog->handle(message, w, l); }, FALSE) : FALSE;
}

INT_PTR zo::ModalDialog::handle(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_INITDIALOG: {
      auto* const first = onStart();
      isStarted_ = true;
      if (first) SetFocus(first);
      return first ? FALSE : TRUE;
    }
    case WM_COMMAND:
      onCommand(LOWORD(w), HIWORD(w));
      return TRUE;
    case WM_NOTIFY:
      SetWindowLongPtrW(window_, DWLP_MSGRESULT, onNotice(*reinterpret_cast<NMHDR*>(l)));
      return TRUE;
    default:
      return onMessage(message, w, l);
  }
}

LRESULT zo::ModalDialog::onNotice(NMHDR&) { return 0; }
bool zo::ModalDialog::onMessage(UINT, WPARAM, LPARAM) { return false; }
bool zo::ModalDialog::onKey(const MSG&) { return false; }
