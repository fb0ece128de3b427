#include <windows.h>
#include <zo/dialogs/message_box.h>
#include <zo/system/cfg.h>

#include "dialogs/dialog_texts.h"
#include "dialogs/places.h"
#include "dialogs/task_dialog_call.h"
#include "system/service_or_null.h"

namespace {

static_assert(ZoMessageBox::kYesNo == MB_YESNO && ZoMessageBox::kYesNoCancel == MB_YESNOCANCEL);
static_assert(ZoMessageBox::kWarning == MB_ICONWARNING && ZoMessageBox::kNo == IDNO);

// The place of a button in its box, from 0; -1 when it has none.
int placeOf(ZoMessageBox::Buttons buttons, int button) noexcept {
  const auto is = [button](int first, int second, int third = 0) {
    return button == 0 ? -1 : button == first ? 0 : button == second ? 1 : button == third ? 2 : -1;
  };
  switch (buttons) {
    case ZoMessageBox::kOkCancel:
      return is(IDOK, IDCANCEL);
    case ZoMessageBox::kYesNo:
      return is(IDYES, IDNO);
    case ZoMessageBox::kYesNoCancel:
      return is(IDYES, IDNO, IDCANCEL);
    default:
      return is(IDOK, IDOK);
  }
}

TASKDIALOG_COMMON_BUTTON_FLAGS taskButtons(ZoMessageBox::Buttons buttons) noexcept {
  switch (buttons) {
    case ZoMessageBox::kOkCancel:
      return TDCBF_OK_BUTTON | TDCBF_CANCEL_BUTTON;
    case ZoMessageBox::kYesNo:
      return TDCBF_YES_BUTTON | TDCBF_NO_BUTTON;
    case ZoMessageBox::kYesNoCancel:
      return TDCBF_YES_BUTTON | TDCBF_NO_BUTTON | TDCBF_CANCEL_BUTTON;
    default:
      return TDCBF_OK_BUTTON;
  }
}

}  // namespace

ZoMessageBox::ZoMessageBox(zo::TextParameter text, Buttons buttons, Icon icon)
    : text_(text), buttons_(buttons), icon_(icon) {}

int ZoMessageBox::setDefault(Button button) noexcept {
  if (placeOf(buttons_, button) < 0) return ZoResult::refused;
  default_ = button;
  return ZoResult::ok;
}

int ZoMessageBox::setButton(Button button) noexcept {
  if (placeOf(buttons_, button) < 0) return ZoResult::refused;
  button_ = button;
  return ZoResult::ok;
}

int ZoMessageBox::forget(zo::TextParameter key) {
  auto* const settings = zo::serviceOrNull<ZoCfg>();
  return settings ? settings->removeAt(zo::settingOf(ZoString(key), L"answer")) : ZoResult::refused;
}

int ZoMessageBox::taken(int button) noexcept {
  if (button == IDCANCEL && buttons_ != kOk) {
    button_ = kCancel;
    return ZoResult::cancelled;
  }
  button_ = button == IDCANCEL ? kOkButton : static_cast<Button>(button);
  return ZoResult::ok;
}

int ZoMessageBox::run(HWND__* owner) {
  auto* const settings = key_.isEmpty() ? nullptr : zo::serviceOrNull<ZoCfg>();
  const ZoString setting = zo::settingOf(key_, L"answer");
  if (settings) {
    const int kept = settings->get(setting, 0);
    if (kept != IDCANCEL && placeOf(buttons_, kept) >= 0) return taken(kept);
  }
  zo::TaskDialogCall call(title(), ZoString(), text_, icon_);
  if (!settings || !call.isThere()) {
    const int place = default_ ? placeOf(buttons_, default_) : 0;
    const int button =
        MessageBoxW(owner, text_, title().isEmpty() ? L" " : title().data(),
                    UINT{buttons_} | UINT{icon_} | static_cast<UINT>(place) * MB_DEFBUTTON2);
    if (button <= 0) return failed(GetLastError());  // -1 is not documented, but occurs
    return taken(button);
  }
  call.request.dwCommonButtons = taskButtons(buttons_);
  call.request.nDefaultButton = default_;
  call.setTick(zo::dialogText(zo::DialogText::doNotShowAgain), false);
  const zo::TaskDialogAnswer answer = call.ask(owner);
  if (answer.error) return failed(answer.error);
  const int code = taken(answer.button);
  // Refused, it is only asked again.
  if (answer.isTicked && code == ZoResult::ok)
    static_cast<void>(settings->put(setting, static_cast<int>(button_)));
  return code;
}
