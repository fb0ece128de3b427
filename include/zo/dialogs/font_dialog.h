// Choosing a font.
//
// Errors, Threads: as ZoDialog has it.
#pragma once

#include <zo/dialogs/dialog.h>

struct ZoFont {
  ZoString face;      // the family's name
  double points = 0;  // size in 1/72 in; 0: the platform's choice
  int weight = 400;   // 100 to 900; 700 is bold
  bool italic = false;
  bool underline = false;
  bool strikeOut = false;

  friend bool operator==(const ZoFont&, const ZoFont&) = default;
};

class ZO_COM_API ZoFontDialog : public ZoDialog {
 public:
  explicit ZoFontDialog(ZoFont font = {}) : font_(std::move(font)) {}

  // For a face that is not installed the dialog may begin with another one, in another size. A size
  // that the user leaves as it is shown, in whole points on some platforms, stays as it was set.
  void setFont(ZoFont font) { font_ = std::move(font); }
  [[nodiscard]] const ZoFont& font() const noexcept { return font_; }

 protected:
  int run(HWND__* owner) override;

 private:
  ZoFont font_;
};
