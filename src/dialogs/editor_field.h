// The field in which the editor's user types over a cell of the list: a window beside the list, so
// that it keeps what it holds whatever the list draws.
#pragma once

#include <windows.h>

#include <zo/text/string.h>

namespace zo {

class EditorField {
 public:
  enum What { kValue, kName };

  void start(HWND control) noexcept { control_ = control; }
  [[nodiscard]] HWND control() const noexcept { return control_; }

  // Opens it over a place of the dialog. False when the field cannot hold the text as it is: one of
  // several lines, or with a zero character.
  [[nodiscard]] bool open(const RECT& box, const ZoString& path, What what, const ZoString& text);
  void place(const RECT& box) noexcept;
  void close() noexcept;

  [[nodiscard]] bool isOpen() const noexcept { return isOpen_; }
  [[nodiscard]] const ZoString& path() const noexcept { return path_; }
  [[nodiscard]] What what() const noexcept { return what_; }
  [[nodiscard]] ZoString text() const;
  // Whether it holds another text than at first.
  [[nodiscard]] bool isChanged() const { return text() != shown_; }

 private:
  HWND control_ = nullptr;
  ZoString path_, shown_;
  What what_ = kValue;
  bool isOpen_ = false;
};

// A control's text, of any length.
[[nodiscard]] ZoString windowText(HWND control);

}  // namespace zo
