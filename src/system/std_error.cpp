#include <windows.h>
#include <zo/system/std_error.h>

#include "platform/debug_output.h"
#include "system/report_text.h"
#include "system/service_scope.h"
#include "system/suppressed_boxes.h"

namespace zo {
SuppressedBoxes suppressedBoxes;
}

namespace {

constexpr UINT kErrorBox = MB_TASKMODAL | MB_ICONSTOP | MB_ABORTRETRYIGNORE;
constexpr UINT kWarningBox = MB_TASKMODAL | MB_ICONEXCLAMATION | MB_ABORTRETRYIGNORE;
constexpr UINT kPromptBox = MB_TASKMODAL | MB_ICONINFORMATION | MB_OK;
static_assert(kErrorBox == 0x2012 && kWarningBox == 0x2032 && kPromptBox == 0x2040);

// The button that was pressed. A null caption is the system's own, "Error".
int showBox(const zo::ReportText& text, const wchar_t* caption, UINT style) {
  const int button = MessageBoxW(nullptr, text.text(), caption, style);
  if (button == 0) zo::debugOutput(text.text());
  return button;
}

void showUnlessSuppressed(std::atomic<bool>& suppressed, const zo::ReportText& text,
                          const wchar_t* caption, UINT style) {
  if (!suppressed && showBox(text, caption, style) == IDIGNORE) suppressed = true;
}

}  // namespace

int ZoStdError::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoStdError::error(const wchar_t* fileName, const wchar_t* funcName, int position,
                      const wchar_t* text) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  zo::ReportText report;
  report.add(L"\n*** Error: ").add(text).add(L"\n").add(fileName).add(L"\n").add(funcName);
  report.add(L"\nposition: ").add(position).add(L" \n");
  showUnlessSuppressed(zo::suppressedBoxes.errors, report, nullptr, kErrorBox);
  return ZoResult::ok;
}

int ZoStdError::warning(const wchar_t* fileName, int position, const wchar_t* format, ...) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  va_list arguments;
  va_start(arguments, format);
  zo::ReportText text;
  text.addFormatted(format, arguments);
  va_end(arguments);
  zo::ReportText report;
  report.add(L"\n*** Warning: ").add(text.text()).add(L"\n").add(fileName);
  report.add(L"\nposition: ").add(position).add(L" \n");
  showUnlessSuppressed(zo::suppressedBoxes.warnings, report, L"Warning", kWarningBox);
  return ZoResult::ok;
}

int ZoStdError::trace(const wchar_t* format, ...) {
  if (!format) return ZoResult::refused;
  const zo::Writing writing(*this);
  return writing ? ZoResult::ok : ZoResult::refused;
}

int ZoStdError::prompt(const wchar_t* format, ...) {
  if (!format) return ZoResult::refused;
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  va_list arguments;
  va_start(arguments, format);
  zo::ReportText text;
  text.addFormatted(format, arguments);
  va_end(arguments);
  showBox(text, L"Prompt", kPromptBox);
  return ZoResult::ok;
}

int ZoStdError::taskDialog(const wchar_t*, HWND__*, const KeyValue*, int) { return 2; }
