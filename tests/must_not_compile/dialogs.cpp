// clang-format off
#include <zo/dialogs.h>

void boxes() {
  ZoMessageBox box(L"Replace?", 4);                                         // error: no matching function
  ZoMessageBox other(L"Replace?", ZoMessageBox::kQuestion);                 // error: no matching function
  static_cast<void>(box.setButton(6));                                      // error: invalid conversion
}

void files(ZoFileDialog& dialog) {
  ZoFileDialog save(true);                                                  // error: no matching function
  dialog.show();                                                            // error: nodiscard
  dialog.addFilter(L"Values", L"*.val");                                    // error: nodiscard
}

void edits(ZoVariantEdits& edits) {
  edits.setText(L"a", L"1");                                                // error: nodiscard
  edits.undo();                                                             // error: nodiscard
}
