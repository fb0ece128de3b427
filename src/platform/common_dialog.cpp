#include "platform/common_dialog.h"

#include <cderr.h>

unsigned long zo::commonDialogError(BOOL answer, bool wasShown) noexcept {
  if (answer == TRUE) return ERROR_SUCCESS;  // there are platforms that answer -1 for a failure
  static const auto lastError =
      systemFunction<decltype(CommDlgExtendedError)>(L"comdlg32.dll", "CommDlgExtendedError");
  switch (lastError ? lastError() : CDERR_GENERALCODES) {
    case 0:
      return wasShown ? ERROR_CANCELLED : ERROR_INVALID_WINDOW_HANDLE;
    case PDERR_PRINTERNOTFOUND:
    case PDERR_DNDMMISMATCH:
      return ERROR_INVALID_PRINTER_NAME;
    case PDERR_NODEVICES:
    case PDERR_NODEFAULTPRN:
      return ERROR_PRINTER_NOT_FOUND;
    case CDERR_MEMALLOCFAILURE:
    case CDERR_MEMLOCKFAILURE:
      return ERROR_NOT_ENOUGH_MEMORY;
    case FNERR_BUFFERTOOSMALL:
      return ERROR_INSUFFICIENT_BUFFER;
    case FNERR_INVALIDFILENAME:
      return ERROR_INVALID_NAME;
    default:
      return ERROR_INVALID_WINDOW_HANDLE;
  }
}
