// The dialog for one element: name, type, value and flags, of a new one or of one that is there.
#pragma once

#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <functional>

#include "platform/modal_dialog.h"

namespace zo {

class ElementDialog final : public ModalDialog {
 public:
  struct Request {
    ZoString name;
    bool isNamed = false;  // the name can be typed
    bool isNew = false;    // of any type; else of those that fit the value
    bool isReadOnly = false;
    ZoVariant value;
  };
  // Takes what the user entered; gives the reason where it is refused, which is shown, and else
  // nothing.
  using Take = std::function<ZoString(const ZoString& name, ZoVariant value)>;

  ElementDialog(Request request, Take take);
  [[nodiscard]] int show(HWND owner);

 private:
  HWND onStart() override;
  void onCommand(int id, int notice) override;

  void fillTypes();
  void fillFlags();
  void showText(const ZoVariant& value);
  void onType();
  void take();
  void say(const ZoString& reason);
  [[nodiscard]] ZoTypeCode chosenCode() const;
  [[nodiscard]] unsigned int chosenFlags() const;
  [[nodiscard]] bool isAnyType() const noexcept;
  // What stands there; the reason where it is none.
  [[nodiscard]] ZoString read(ZoVariant& value) const;

  Request request_;
  Take take_;
  ZoString shown_;            // the text that was last put into the field
  bool isHeld_ = true;        // whether the field holds the value's text as it is
  bool hasLineEnds_ = false;  // whether the value's own lines end in CR and LF
};

}  // namespace zo
