// What all dialogs have in common: a value goes in, show() asks the user, a value comes out.
//
//   ZoFileDialog dialog(ZoFileDialog::kOpen);
//   dialog.addFilter(ZoFileName::kDwg);
//   if (dialog.show() == 0) open(dialog.file());
//
// A dialog is shown by the calling thread, which goes on working on its windows' messages; no
// service's guard is held meanwhile. Its words are the platform's, in the user's language; those
// that are the library's own come from the message file "zodialog" (docs/dialogs.md).
//
// Without a user: ZoDialogs::setAnswer gives a function that answers in the user's place.
//
// Errors:  show() gives 0 when the user has taken the value. ZoResult::cancelled: the value is as
//          it was. ZoResult::notShown: the platform refused, because there is no display or for
//          another reason that errorTxt() tells. ZoResult::noOwner: the owner is no window, or none
//          any more, also because it went while the user was thinking; the value is as it was.
//          Nothing throws but std::bad_alloc, and what an answer throws.
// Threads: one thread at a time per dialog; several threads may show one each.
#pragma once

#include <zo/config.h>
#include <zo/names/no_truth_value.h>
#include <zo/platform_types.h>
#include <zo/results.h>
#include <zo/text/not_negative.h>
#include <zo/text/string.h>
#include <zo/text/text_parameter.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <utility>

namespace ZoResult {
inline constexpr int notShown = 41;   // the platform cannot show the dialog
inline constexpr int noOwner = 42;    // the window that it should belong to is not there
inline constexpr int noPrinter = 43;  // there is no printer
}  // namespace ZoResult

class ZO_COM_API ZoDialog {
 public:
  virtual ~ZoDialog();

  // What stands in the title bar; empty for the platform's own words, of which messages have none.
  void setTitle(zo::TextParameter title) { title_ = title; }
  [[nodiscard]] const ZoString& title() const noexcept { return title_; }

  // Asks the user. Null for the owner is ZoDialogs::owner().
  [[nodiscard]] int show(HWND__* owner = nullptr);
  // Why the last show() gave notShown, mostly in the platform's words, without a line break at the
  // end; else empty.
  [[nodiscard]] const ZoString& errorTxt() const noexcept { return error_; }

 protected:
  ZoDialog() = default;
  ZoDialog(const ZoDialog&) = default;
  ZoDialog& operator=(const ZoDialog&) = default;

  // Shows the platform's dialog. The owner is a window or null.
  [[nodiscard]] virtual int run(HWND__* owner) = 0;
  // What show() gives for a system error or an HRESULT: cancelled, noPrinter, or notShown, whose
  // reason is kept.
  int failed(unsigned long error);
  // Whether there is a value that an answer can say was taken; true unless a dialog says otherwise.
  [[nodiscard]] virtual bool hasValue() const noexcept;

 private:
  ZoString title_;
  ZoString error_;
};

class ZO_COM_API ZoDialogs {
 public:
  ZoDialogs() = delete;

  // An answer that leaves the dialog to the user.
  static constexpr int kAsk = -1;
  // Sets the dialog's value as the user would, and answers what show() shall give; what it sets
  // stays, whatever it answers. It sees which dialog it is by dynamic_cast. Where it answers 0 and
  // there is nothing to be taken, no button, file or folder, show() gives ZoResult::refused. It is
  // asked first of all, also with an owner that is none any more, and nothing that it sets is kept
  // in the settings of remember().
  using Answer = std::function<int(ZoDialog&)>;

  // From now on all dialogs of the process, on any thread, ask this first, and several threads may
  // do so at once; an empty function ends that. Returns what was set before. A module takes its
  // answer back before it is unloaded.
  static Answer setAnswer(Answer answer);

  // The host's main window, the owner where none is given; null where there is none.
  [[nodiscard]] static HWND__* owner();
};
