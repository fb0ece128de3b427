// Choosing a colour.
//
// The palette's colours with a value of their own stand among the dialog's custom ones. A colour
// that was not changed is given back as it was, palette colour or word of any kind. One that looks
// like a palette colour becomes that (what looks like red and blue is blue), unless setPalette
// says no; any other is a true colour.
//
// Errors, Threads: as ZoDialog has it.
#pragma once

#include <zo/dialogs/dialog.h>
#include <zo/variant/color.h>

class ZO_COM_API ZoColorDialog : public ZoDialog {
 public:
  explicit ZoColorDialog(const ZoColor& color = {}) noexcept : color_(color) {}

  void setColor(const ZoColor& color) noexcept { color_ = color; }
  [[nodiscard]] const ZoColor& color() const noexcept { return color_; }
  // Whether the palette is offered; at first it is.
  void setPalette(bool offered) noexcept { palette_ = offered; }
  template <zo::NoTruthValue T>
  void setPalette(T) = delete;  // true or false

 protected:
  int run(HWND__* owner) override;

 private:
  ZoColor color_;
  bool palette_ = true;
};
