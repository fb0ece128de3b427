#include "dialogs/editor_user.h"

#include <vector>

namespace zo::test {

std::wstring EditorUser::textOf(HWND window) {
  std::wstring text(10'000, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), 10'000)));
  return text;
}

void EditorUser::key(int id, WPARAM key, std::initializer_list<int> modifiers) const {
  BYTE before[256], held[256];
  GetKeyboardState(before);
  std::copy(std::begin(before), std::end(before), held);
  for (const int modifier : modifiers) held[modifier] = 0x80;
  SetKeyboardState(held);
  SetFocus(item(id));
  MSG message = {};
  message.hwnd = item(id);
  message.message = held[VK_MENU] & 0x80 ? WM_SYSKEYDOWN : WM_KEYDOWN;
  message.wParam = key;
  IsDialogMessageW(window_, &message);
  SetKeyboardState(before);
}

std::wstring EditorUser::cell(int row, int column) const {
  std::wstring text(300, L'\0');
  LVITEMW request = {};
  request.iSubItem = column;
  request.pszText = text.data();
  request.cchTextMax = 300;
  text.resize(static_cast<size_t>(ask(kEditorList, LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                                      reinterpret_cast<LPARAM>(&request))));
  return text;
}

std::wstring EditorUser::column(int column) const {
  std::wstring all;
  for (int i = 0; i < rows(); ++i) all += (i ? L" " : L"") + cell(i, column);
  return all;
}

void EditorUser::select(int row) const {
  LVITEMW state = {};
  state.state = state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  ask(kEditorList, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
}

bool EditorUser::select(const wchar_t* name) const {
  for (int i = 0; i < rows(); ++i)
    if (cell(i, 0) == name) return select(i), true;
  ADD_FAILURE() << "no row " << ZoString(name).toUtf8();
  return false;
}

void EditorUser::enter(const wchar_t* name, int id, const wchar_t* words) const {
  select(name);
  command(id);
  EXPECT_TRUE(isFieldOpen()) << ZoString(name).toUtf8();
  type(kEditorField, words);
  key(kEditorField, VK_RETURN);
}

HTREEITEM EditorUser::next(HTREEITEM from, WPARAM which) const {
  return reinterpret_cast<HTREEITEM>(
      SendMessageW(item(kEditorTree), TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(from)));
}

std::wstring EditorUser::textOf(HTREEITEM tree) const {
  std::wstring text(300, L'\0');
  TVITEMW request = {};
  request.mask = TVIF_TEXT;
  request.hItem = tree;
  request.pszText = text.data();
  request.cchTextMax = 300;
  ask(kEditorTree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&request));
  return request.pszText;
}

std::wstring EditorUser::branch(HTREEITEM item) const {
  std::wstring all;
  for (HTREEITEM child = next(item ? item : next(nullptr, TVGN_ROOT), TVGN_CHILD); child;
       child = next(child, TVGN_NEXT))
    all += (all.empty() ? L"" : L" ") + textOf(child);
  return all;
}

ZoVariant part() {
  ZoVariant part(ZoVariant::kDict, ZoTypeCode::Part);
  const std::pair<const wchar_t*, ZoVariant> values[] = {
      {L"coating", ZoVariant(L"zinc", ZoTypeCode::String, ZoFlagParameter)},
      {L"holes", ZoVariant(ZoVariant::kSequence)},
      {L"holes/0", ZoVariant(ZoPoint(1, 2, 3))},
      {L"length", ZoVariant(12.0, ZoTypeCode::Length)},
      {L"mass", ZoVariant(0.5, ZoTypeCode::Mass, ZoFlagConstant)},
      {L"supplier/name", ZoVariant(L"Bolts & Co")},
  };
  for (const auto& [path, value] : values) EXPECT_EQ(part.put(path, value), 0);
  return part;
}

int edit(ZoVariantDialog& dialog, std::initializer_list<std::function<void(EditorUser)>> acts,
         HWND owner) {
  auto act = acts.begin();
  DialogUser user([&](HWND window) {
    if (act == acts.end()) {
      ADD_FAILURE() << "one dialog too many: " << ZoString(EditorUser::textOf(window)).toUtf8();
      return DialogUser::press(window, IDCANCEL);
    }
    (*act++)(EditorUser(window));
  });
  const int code = dialog.show(owner);
  EXPECT_EQ(user.shown(), static_cast<int>(acts.size()));
  return code;
}

}  // namespace zo::test
