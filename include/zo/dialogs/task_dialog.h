// A message with an instruction, an explanation, details, buttons with words of their own, and a
// box to tick.
//
// Where the platform has no task dialogs, a message box takes its place: texts follow one another,
// a button of one's own becomes OK, two become Yes and No, which the text explains, and the box to
// tick is left out. Three and more buttons of one's own cannot be shown there.
//
// Errors:  as ZoDialog has it. cancelled is the button Cancel, Escape, and closing the dialog.
// Threads: as ZoDialog has it.
// Note:    ZoError::taskDialog is another matter: it shows nothing, by contract.
#pragma once

#include <zo/dialogs/dialog.h>
#include <zo/dialogs/message_box.h>

#include <vector>

namespace zo {
template <class T>
concept NoWholeNumber = std::same_as<T, bool> || std::floating_point<T>;
}

class ZO_COM_API ZoTaskDialog : public ZoDialog {
 public:
  struct Choice {
    int number;  // from kFirstNumber on; what button() gives
    ZoString text;
  };
  static constexpr int kFirstNumber = 100;

  ZoTaskDialog() = default;
  explicit ZoTaskDialog(zo::TextParameter instruction) : instruction_(instruction) {}
  template <std::same_as<std::nullptr_t> T>
  explicit ZoTaskDialog(T) = delete;  // the instruction; show(owner)

  // What the user is to decide or to know, in one line; then the explanation; then what is shown
  // only on demand.
  void setInstruction(zo::TextParameter text) { instruction_ = text; }
  void setText(zo::TextParameter text) { text_ = text; }
  void setDetails(zo::TextParameter text) { details_ = text; }
  void setIcon(ZoMessageBox::Icon icon) noexcept { icon_ = icon; }  // a question has none here
  [[nodiscard]] const ZoString& instruction() const noexcept { return instruction_; }
  [[nodiscard]] const ZoString& text() const noexcept { return text_; }
  [[nodiscard]] const ZoString& details() const noexcept { return details_; }
  [[nodiscard]] ZoMessageBox::Icon icon() const noexcept { return icon_; }

  // A button of one's own; its number is refused below kFirstNumber and when it is there already,
  // its text when it is empty. Cancel is added behind them; without any there is OK alone.
  [[nodiscard]] int addButton(int number, zo::TextParameter text);
  template <zo::NoWholeNumber T>
  int addButton(T, zo::TextParameter) = delete;  // from kFirstNumber on
  [[nodiscard]] const std::vector<Choice>& buttons() const noexcept { return buttons_; }
  // As large buttons below each other; in their texts what follows a line break is a remark.
  void setLinks(bool links) noexcept { links_ = links; }
  template <zo::NoTruthValue T>
  void setLinks(T) = delete;  // true or false
  // The button that Enter means. Refused when there is none of that number.
  [[nodiscard]] int setDefault(int number) noexcept;
  template <zo::NoWholeNumber T>
  int setDefault(T) = delete;  // the number of a button

  // The box to tick, with its text; an empty one takes it away.
  void setTick(zo::TextParameter text, bool ticked = false);
  template <zo::NoTruthValue T>
  void setTick(zo::TextParameter, T) = delete;  // true or false
  [[nodiscard]] bool isTicked() const noexcept { return ticked_; }

  // The number of the button, or ZoMessageBox::kOkButton; 0 before that. For an answer to set:
  // refused when there is no such button.
  [[nodiscard]] int button() const noexcept { return button_; }
  [[nodiscard]] int setButton(int number) noexcept;
  template <zo::NoWholeNumber T>
  int setButton(T) = delete;  // the number of a button

 protected:
  int run(HWND__* owner) override;
  [[nodiscard]] bool hasValue() const noexcept override { return button_ != 0; }

 private:
  [[nodiscard]] bool hasButton(int number) const noexcept;
  int runAsBox(HWND__* owner);

  ZoString instruction_, text_, details_, tick_;
  std::vector<Choice> buttons_;
  ZoMessageBox::Icon icon_ = ZoMessageBox::kNoIcon;
  bool links_ = false;
  bool ticked_ = false;
  int default_ = 0;
  int button_ = 0;
};
