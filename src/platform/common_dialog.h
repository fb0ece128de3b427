// The platform's common dialogs for colours, fonts, printers and, of old, files.
//
// Errors:  ERROR_SUCCESS when the user took the value, ERROR_CANCELLED, ERROR_INVALID_PRINTER_NAME
//          for a printer that is gone, ERROR_PRINTER_NOT_FOUND when there is none at all; all else
//          says why it could not be shown.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include "platform/shown_hook.h"
#include "platform/system_library.h"

namespace zo {

// What the answer of a common dialog means.
[[nodiscard]] unsigned long commonDialogError(BOOL answer, bool wasShown) noexcept;

// Shows one; the request names ShownHook::proc as its hook.
#define ZO_COMMON_DIALOG(call, request, hook) \
  zo::commonDialog(zo::systemFunction<decltype(call)>(L"comdlg32.dll", #call), request, hook)

template <class Function, class Request>
[[nodiscard]] unsigned long commonDialog(Function* call, Request& request,
                                         const ShownHook& hook) noexcept {
  if (!call) return ERROR_PROC_NOT_FOUND;
  const BOOL answer = call(&request);
  return commonDialogError(answer, hook.wasShown());
}

}  // namespace zo
