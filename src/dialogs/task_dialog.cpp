#include <zo/dialogs/task_dialog.h>

#include <algorithm>
#include <array>

#include "dialogs/dialog_texts.h"
#include "dialogs/task_dialog_call.h"

namespace {

const wchar_t* orNull(const ZoString& text) noexcept {
  return text.isEmpty() ? nullptr : text.data();
}

const wchar_t* iconOf(ZoMessageBox::Icon icon) noexcept {
  switch (icon) {
    case ZoMessageBox::kError:
      return TD_ERROR_ICON;
    case ZoMessageBox::kWarning:
      return TD_WARNING_ICON;
    case ZoMessageBox::kInformation:
      return TD_INFORMATION_ICON;
    default:
      return nullptr;
  }
}

}  // namespace

bool zo::withoutTaskDialogs = false;

zo::TaskDialogCall::TaskDialogCall(const ZoString& title, const ZoString& instruction,
                                   const ZoString& text, ZoMessageBox::Icon icon) noexcept
    : call_(withoutTaskDialogs
                ? nullptr
                : controls_.find<std::remove_pointer_t<decltype(call_)>>("TaskDialogIndirect")) {
  request.cbSize = sizeof request;
  request.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_POSITION_RELATIVE_TO_WINDOW;
  request.pszWindowTitle = title.isEmpty() ? L" " : title.data();
  request.pszMainInstruction = orNull(instruction);
  request.pszContent = orNull(text);
  request.pszMainIcon = iconOf(icon);
}

void zo::TaskDialogCall::setTick(const wchar_t* text, bool ticked) noexcept {
  request.pszVerificationText = text;
  if (ticked) request.dwFlags |= TDF_VERIFICATION_FLAG_CHECKED;
}

zo::TaskDialogAnswer zo::TaskDialogCall::ask(HWND owner) noexcept {
  request.hwndParent = owner;
  TaskDialogAnswer answer;
  BOOL isTicked = FALSE;
  const HRESULT result = call_(&request, &answer.button, nullptr, &isTicked);
  answer.isTicked = isTicked != FALSE;
  if (FAILED(result))
    answer.error = static_cast<unsigned long>(result);
  else if (answer.button <= 0)
    answer.error = ERROR_INVALID_WINDOW_HANDLE;  // said to be shown, and was not
  return answer;
}

int ZoTaskDialog::addButton(int number, zo::TextParameter text) {
  if (number < kFirstNumber || text.empty() || hasButton(number)) return ZoResult::refused;
  buttons_.push_back({number, ZoString(text)});
  return ZoResult::ok;
}

bool ZoTaskDialog::hasButton(int number) const noexcept {
  if (buttons_.empty()) return number == ZoMessageBox::kOkButton;
  return number == ZoMessageBox::kCancel ||
         std::ranges::find(buttons_, number, &Choice::number) != buttons_.end();
}

int ZoTaskDialog::setDefault(int number) noexcept {
  if (!hasButton(number)) return ZoResult::refused;
  default_ = number;
  return ZoResult::ok;
}

int ZoTaskDialog::setButton(int number) noexcept {
  if (!hasButton(number)) return ZoResult::refused;
  button_ = number;
  return ZoResult::ok;
}

void ZoTaskDialog::setTick(zo::TextParameter text, bool ticked) {
  tick_ = text;
  ticked_ = ticked && !tick_.isEmpty();
}

int ZoTaskDialog::run(HWND__* owner) {
  zo::TaskDialogCall call(title(), instruction_, text_, icon_);
  if (!call.isThere()) return runAsBox(owner);
  std::vector<TASKDIALOG_BUTTON> own;
  own.reserve(buttons_.size());
  for (const Choice& choice : buttons_) own.push_back({choice.number, choice.text.data()});
  call.request.pButtons = own.data();
  call.request.cButtons = static_cast<UINT>(own.size());
  call.request.dwCommonButtons = own.empty() ? TDCBF_OK_BUTTON : TDCBF_CANCEL_BUTTON;
  if (links_ && !own.empty()) call.request.dwFlags |= TDF_USE_COMMAND_LINKS;
  call.request.nDefaultButton = default_;
  call.request.pszExpandedInformation = orNull(details_);
  if (!tick_.isEmpty()) call.setTick(tick_, ticked_);
  const zo::TaskDialogAnswer answer = call.ask(owner);
  if (answer.error) return failed(answer.error);
  if (answer.button == IDCANCEL && !own.empty()) {
    button_ = ZoMessageBox::kCancel;
    return ZoResult::cancelled;
  }
  button_ = own.empty() ? ZoMessageBox::kOkButton : answer.button;
  if (!tick_.isEmpty()) ticked_ = answer.isTicked;
  return ZoResult::ok;
}

// One button is OK and Cancel, two are Yes and No with Cancel; a third takes Cancel's place only as
// the way out, which it is not: so no more than two.
int ZoTaskDialog::runAsBox(HWND__* owner) {
  if (buttons_.size() > 2) return failed(ERROR_NOT_SUPPORTED);
  ZoString text = instruction_;
  const auto add = [&text](const ZoString& more) {
    if (more.isEmpty()) return;
    if (!text.isEmpty()) text += L"\n\n";
    text += more;
  };
  add(text_);
  add(details_);
  if (buttons_.size() == 2) {
    add(zo::dialogText(zo::DialogText::chooseYes, {buttons_[0].text}));
    add(zo::dialogText(zo::DialogText::chooseNo, {buttons_[1].text}));
  } else if (!buttons_.empty()) {
    add(buttons_[0].text);
  }
  constexpr std::array kStyles{MB_OK, MB_OKCANCEL, MB_YESNOCANCEL};
  const auto chosen = std::ranges::find(buttons_, default_, &Choice::number) - buttons_.begin();
  const auto place =
      chosen < std::ssize(buttons_) || default_ == ZoMessageBox::kCancel ? chosen : 0;
  const int pressed = MessageBoxW(owner, text, title().isEmpty() ? L" " : title().data(),
                                  static_cast<UINT>(kStyles[buttons_.size()]) | icon_ |
                                      static_cast<UINT>(place) * MB_DEFBUTTON2);
  if (pressed <= 0) return failed(GetLastError());
  if (buttons_.empty()) {
    button_ = ZoMessageBox::kOkButton;
    return ZoResult::ok;
  }
  if (pressed == IDCANCEL) {
    button_ = ZoMessageBox::kCancel;
    return ZoResult::cancelled;
  }
  button_ = buttons_[pressed == IDNO ? 1 : 0].number;
  return ZoResult::ok;
}
