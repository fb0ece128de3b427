// The columns of the editor's list, and how wide the user has made them.
#pragma once

#include <windows.h>

#include <array>

#include "dialogs/editor_rows.h"

namespace zo {

class EditorColumns {
 public:
  using Widths = std::array<int, EditorRows::kColumns>;  // in pixels; 0: what it has at first

  // Makes all but the other variant's.
  void start(HWND list, const Widths& widths);
  void showOther(bool isShown);
  [[nodiscard]] Widths widths() const noexcept;

 private:
  void insert(int column, int width) const;

  HWND list_ = nullptr;
  int other_ = 0;  // the other variant's width while it is not shown
  bool isOtherShown_ = false;
};

}  // namespace zo
