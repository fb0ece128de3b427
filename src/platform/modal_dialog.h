// A modal dialog of the library's own, over the platform's loop for such dialogs: no exception of
// its code passes through the platform's frames, and it sees keys before the platform does.
//
// Errors:  ask() gives the button that ended it, IDCANCEL also when its owner was destroyed; 0 when
//          it could not be shown, and error() is then the reason. What its functions throw ends it
//          and is thrown again by ask(), unless survives() says otherwise.
// Threads: the one that calls; dialogs of one thread may be nested.
#pragma once

#include <windows.h>

#include <exception>
#include <utility>

#include "platform/dialog_template.h"

namespace zo {

// A window's box, made smaller and moved as far as an area needs it.
[[nodiscard]] RECT fittedInto(const RECT& area, const RECT& box) noexcept;

class ModalDialog {
 public:
  ModalDialog() = default;
  ModalDialog(const ModalDialog&) = delete;
  ModalDialog& operator=(const ModalDialog&) = delete;
  virtual ~ModalDialog() = default;

  [[nodiscard]] int ask(HWND owner, const DialogTemplate& form);
  [[nodiscard]] unsigned long error() const noexcept { return error_; }

 protected:
  // All controls are there. Gives the one that has the focus; null: the first one.
  virtual HWND onStart() = 0;
  virtual void onCommand(int id, int notice) = 0;
  // What the control is answered.
  virtual LRESULT onNotice(NMHDR& notice);
  // All other messages; true for those that it answers with 0.
  virtual bool onMessage(UINT message, WPARAM w, LPARAM l);
  // A key that goes down in one of its controls; true when it is not to go there.
  virtual bool onKey(const MSG& message);
  // After what onStart() has done: whether it goes on although its code has thrown.
  virtual bool survives() noexcept { return false; }

  // Into the part of its screen that is free for windows.
  void fitIntoScreen() const noexcept;
  void end(int button) noexcept { EndDialog(window_, button); }
  [[nodiscard]] HWND window() const noexcept { return window_; }
  [[nodiscard]] HWND item(int id) const noexcept { return GetDlgItem(window_, id); }

 private:
  class Keys;
  static INT_PTR CALLBACK proc(HWND window, UINT message, WPARAM w, LPARAM l) noexcept;
  INT_PTR handle(UINT message, WPARAM w, LPARAM l);
  template <class Work>
  auto guarded(Work work, decltype(work()) otherwise) noexcept -> decltype(work());

  HWND window_ = nullptr;
  bool isStarted_ = false;
  unsigned long error_ = 0;
  std::exception_ptr thrown_;
};

}  // namespace zo
