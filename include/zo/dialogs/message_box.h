// A message box: a text, an icon, buttons, and for what is asked often a box to tick, "Do not show
// this again".
//
//   ZoMessageBox box(L"Replace the part?", ZoMessageBox::kYesNo, ZoMessageBox::kQuestion);
//   box.remember(L"parts@replace");
//   if (box.show() == 0 && box.button() == ZoMessageBox::kYes) replace();
//
// Errors:  as ZoDialog has it; cancelled is the button Cancel, which closing the box means, too.
// Threads: as ZoDialog has it.
#pragma once

#include <zo/dialogs/dialog.h>

class ZO_COM_API ZoMessageBox : public ZoDialog {
 public:
  // The platform's numbers.
  enum Buttons : unsigned int { kOk = 0, kOkCancel = 1, kYesNoCancel = 3, kYesNo = 4 };
  enum Icon : unsigned int {
    kNoIcon = 0,
    kError = 0x10,
    kQuestion = 0x20,
    kWarning = 0x30,
    kInformation = 0x40
  };
  enum Button : int { kNone = 0, kOkButton = 1, kCancel = 2, kYes = 6, kNo = 7 };

  explicit ZoMessageBox(zo::TextParameter text, Buttons buttons = kOk, Icon icon = kInformation);
  template <std::same_as<std::nullptr_t> T>
  explicit ZoMessageBox(T, Buttons = kOk, Icon = kInformation) = delete;  // the text; show(owner)

  [[nodiscard]] const ZoString& text() const noexcept { return text_; }
  [[nodiscard]] Buttons buttons() const noexcept { return buttons_; }
  [[nodiscard]] Icon icon() const noexcept { return icon_; }

  // The button that Enter means; the first one unless set. Refused when the box has no such button.
  [[nodiscard]] int setDefault(Button button) noexcept;

  // Adds the box to tick. When the user ticks it, the button (but Cancel) is kept in the setting
  // "dialogs@KEY@answer", and show() gives it from then on without showing anything. Where the
  // platform has no such box, the message is shown every time.
  void remember(zo::TextParameter key) { key_ = key; }
  // Shows it again. Returns 0, or refused when there was nothing to forget.
  [[nodiscard]] static int forget(zo::TextParameter key);
  static int forget(std::same_as<std::nullptr_t> auto) = delete;  // the key of remember()

  // The button that was pressed, or kept; kNone before that. For an answer to set: refused when
  // the box has no such button.
  [[nodiscard]] Button button() const noexcept { return button_; }
  [[nodiscard]] int setButton(Button button) noexcept;

 protected:
  int run(HWND__* owner) override;
  [[nodiscard]] bool hasValue() const noexcept override { return button_ != kNone; }

 private:
  [[nodiscard]] int taken(int button) noexcept;

  ZoString text_;
  ZoString key_;
  Buttons buttons_;
  Icon icon_;
  Button default_ = kNone;
  Button button_ = kNone;
};
