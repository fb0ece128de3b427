#include "dialogs/editor_field.h"

#include <string>

ZoString zo::windowText(HWND control) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
  text.resize(
      static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
  return ZoString(std::wstring_view(text));
}

bool zo::EditorField::open(const RECT& box, const ZoString& path, What what, const ZoString& text) {
  constexpr WPARAM kNoLimit = 0x7FFFFFFE;
  SendMessageW(control_, EM_SETLIMITTEXT, kNoLimit, 0);
  SetWindowTextW(control_, text);
  if (text.view().find_first_of(L"\r\n") != std::wstring_view::npos || windowText(control_) != text)
    return false;
  path_ = path;
  shown_ = text;
  what_ = what;
  isOpen_ = true;
  place(box);
  ShowWindow(control_, SW_SHOW);
  SetFocus(control_);
  SendMessageW(control_, EM_SETSEL, 0, -1);
  return true;
}

void zo::EditorField::place(const RECT& box) noexcept {
  SetWindowPos(control_, HWND_TOP, box.left, box.top, box.right - box.left, box.bottom - box.top,
               SWP_NOACTIVATE);
}

void zo::EditorField::close() noexcept {
  if (!isOpen_) return;
  isOpen_ = false;  // before the focus goes, which would close it, too
  ShowWindow(control_, SW_HIDE);
}

ZoString zo::EditorField::text() const { return windowText(control_); }
