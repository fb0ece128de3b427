#include <windows.h>
#include <zo/dialogs/dialog.h>
#include <zo/system/cad.h>

#include <memory>
#include <mutex>
#include <string>

#include "dialogs/dialog_texts.h"
#include "platform/error_text.h"
#include "system/service_or_null.h"

namespace {

// Threads that ask keep the function that they found while another one is set.
struct Seam {
  std::mutex mutex;
  std::shared_ptr<const ZoDialogs::Answer> answer;
};
Seam& seam() {
  static Seam it;
  return it;
}

std::shared_ptr<const ZoDialogs::Answer> currentAnswer() {
  const std::lock_guard lock(seam().mutex);
  return seam().answer;
}

// No caller gave the handle that the platform complains of: it is of the window that was not made.
// Where there is no display it may name no reason at all.
ZoString reasonOf(unsigned long error) {
  if (error == ERROR_SUCCESS || error == ERROR_INVALID_WINDOW_HANDLE)
    return ZoString(zo::dialogText(zo::DialogText::noWindow));
  ZoString text(zo::errorText(error));
  text.strip(ZoString::trailing, L" \r\n");
  return text.isEmpty() ? ZoString(L"Error " + std::to_wstring(error) + L".") : text;
}

}  // namespace

ZoDialog::~ZoDialog() = default;

int ZoDialog::show(HWND__* owner) {
  error_ = ZoString();
  if (const auto answer = currentAnswer()) {
    const int code = (*answer)(*this);
    if (code == ZoResult::ok && !hasValue()) return ZoResult::refused;
    if (code != ZoDialogs::kAsk) return code;
  }
  if (owner && !IsWindow(owner)) return ZoResult::noOwner;
  if (!owner) owner = ZoDialogs::owner();
  const int code = run(owner);
  if (code == ZoResult::ok || !owner || IsWindow(owner)) return code;
  error_ = ZoString();  // what the platforms say of it differs from dialog to dialog
  return ZoResult::noOwner;
}

bool ZoDialog::hasValue() const noexcept { return true; }

int ZoDialog::failed(unsigned long error) {
  error = zo::systemErrorOf(error);
  if (error == ERROR_CANCELLED) return ZoResult::cancelled;
  if (error == ERROR_PRINTER_NOT_FOUND || error == ERROR_INVALID_PRINTER_NAME)
    return ZoResult::noPrinter;
  error_ = reasonOf(error);
  return ZoResult::notShown;
}

ZoDialogs::Answer ZoDialogs::setAnswer(Answer answer) {
  auto next = answer ? std::make_shared<const Answer>(std::move(answer)) : nullptr;
  {
    const std::lock_guard lock(seam().mutex);
    seam().answer.swap(next);
  }
  return next ? *next : Answer();
}

HWND__* ZoDialogs::owner() {
  auto* const cad = zo::serviceOrNull<ZoCad>();
  auto* const window = cad ? cad->mainWindow() : nullptr;
  return window && IsWindow(window) ? window : nullptr;
}
