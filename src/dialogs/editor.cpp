#include "dialogs/editor.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>

#include "dialogs/edit_paths.h"
#include "dialogs/places.h"

namespace {

using zo::dialogText;
using enum zo::DialogText;

struct Button {
  zo::EditorControl id;
  zo::DialogText text;
};
// From top to bottom beside the list; the menu has them, too.
constexpr Button kButtons[] = {
    {zo::kEditorAdd, commandAdd},
    {zo::kEditorRemove, commandRemove},
    {zo::kEditorProperties, commandProperties},
    {zo::kEditorUp, commandUp},
    {zo::kEditorDown, commandDown},
    {zo::kEditorUndo, commandUndo},
    {zo::kEditorRedo, commandRedo},
};

// In dialog units.
constexpr short kWidth = 440, kHeight = 250, kLeastWidth = 320, kLeastHeight = 196;
constexpr int kGap = 7, kRow = 14, kColumn = 66;

constexpr UINT kColumnsMoved = WM_APP;

zo::DialogTemplate formOf(const ZoString& title, bool isReadOnly, bool isCompared) {
  const auto style = [](DWORD own) { return own | WS_TABSTOP; };
  zo::DialogTemplate form(title.isEmpty() ? ZoString(dialogText(editTitle)).view() : title.view(),
                          WS_THICKFRAME | WS_MAXIMIZEBOX | WS_CLIPCHILDREN | DS_CENTER, kWidth,
                          kHeight);
  constexpr zo::DialogTemplate::Box kNowhere{0, 0, 10, 10};  // layout() places them all
  form.add(WC_TREEVIEWW, zo::kEditorTree, kNowhere,
           style(WS_BORDER | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS));
  form.add(L"Edit", zo::kEditorField, kNowhere, style(WS_BORDER | ES_AUTOHSCROLL), {}, true);
  form.add(WC_LISTVIEWW, zo::kEditorList, kNowhere,
           style(WS_BORDER | WS_CLIPSIBLINGS | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL |
                 LVS_SHOWSELALWAYS));
  form.add(L"Static", zo::kEditorFindLabel, kNowhere, SS_LEFT, dialogText(findLabel));
  form.add(L"Edit", zo::kEditorFind, kNowhere, style(WS_BORDER | ES_AUTOHSCROLL));
  form.add(L"Button", zo::kEditorOnlyDifferences, kNowhere, style(BS_AUTOCHECKBOX),
           dialogText(onlyDifferences), !isCompared);
  for (const Button& button : kButtons)
    form.add(L"Button", button.id, kNowhere, style(BS_PUSHBUTTON), dialogText(button.text));
  form.add(L"Static", zo::kEditorStatus, kNowhere, SS_NOPREFIX | SS_ENDELLIPSIS);
  form.add(L"Button", IDOK, kNowhere, style(BS_DEFPUSHBUTTON), dialogText(ok), isReadOnly);
  form.add(L"Button", IDCANCEL, kNowhere, style(BS_PUSHBUTTON),
           dialogText(isReadOnly ? close : cancel));
  return form;
}

}  // namespace

zo::Editor::Editor(Request request)
    : edits_(std::move(request.value)),
      other_(request.other),
      title_(std::move(request.title)),
      key_(std::move(request.key)),
      take_(std::move(request.take)),
      tree_(edits_) {
  edits_.setReadOnly(request.isReadOnly);
}

int zo::Editor::show(HWND owner) {
  return ask(owner, formOf(title_, edits_.isReadOnly(), other_ != nullptr));
}

// A command may have thrown behind its edit, which is shown then.
bool zo::Editor::survives() noexcept {
  if (!isMending_) {
    isMending_ = true;
    try {
      showAnew();
    } catch (...) {
      matches_.clear();  // they may be of the value as it was; the next command shows the rows
    }
    isMending_ = false;
  }
  SetDlgItemTextW(window(), kEditorStatus, dialogText(noMemory));
  return true;
}

// ---- The window ----

HWND zo::Editor::onStart() {
  list_ = item(kEditorList);
  field_.start(item(kEditorField));
  SendMessageW(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
  fitIntoScreen();
  restorePlace(key_, window());
  restoreWidths();
  tree_.start(item(kEditorTree));
  reload();
  select(0);
  return list_;
}

// The border's place, and the columns' widths.
void zo::Editor::restoreWidths() {
  EditorColumns::Widths widths{};
  const std::vector<int> kept = keptNumbers(key_, L"columns");
  if (kept.size() == widths.size() + 1) {
    split_.share = std::min(kept.front(), EditorSplit::kWhole);
    std::copy(kept.begin() + 1, kept.end(), widths.begin());
  }
  layout();
  columns_.start(list_, widths);
}

void zo::Editor::keepWidths() const {
  const EditorColumns::Widths widths = columns_.widths();
  std::vector<int> numbers{split_.share};
  numbers.insert(numbers.end(), widths.begin(), widths.end());
  keepNumbers(key_, L"columns", numbers);
}

void zo::Editor::layout() {
  RECT unit{0, 0, 400, 800};
  MapDialogRect(window(), &unit);
  const auto x = [&unit](int units) { return units * unit.right / 400; };
  const auto y = [&unit](int units) { return units * unit.bottom / 800; };
  RECT box;
  GetClientRect(window(), &box);
  const auto place = [this](int id, LONG left, LONG top, LONG right, LONG bottom) {
    SetWindowPos(item(id), nullptr, left, top, right - left, bottom - top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  };
  const LONG gap = x(kGap), row = y(kRow), right = box.right - gap, buttons = right - x(kColumn);
  const LONG top = y(kGap) + row + y(4), last = box.bottom - y(kGap) - row, end = last - y(kGap);
  place(kEditorFindLabel, gap, y(kGap + 3), gap + x(34), y(kGap) + row);
  place(kEditorFind, gap + x(36), y(kGap), buttons - x(104), y(kGap) + row);
  place(kEditorOnlyDifferences, buttons - x(98), y(kGap), right, y(kGap) + row);
  for (LONG at = top; const Button& button : kButtons) {
    place(button.id, buttons, at, right, at + row);
    at += row + y(3);
  }
  place(kEditorStatus, gap, last + y(3), right - x(112), last + row);
  place(IDOK, right - x(108), last, right - x(56), last + row);
  place(IDCANCEL, right - x(52), last, right, last + row);
  split_.room = {gap, top, buttons - gap, end};
  split_.bar = x(4);
  split_.least = x(60);
  layoutSplit();
  InvalidateRect(window(), nullptr, TRUE);
}

void zo::Editor::layoutSplit() {
  const RECT& room = split_.room;
  const LONG edge = split_.edge(), list = edge + split_.bar, height = room.bottom - room.top;
  const auto place = [&](HWND control, LONG left, LONG right) {
    SetWindowPos(control, nullptr, left, room.top, right - left, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  };
  place(item(kEditorTree), room.left, edge);
  place(list_, list, room.right);
  placeField();
}

void zo::Editor::moveSplit(LONG edge) {
  split_.moveTo(edge);
  layoutSplit();
}

// Over its cell, wherever that is now; scrolling may close it.
void zo::Editor::placeField() {
  if (!field_.isOpen()) return;
  const int index = rows_.indexOf(field_.path());
  SendMessageW(list_, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
  if (field_.isOpen()) field_.place(cellOf(index, field_.what()));
}

RECT zo::Editor::cellOf(int index, EditorField::What what) const {
  RECT cell{};
  cell.top = what == EditorField::kName ? EditorRows::kName : EditorRows::kValue;
  cell.left = LVIR_LABEL;
  SendMessageW(list_, LVM_GETSUBITEMRECT, static_cast<WPARAM>(index),
               reinterpret_cast<LPARAM>(&cell));
  RECT seen;
  GetClientRect(list_, &seen);
  cell.right = std::min(std::max(cell.right, cell.left + 40), seen.right);
  MapWindowPoints(list_, window(), reinterpret_cast<POINT*>(&cell), 2);
  return cell;
}

void zo::Editor::limitSize(MINMAXINFO& limits) const {
  RECT least{0, 0, kLeastWidth, kLeastHeight};
  MapDialogRect(window(), &least);
  AdjustWindowRectEx(&least, static_cast<DWORD>(GetWindowLongW(window(), GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongW(window(), GWL_EXSTYLE)));
  limits.ptMinTrackSize = {least.right - least.left, least.bottom - least.top};
}

bool zo::Editor::onMessage(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_SIZE:
      if (!list_ || w == SIZE_MINIMIZED) return false;
      layout();
      return true;
    case WM_GETMINMAXINFO:
      limitSize(*reinterpret_cast<MINMAXINFO*>(l));
      return true;
    case WM_SETCURSOR:
    case WM_LBUTTONDOWN:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
      return onMouse(message, {GET_X_LPARAM(l), GET_Y_LPARAM(l)});
    case kColumnsMoved:
      placeField();
      return true;
    case WM_CONTEXTMENU:
      if (reinterpret_cast<HWND>(w) != list_) return false;
      onMenu({GET_X_LPARAM(l), GET_Y_LPARAM(l)});
      return true;
    case WM_DESTROY:
      if (!list_) return false;
      keepPlace(key_, window());
      keepWidths();
      return false;
    default:
      return false;
  }
}

// The border is dragged as long as the window has the mouse.
bool zo::Editor::onMouse(UINT message, POINT at) {
  const bool isDragged = GetCapture() == window();
  if (message == WM_SETCURSOR) {  // which does not say where
    GetCursorPos(&at);
    ScreenToClient(window(), &at);
  }
  if (!isDragged && !split_.isOnBar(at)) return false;
  if (message == WM_SETCURSOR) SetCursor(LoadCursorW(nullptr, IDC_SIZEWE));
  if (message == WM_LBUTTONDOWN) {
    split_.grip = at.x - split_.edge();
    SetCapture(window());
  }
  if (message == WM_MOUSEMOVE && isDragged) moveSplit(at.x - split_.grip);
  if (message == WM_LBUTTONUP && isDragged) ReleaseCapture();
  return true;
}

// By the keyboard it comes without a place.
void zo::Editor::onMenu(POINT at) {
  if (at.x == -1 && at.y == -1) {
    RECT box{};
    box.left = LVIR_LABEL;
    SendMessageW(list_, LVM_GETITEMRECT, static_cast<WPARAM>(std::max(selected(), 0)),
                 reinterpret_cast<LPARAM>(&box));
    at = {box.left, box.bottom};
    ClientToScreen(list_, &at);
  }
  auto* const menu = CreatePopupMenu();
  AppendMenuW(menu, MF_STRING, kEditorEdit, dialogText(commandEdit));
  AppendMenuW(menu, MF_STRING, kEditorRename, dialogText(commandRename));
  for (const Button& button : kButtons)
    AppendMenuW(menu, IsWindowEnabled(item(button.id)) ? MF_STRING : MF_STRING | MF_GRAYED,
                static_cast<UINT_PTR>(button.id), dialogText(button.text));
  TrackPopupMenu(menu, TPM_LEFTALIGN, at.x, at.y, 0, window(), nullptr);
  DestroyMenu(menu);
}

LRESULT zo::Editor::onNotice(NMHDR& notice) {
  if (notice.idFrom == kEditorList) return onListNotice(notice);
  if (notice.code == HDN_ENDTRACKW || notice.code == HDN_ITEMCHANGEDW)
    PostMessageW(window(), kColumnsMoved, 0, 0);  // the list itself has not moved them yet
  if (notice.idFrom != kEditorTree) return 0;
  if (notice.code != TVN_SELCHANGEDW) return tree_.onNotice(notice);
  const ZoString* const path = tree_.isBusy() ? nullptr : tree_.pathOf(tree_.chosen());
  if (path && *path != chosen_ && finish()) open(ZoString(*path));
  return 0;
}

LRESULT zo::Editor::onListNotice(NMHDR& notice) {
  switch (notice.code) {
    case LVN_GETDISPINFOW:
      showCell(reinterpret_cast<NMLVDISPINFOW&>(notice).item);
      return 0;
    case LVN_ODFINDITEMW: {
      const auto& wanted = reinterpret_cast<NMLVFINDITEMW&>(notice);
      return wanted.lvfi.flags & LVFI_STRING ? rows_.startingWith(wanted.lvfi.psz, wanted.iStart)
                                             : -1;
    }
    case LVN_ITEMCHANGED:
      if (!(reinterpret_cast<NMLISTVIEW&>(notice).uNewState & LVIS_SELECTED)) return 0;
      sayPath();
      enableCommands();
      return 0;
    case NM_DBLCLK:
      perform(kEditorEdit);
      return 0;
    case LVN_BEGINSCROLL:
      static_cast<void>(finish());
      return 0;
    default:
      return 0;
  }
}

// Without memory for its text it is empty: to say so would draw again, and so on.
void zo::Editor::showCell(const LVITEMW& cell) const noexcept {
  if (!(cell.mask & LVIF_TEXT) || cell.cchTextMax <= 0) return;
  try {
    lstrcpynW(cell.pszText, rows_.text(cell.iItem, cell.iSubItem), cell.cchTextMax);
  } catch (...) {
    *cell.pszText = L'\0';
  }
}

// ---- What is shown ----

void zo::Editor::open(const ZoString& container) {
  chosen_ = container;
  reload();
  select(0);
  tree_.choose(chosen_);
}

void zo::Editor::reload() {
  rows_ = EditorRows(edits_, chosen_, differences_ ? &*differences_ : nullptr);
  SendMessageW(list_, LVM_SETITEMCOUNT, static_cast<WPARAM>(rows_.count()), 0);
  InvalidateRect(list_, nullptr, FALSE);
}

// An index behind the last row is the last row.
void zo::Editor::select(int index) {
  const auto set = [this](int row, UINT states) {
    LVITEMW state = {};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    state.state = states;
    SendMessageW(list_, LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&state));
  };
  index = std::min(index, rows_.count() - 1);
  // Not all rows at once, which are looked at one by one then.
  if (const int before = selected(); before >= 0 && before != index) set(before, 0);
  if (index >= 0) {
    set(index, LVIS_SELECTED | LVIS_FOCUSED);
    SendMessageW(list_, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
  }
  sayPath();
  enableCommands();
}

// An element that the differences leave out ends them.
void zo::Editor::reveal(const ZoString& path) {
  if (differences_ && !differences_->isShown(path)) compare(false);
  show(path);
}

// The container in which it is, and itself if it has a row.
void zo::Editor::show(const ZoString& path) {
  const ZoString outer(outerOf(path.view()));
  if (outer != chosen_) open(outer);
  select(std::max(rows_.indexOf(path), 0));
}

int zo::Editor::selected() const noexcept {
  return static_cast<int>(
      SendMessageW(list_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void zo::Editor::say(const ZoString& text) { SetDlgItemTextW(window(), kEditorStatus, text); }

void zo::Editor::sayPath() {
  const std::optional<EditorRows::Row> row = rows_.at(selected());
  say(row ? row->path : chosen_);
}

void zo::Editor::enableCommands() {
  const std::optional<EditorRows::Row> row = rows_.at(selected());
  const ZoVariant* const container = edits_.value().find(chosen_.view());
  const bool isOpen = !edits_.isReadOnly();
  const bool isElement = row && row->value && !row->path.isEmpty();
  const bool isPlaced = isElement && container && container->asSequence();
  const auto enable = [this](int id, bool isOn) {
    if (!isOn && GetFocus() == item(id)) SetFocus(list_);
    EnableWindow(item(id), isOn);
  };
  enable(kEditorAdd, edits_.isEditable(chosen_.view()));
  enable(kEditorRemove, isOpen && isElement);
  enable(kEditorProperties, row && row->value);
  enable(kEditorUp, isOpen && isPlaced);
  enable(kEditorDown, isOpen && isPlaced);
  enable(kEditorUndo, isOpen && edits_.undoCount() > 0);
  enable(kEditorRedo, isOpen && edits_.redoCount() > 0);
}
