// One call of the platform's task dialog, which a message box with a box to tick is, too.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <zo/dialogs/message_box.h>

#include "platform/common_controls.h"

namespace zo {

struct TaskDialogAnswer {
  unsigned long error = 0;
  int button = 0;
  bool isTicked = false;
};

// The texts must outlive it.
class TaskDialogCall {
 public:
  TaskDialogCall(const ZoString& title, const ZoString& instruction, const ZoString& text,
                 ZoMessageBox::Icon icon) noexcept;

  // Whether the platform has task dialogs.
  [[nodiscard]] bool isThere() const noexcept { return call_ != nullptr; }
  void setTick(const wchar_t* text, bool ticked) noexcept;
  [[nodiscard]] TaskDialogAnswer ask(HWND owner) noexcept;

  TASKDIALOGCONFIG request = {};

 private:
  CommonControls controls_;
  decltype(&TaskDialogIndirect) call_;
};

// For tests: as if the platform had none.
extern bool withoutTaskDialogs;

}  // namespace zo
