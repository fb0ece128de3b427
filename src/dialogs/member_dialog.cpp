#include "dialogs/member_dialog.h"

#include <algorithm>

#include "dialogs/dialog_texts.h"
#include "names/name_compare.h"
#include "platform/common_controls.h"

namespace {

using enum zo::DialogText;

constexpr short kWidth = 320, kHeight = 220;

LRESULT send(HWND window, UINT message, WPARAM w = 0, const void* l = nullptr) {
  return SendMessageW(window, message, w, reinterpret_cast<LPARAM>(l));
}

std::wstring timeText(const ZoFileTime& time) {
  const FILETIME utc = time;
  SYSTEMTIME moment{}, local{};
  if (time.ticks == 0 || !FileTimeToSystemTime(&utc, &moment) ||
      !SystemTimeToTzSpecificLocalTime(nullptr, &moment, &local))
    return {};
  wchar_t date[80] = L"", clock[80] = L"";
  GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_SHORTDATE, &local, nullptr, date, 80, nullptr);
  GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, TIME_NOSECONDS, &local, nullptr, clock, 80);
  return std::wstring(date) + L' ' + clock;
}

}  // namespace

zo::MemberDialog::MemberDialog(MemberRows& rows, const ItemDialogRequest& request,
                               std::wstring library)
    : rows_(rows), request_(request), library_(std::move(library)), filter_(request.filter) {}

int zo::MemberDialog::show(HWND owner, std::wstring_view member) {
  const CommonControls controls;
  if (auto* const begin = controls.find<decltype(InitCommonControlsEx)>("InitCommonControlsEx")) {
    const INITCOMMONCONTROLSEX lists = {sizeof lists, ICC_LISTVIEW_CLASSES};
    begin(&lists);
  }
  first_ = member;
  return ask(owner, form());
}

zo::DialogTemplate zo::MemberDialog::form() const {
  constexpr short kButton = 60;
  const std::wstring title =
      request_.title.empty() ? std::wstring(dialogText(memberTitle, {ZoVariant(library_)}).view())
                             : request_.title;
  const bool isSeveral = request_.kind == ItemDialogRequest::kOpenSeveral;
  DialogTemplate form(title, DS_MODALFRAME | DS_CENTER, kWidth, kHeight);
  form.add(L"SysListView32", kList, {6, 20, kWidth - 12, kHeight - 66},
           WS_TABSTOP | WS_BORDER | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS |
               LVS_NOSORTHEADER | (isSeveral ? 0 : LVS_SINGLESEL));
  form.add(L"STATIC", kFolder, {6, 6, kWidth - 12, 10}, SS_PATHELLIPSIS | SS_NOPREFIX);
  form.add(L"COMBOBOX", kFilters, {6, kHeight - 41, kWidth - 12, 120},
           WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, {}, request_.filters.empty());
  const short top = kHeight - 21;
  form.add(L"BUTTON", kBack, {6, top, kButton, 15}, WS_TABSTOP, dialogText(memberBack));
  form.add(L"BUTTON", IDOK, {kWidth - 2 * kButton - 10, top, kButton, 15},
           WS_TABSTOP | BS_DEFPUSHBUTTON, dialogText(memberOpen));
  form.add(L"BUTTON", IDCANCEL, {kWidth - kButton - 6, top, kButton, 15}, WS_TABSTOP,
           dialogText(memberCancel));
  return form;
}

HWND zo::MemberDialog::onStart() {
  addColumns();
  for (const auto& filter : request_.filters)
    send(item(kFilters), CB_ADDSTRING, 0, filter.name.c_str());
  send(item(kFilters), CB_SETCURSEL, filter_);
  setFilter(filter_);
  const std::size_t slash = first_.rfind(L'/');
  if (slash != first_.npos) rows_.enter(first_.substr(0, slash));
  showRows(rows_.placeOf(first_.substr(slash + 1)));
  return item(kList);
}

void zo::MemberDialog::addColumns() {
  const struct {
    DialogText text;
    int format, share;  // of the width, in per cent
  } kColumns[] = {
      {memberName, LVCFMT_LEFT, 55}, {memberSize, LVCFMT_RIGHT, 15}, {memberTime, LVCFMT_LEFT, 25}};
  RECT box{};
  GetClientRect(item(kList), &box);
  for (WPARAM place = 0; const auto& each : kColumns) {
    std::wstring text = dialogText(each.text);
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH;
    column.fmt = each.format;
    column.cx = (box.right - box.left) * each.share / 100;
    column.pszText = text.data();
    send(item(kList), LVM_INSERTCOLUMNW, place++, &column);
  }
  SendMessageW(item(kList), LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT,
               LVS_EX_FULLROWSELECT);
}

void zo::MemberDialog::setFilter(unsigned int filter) {
  filter_ = filter;
  rows_.setFilter(filter < request_.filters.size() ? request_.filters[filter].patterns
                                                   : std::wstring());
}

void zo::MemberDialog::showRows(std::size_t chosen) {
  auto* const list = item(kList);
  std::wstring folder = library_;
  if (!rows_.folder().empty()) folder += L"  |  " + rows_.folder();
  SetDlgItemTextW(window(), kFolder, folder.c_str());
  LVITEMW state = {};
  state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), &state);  // all rows
  send(list, LVM_SETITEMCOUNT, rows_.rows().size());
  if (chosen >= rows_.rows().size()) chosen = 0;
  state.state = state.stateMask;
  send(list, LVM_SETITEMSTATE, chosen, &state);
  send(list, LVM_ENSUREVISIBLE, chosen);
  InvalidateRect(list, nullptr, TRUE);
}

void zo::MemberDialog::enter(std::wstring_view folder) {
  rows_.enter(folder);
  showRows(0);
}

// The folder that was left is chosen.
void zo::MemberDialog::leave() {
  const std::wstring inner = rows_.folder();
  if (inner.empty()) return;
  rows_.enterOuter();
  showRows(rows_.placeOf(inner.substr(inner.rfind(L'/') + 1)));
}

void zo::MemberDialog::onCommand(int id, int notice) {
  if (id == IDOK) {
    if (take()) end(IDOK);
  } else if (id == kFilters && notice == CBN_SELCHANGE) {
    setFilter(static_cast<unsigned int>(send(item(kFilters), CB_GETCURSEL)));
    showRows(0);
  } else if (id == IDCANCEL || id == kBack) {
    end(id);
  }
}

// The folder that is chosen alone is entered; else the members that are chosen are taken.
bool zo::MemberDialog::take() {
  std::vector<ZoFileName> names;
  const MemberRows::Row* folder = nullptr;
  LRESULT at = -1;
  while ((at = SendMessageW(item(kList), LVM_GETNEXTITEM, static_cast<WPARAM>(at),
                            LVNI_SELECTED)) >= 0 &&
         static_cast<std::size_t>(at) < rows_.rows().size()) {
    const MemberRows::Row& row = rows_.rows()[static_cast<std::size_t>(at)];
    if (row.member)
      names.push_back(row.member->name);
    else
      folder = &row;
  }
  if (names.empty() && folder) enter(rows_.pathOf(*folder));
  names_.swap(names);
  return !names_.empty();
}

LRESULT zo::MemberDialog::onNotice(NMHDR& notice) {
  if (notice.idFrom != kList) return 0;
  switch (notice.code) {
    case LVN_GETDISPINFOW:
      tell(reinterpret_cast<NMLVDISPINFOW&>(notice));
      return 0;
    case LVN_ODFINDITEMW:
      return find(reinterpret_cast<NMLVFINDITEMW&>(notice));
    case LVN_KEYDOWN:
      if (reinterpret_cast<NMLVKEYDOWN&>(notice).wVKey == VK_BACK) leave();
      return 0;
    case NM_DBLCLK:
      onCommand(IDOK, BN_CLICKED);
      return 0;
    default:
      return 0;
  }
}

void zo::MemberDialog::tell(NMLVDISPINFOW& asked) {
  const auto at = static_cast<std::size_t>(asked.item.iItem);
  if (!(asked.item.mask & LVIF_TEXT) || at >= rows_.rows().size() || asked.item.cchTextMax <= 0)
    return;
  const MemberRows::Row& row = rows_.rows()[at];
  std::wstring text;
  if (asked.item.iSubItem == 0)
    text = row.member ? std::wstring(row.name) : std::wstring(row.name) + L"/";
  else if (row.member && asked.item.iSubItem == 1)
    text = std::to_wstring(row.member->size);
  else if (row.member)
    text = timeText(row.member->written);
  const auto room = static_cast<std::size_t>(asked.item.cchTextMax) - 1;
  asked.item.pszText[text.copy(asked.item.pszText, room)] = L'\0';
}

// For who types the begin of a name.
LRESULT zo::MemberDialog::find(const NMLVFINDITEMW& asked) const {
  const auto& rows = rows_.rows();
  if (!(asked.lvfi.flags & LVFI_STRING) || rows.empty()) return -1;
  const std::wstring_view typed = asked.lvfi.psz;
  const auto start = static_cast<std::size_t>(std::max(asked.iStart, 0)) % rows.size();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::size_t at = (start + i) % rows.size();
    if (equalNames(rows[at].name.substr(0, typed.size()), typed)) return static_cast<LRESULT>(at);
  }
  return -1;
}
