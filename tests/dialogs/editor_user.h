// The user of the editor of variants: finds rows by their names, types into the field, presses
// keys; all in the thread that shows it (dialog_user.h).
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>
#include <zo/dialogs/variant_dialog.h>

#include <functional>
#include <string>

#include "dialogs/dialog_user.h"
#include "dialogs/editor.h"

namespace zo::test {

class EditorUser {
 public:
  explicit EditorUser(HWND window) : window_(window) {}

  [[nodiscard]] HWND window() const { return window_; }
  [[nodiscard]] HWND item(int id) const { return GetDlgItem(window_, id); }
  [[nodiscard]] std::wstring text(int id) const { return textOf(item(id)); }
  [[nodiscard]] std::wstring status() const { return text(kEditorStatus); }
  [[nodiscard]] bool isFieldOpen() const {
    return (GetWindowLongW(item(kEditorField), GWL_STYLE) & WS_VISIBLE) != 0;
  }

  void command(int id) const { SendMessageW(window_, WM_COMMAND, static_cast<WPARAM>(id), 0); }
  void type(int id, const wchar_t* words) const { SetWindowTextW(item(id), words); }
  // As the platform's loop for dialogs hands a key on; modifiers are held meanwhile.
  void key(int id, WPARAM key, std::initializer_list<int> modifiers = {}) const;

  // ---- The list ----
  [[nodiscard]] int rows() const { return ask(kEditorList, LVM_GETITEMCOUNT); }
  [[nodiscard]] int selected() const {
    return ask(kEditorList, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
  }
  [[nodiscard]] std::wstring cell(int row, int column) const;
  // Names, or another column, with blanks between them.
  [[nodiscard]] std::wstring column(int column = 0) const;
  void select(int row) const;
  // False where no row has the name.
  bool select(const wchar_t* name) const;
  // Selects a row, opens the field over its value or name, types, and presses Enter.
  void enter(const wchar_t* name, int command, const wchar_t* words) const;

  // ---- The tree ----
  [[nodiscard]] HTREEITEM next(HTREEITEM from, WPARAM which) const;
  [[nodiscard]] std::wstring textOf(HTREEITEM item) const;
  // The texts of an item's children, with blanks between them; null is the whole value's item.
  [[nodiscard]] std::wstring branch(HTREEITEM item = nullptr) const;
  void choose(HTREEITEM item) const {
    ask(kEditorTree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
  }

  static std::wstring textOf(HWND window);

 private:
  int ask(int id, UINT message, WPARAM w = 0, LPARAM l = 0) const {
    return static_cast<int>(SendMessageW(item(id), message, w, l));
  }

  HWND window_;
};

// As pictures show it.
ZoVariant part();

// Shows the dialog; the first act sees the editor, each further one a dialog that it opens. All
// must come.
int edit(ZoVariantDialog& dialog, std::initializer_list<std::function<void(EditorUser)>> acts,
         HWND owner = nullptr);

}  // namespace zo::test
