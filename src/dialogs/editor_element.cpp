#include "dialogs/editor_element.h"

#include <commctrl.h>
#include <zo/dialogs/variant_edits.h>
#include <zo/results.h>

#include "dialogs/dialog_texts.h"
#include "dialogs/edit_texts.h"
#include "dialogs/editor_field.h"
#include "dialogs/editor_rows.h"
#include "variant/code_names.h"
#include "variant/kinds.h"
#include "variant/type_texts.h"

namespace {

using zo::dialogText;
using enum zo::DialogText;

enum Control : int { kName = 100, kType, kValue, kFlags, kReason };

// A field of more on one line is slow.
constexpr unsigned int kMostDigits = 4096;

bool isContainer(const ZoVariant& value) noexcept { return value.asDict() || value.asSequence(); }

ZoVariant zeroOf(ZoTypeCode code, unsigned int flags) {
  return {static_cast<ZoVariant::Type>(zo::kindOfCode(code)), code, flags};
}

// What can be entered: no pointers, and no chunks, whose texts are not for users.
bool isForUsers(ZoTypeCode code) noexcept {
  return ZoType::baseCode(code) != ZoTypeCode::Pointer && code != ZoTypeCode::Chunk;
}

LRESULT send(HWND control, UINT message, WPARAM w, LPARAM l) noexcept {
  return SendMessageW(control, message, w, l);
}

zo::DialogTemplate formOf(const ZoString& name, bool isNew, bool isReadOnly) {
  constexpr DWORD kText = WS_BORDER | WS_TABSTOP;
  zo::DialogTemplate form(dialogText(isNew ? elementNew : elementTitle), DS_MODALFRAME, 264, 216);
  const auto label = [&form](zo::DialogText text, short y) {
    form.add(L"Static", -1, {7, static_cast<short>(y + 2), 46, 10}, SS_LEFT, dialogText(text));
  };
  label(labelName, 7);
  form.add(L"Edit", kName, {56, 7, 201, 13}, kText | ES_AUTOHSCROLL, name.view());
  label(labelType, 24);
  form.add(L"ComboBox", kType, {56, 24, 201, 160},
           CBS_DROPDOWNLIST | CBS_SORT | WS_TABSTOP | WS_VSCROLL);
  label(labelValue, 41);
  // Not wrapped, for which the field takes minutes where a long text has no blanks.
  form.add(L"Edit", kValue, {56, 41, 201, 46},
           kText | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_WANTRETURN | WS_VSCROLL |
               WS_HSCROLL);
  label(labelFlags, 92);
  form.add(WC_LISTVIEWW, kFlags, {56, 92, 201, 80},
           kText | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS);
  form.add(L"Static", kReason, {7, 176, 250, 18}, SS_NOPREFIX);
  if (!isReadOnly)
    form.add(L"Button", IDOK, {148, 196, 52, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP, dialogText(ok));
  form.add(L"Button", IDCANCEL, {205, 196, 52, 14}, BS_PUSHBUTTON | WS_TABSTOP,
           dialogText(isReadOnly ? close : cancel));
  return form;
}

}  // namespace

zo::ElementDialog::ElementDialog(Request request, Take take)
    : request_(std::move(request)), take_(std::move(take)) {}

int zo::ElementDialog::show(HWND owner) {
  return ask(owner, formOf(request_.name, request_.isNew, request_.isReadOnly));
}

bool zo::ElementDialog::isAnyType() const noexcept {
  return request_.isNew || request_.value.isEmpty();
}

HWND zo::ElementDialog::onStart() {
  send(item(kName), EM_SETREADONLY, !request_.isNamed, 0);
  fillTypes();
  fillFlags();
  showText(request_.value);
  for (const Control control : {kType, kFlags}) EnableWindow(item(control), !request_.isReadOnly);
  if (request_.isNamed) return item(kName);
  return IsWindowEnabled(item(kValue)) ? item(kValue) : item(IDCANCEL);
}

void zo::ElementDialog::fillTypes() {
  auto* const types = item(kType);
  const auto add = [types](ZoTypeCode code) {
    const LRESULT index = send(types, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(nameOfCode(code)));
    send(types, CB_SETITEMDATA, static_cast<WPARAM>(index), static_cast<LPARAM>(code));
  };
  const ZoTypeCode own = request_.value.code();
  add(own);
  for (const CodeNames& names : codeNames()) {
    const bool isFitting = isAnyType() ? isForUsers(names.code)
                                       : ZoVariant::isFitting(names.code, request_.value.type());
    if (isFitting && names.code != own) add(names.code);
  }
  for (LRESULT i = send(types, CB_GETCOUNT, 0, 0); i-- > 0;)
    if (send(types, CB_GETITEMDATA, static_cast<WPARAM>(i), 0) == static_cast<LPARAM>(own))
      send(types, CB_SETCURSEL, static_cast<WPARAM>(i), 0);
}

void zo::ElementDialog::fillFlags() {
  auto* const list = item(kFlags);
  send(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
  LVCOLUMNW column = {};
  column.mask = LVCF_WIDTH;
  RECT box;
  GetClientRect(list, &box);
  column.cx = box.right - GetSystemMetrics(SM_CXVSCROLL);
  send(list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
  LVITEMW row = {};
  for (const FlagText& flag : flagTexts()) {
    if (flag.number == 0 || flag.number >= kFirstWithoutFlag) continue;
    row.mask = LVIF_TEXT | LVIF_PARAM;
    row.pszText = const_cast<wchar_t*>(ZoType::flagToMessage(flag.number));
    row.lParam = flag.number;
    send(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&row));
    LVITEMW state = {};
    state.stateMask = LVIS_STATEIMAGEMASK;
    state.state = INDEXTOSTATEIMAGEMASK(request_.value.isFlagged(flag.number) ? 2U : 1U);
    send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row.iItem), reinterpret_cast<LPARAM>(&state));
    ++row.iItem;
  }
}

// The field knows lines that end in CR and LF only: those of texts with LF alone are shown so, and
// read back. What it cannot hold as it is stays as it is. Chunks are long, and digits.
void zo::ElementDialog::showText(const ZoVariant& value) {
  ZoString text;
  const bool isUnread = printText(value, text) == ZoResult::timeOut;
  const bool isCut = value.code() == ZoTypeCode::Chunk && text.length() > kMostDigits;
  const unsigned int length = text.length();
  if (isCut) text = text.view().substr(0, kMostDigits);
  ZoString lines = text;
  hasLineEnds_ = text.view().find(L'\r') != std::wstring_view::npos;
  if (!hasLineEnds_) lines.replaceAll(L"\n", L"\r\n");
  auto* const field = item(kValue);
  constexpr WPARAM kNoLimit = 0x7FFFFFFE;
  send(field, EM_SETLIMITTEXT, kNoLimit, 0);
  SetWindowTextW(field, lines);
  shown_ = windowText(field);
  isHeld_ = shown_ == lines && !isUnread && !isCut;
  EnableWindow(field, !isContainer(value));
  send(field, EM_SETREADONLY, !isHeld_ || request_.isReadOnly, 0);
  if (isCut) return say(dialogText(shownInPart, {ZoVariant(kMostDigits), ZoVariant(length)}));
  say(ZoString(isHeld_ ? L"" : dialogText(isUnread ? unitsInUse : notEditableHere)));
}

void zo::ElementDialog::say(const ZoString& reason) { SetDlgItemTextW(window(), kReason, reason); }

void zo::ElementDialog::onCommand(int id, int notice) {
  if (id == kType && notice == CBN_SELCHANGE) onType();
  if (id == IDOK) take();
  if (id == IDCANCEL) end(IDCANCEL);
}

// A new value begins as its type's zero, as long as nothing was typed.
void zo::ElementDialog::onType() {
  if (isAnyType() && windowText(item(kValue)) == shown_) showText(zeroOf(chosenCode(), 0));
}

ZoTypeCode zo::ElementDialog::chosenCode() const {
  const LRESULT index = send(item(kType), CB_GETCURSEL, 0, 0);
  return static_cast<ZoTypeCode>(send(item(kType), CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

// Bits that have no text stay.
unsigned int zo::ElementDialog::chosenFlags() const {
  unsigned int flags = request_.value.flags();
  LVITEMW row = {};
  row.mask = LVIF_PARAM | LVIF_STATE;
  row.stateMask = LVIS_STATEIMAGEMASK;
  for (; send(item(kFlags), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&row)); ++row.iItem) {
    const auto flag = static_cast<unsigned int>(row.lParam);
    const bool isTicked = (row.state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2U);
    flags = isTicked ? flags | flag : flags & ~flag;
  }
  return flags;
}

ZoString zo::ElementDialog::read(ZoVariant& value) const {
  const ZoTypeCode code = chosenCode();
  const bool isOther = code != value.code();
  if (isOther && isAnyType()) value = zeroOf(code, 0);
  if (isOther && value.setCode(code) != ZoResult::ok) return ZoString(dialogText(notPossible));
  value.setFlags(chosenFlags());
  ZoString text = windowText(item(kValue));
  if (isContainer(value) || !isHeld_) return {};
  const bool isTyped = text != shown_;
  if (!isTyped && !(isOther && isAnyType())) return {};
  if (!hasLineEnds_) text.replaceAll(L"\r\n", L"\n");
  if (text.isEmpty() && value.isEmpty()) return {};
  const int read = readText(text.view(), value);
  if (read == ZoResult::ok) return {};
  if (read == ZoResult::timeOut) return ZoString(dialogText(unitsInUse));
  return dialogText(noSuchValue, {ZoVariant(text), ZoVariant(nameOfCode(code))});
}

void zo::ElementDialog::take() {
  ZoVariant value = request_.value;
  ZoString reason = read(value);
  if (reason.isEmpty()) reason = take_(windowText(item(kName)), std::move(value));
  if (reason.isEmpty()) return end(IDOK);
  say(reason);
  MessageBeep(MB_ICONWARNING);
}
