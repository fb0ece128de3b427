// Editing a variant in a window: the tree of its containers, and a list of what the chosen one
// holds, with name, type, value and flags.
//
//   ZoVariantDialog dialog(part);
//   if (dialog.show() == 0) part = dialog.value();
//
// Values are typed as the units service reads them ("2 in" into a length); what is not to be edited
// and what is not shown is said at ZoVariantEdits, which the window stands on. Each edit can be
// undone. Keys and commands: docs/dialogs.md.
//
// Errors:  as ZoDialog has it. Cancel, Escape and closing the window ask first when something was
//          changed, or typed and not yet taken. Without memory for an edit the window says so and
//          goes on; std::bad_alloc comes only before it is shown, and no edit is lost by it.
// Threads: as ZoDialog has it.
// Cost:    opening takes a copy of the value, and what one container shows; branches are filled as
//          they are opened.
#pragma once

#include <zo/dialogs/dialog.h>
#include <zo/variant/variant.h>

#include <functional>
#include <optional>
#include <utility>

class ZO_COM_API ZoVariantDialog : public ZoDialog {
 public:
  explicit ZoVariantDialog(ZoVariant value = {}) : value_(std::move(value)) {}

  // What is edited; afterwards what was taken.
  void setValue(ZoVariant value) { value_ = std::move(value); }
  [[nodiscard]] const ZoVariant& value() const& noexcept { return value_; }
  [[nodiscard]] ZoVariant value() && noexcept { return std::move(value_); }

  // Is given the value when the user presses OK, and takes it where that can fail, as a file does:
  // what it returns is why it was not taken, which is said, and the window stays with all edits;
  // nothing, and show() gives 0. It is not asked where ZoDialogs::setAnswer answers. An exception
  // is taken for want of memory.
  using Take = std::function<ZoString(const ZoVariant& value)>;
  void takeBy(Take take) { take_ = std::move(take); }

  // Only to look at: there is no OK, and show() gives cancelled.
  void setReadOnly(bool readOnly) noexcept { readOnly_ = readOnly; }
  template <zo::NoTruthValue T>
  void setReadOnly(T) = delete;  // true or false
  [[nodiscard]] bool isReadOnly() const noexcept { return readOnly_; }
  // The user may leave out what does not differ from this one, and sees its values beside. A copy
  // is kept until another one is given.
  void compareWith(ZoVariant other) { other_ = std::move(other); }

  // Keeps place and size of the window in the setting "dialogs@KEY@place", the border between tree
  // and list and the columns' widths in "dialogs@KEY@columns"; an empty key keeps nothing.
  // "variant" unless set.
  void remember(zo::TextParameter key) { key_ = key; }

 protected:
  int run(HWND__* owner) override;

 private:
  ZoVariant value_;
  std::optional<ZoVariant> other_;
  Take take_;
  ZoString key_{L"variant"};
  bool readOnly_ = false;
};
