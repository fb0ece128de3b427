// The standard error service: message boxes.
//
// Boxes are task-modal and have the system's default caption (errors), "Warning" or "Prompt". Their
// whole text is cut to 256 characters. Error and warning boxes offer Abort, Retry and Ignore:
// Ignore keeps all further boxes of that kind away, in this process, from every ZoStdError; the
// other two have no effect. Suppressed reports still return 0. trace() shows nothing, on purpose.
// A box that cannot be shown (a service without a desktop) is sent to the debugger instead.
//
// Errors, Formats: as in error.h.
// Threads: any. The guard is held while a box is shown: another thread's report waits for the user
//          at most timeOut() and is then dropped with 1.
#pragma once

#include <zo/system/error.h>

class ZO_COM_API ZoStdError : public ZoError {
 public:
  int release(const wchar_t* module) override;

  using ZoErrorSlots::prompt;
  using ZoErrorSlots::trace;
  using ZoErrorSlots::warning;
  int error(const wchar_t* fileName, const wchar_t* funcName, int position,
            const wchar_t* text) override;
  int warning(const wchar_t* fileName, int position, const wchar_t* format, ...) override;
  int trace(const wchar_t* format, ...) override;
  int prompt(const wchar_t* format, ...) override;
  int taskDialog(const wchar_t* text, HWND__* parent, const KeyValue* items, int count) override;
};

static_assert(sizeof(ZoStdError) == sizeof(ZoSysObj));
