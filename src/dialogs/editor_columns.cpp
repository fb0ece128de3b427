#include "dialogs/editor_columns.h"

#include <commctrl.h>

#include <algorithm>

#include "dialogs/dialog_texts.h"

namespace {

using enum zo::DialogText;

// Parts of a hundred that a column has of the list at first.
constexpr struct {
  zo::DialogText text;
  int share;
} kColumns[] = {
    {columnName, 25}, {columnType, 18}, {columnValue, 37}, {columnFlags, 20}, {columnOther, 25}};
static_assert(std::size(kColumns) == zo::EditorRows::kColumns);

}  // namespace

void zo::EditorColumns::start(HWND list, const Widths& widths) {
  list_ = list;
  other_ = widths[EditorRows::kOther];
  for (int column = 0; column < EditorRows::kOther; ++column)
    insert(column, widths[static_cast<size_t>(column)]);
}

void zo::EditorColumns::showOther(bool isShown) {
  if (isShown == isOtherShown_) return;
  if (isShown) {
    insert(EditorRows::kOther, other_);
  } else {
    other_ = widths()[EditorRows::kOther];
    SendMessageW(list_, LVM_DELETECOLUMN, EditorRows::kOther, 0);
  }
  isOtherShown_ = isShown;
}

zo::EditorColumns::Widths zo::EditorColumns::widths() const noexcept {
  Widths widths{};
  for (size_t i = 0; i < widths.size(); ++i)
    widths[i] = static_cast<int>(SendMessageW(list_, LVM_GETCOLUMNWIDTH, i, 0));
  if (!isOtherShown_) widths[EditorRows::kOther] = other_;
  return widths;
}

void zo::EditorColumns::insert(int column, int width) const {
  RECT box;
  GetClientRect(list_, &box);
  const int room = box.right - GetSystemMetrics(SM_CXVSCROLL);
  const auto& [text, share] = kColumns[column];
  LVCOLUMNW request = {};
  request.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_ORDER;
  request.iOrder = std::min<int>(column, EditorRows::kFlags);  // the other's value beside the value
  request.pszText = const_cast<wchar_t*>(dialogText(text));
  request.cx = width > 0 ? width : room * share / 100;
  SendMessageW(list_, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column),
               reinterpret_cast<LPARAM>(&request));
}
