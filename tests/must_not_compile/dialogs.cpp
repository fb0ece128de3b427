// clang-format off
#include <zo/dialogs.h>

void boxes() {
  ZoMessageBox box(L"Replace?", 4);                                         // error: no matching function
  ZoMessageBox other(L"Replace?", ZoMessageBox::kQuestion);                 // error: no matching function
  static_cast<void>(box.setButton(6));                                      // error: invalid conversion
  ZoMessageBox none(nullptr);                                               // error: the text
  static_cast<void>(ZoMessageBox::forget(nullptr));                         // error: the key
  ZoTaskDialog owned(nullptr);                                              // error: the instruction
  ZoTaskDialog task(L"Replace?");
  static_cast<void>(task.addButton(true, L"Replace"));                      // error: from kFirstNumber on
  static_cast<void>(task.setDefault(true));                                 // error: the number of a button
  static_cast<void>(task.setButton(true));                                  // error: the number of a button
  static_cast<void>(task.addButton(100.5, L"Replace"));                     // error: from kFirstNumber on
  static_cast<void>(task.setDefault(1.5));                                  // error: the number of a button
  task.setTick(L"Always", 1);                                               // error: true or false
  task.setLinks(&box);                                                      // error: true or false
}

void printing(ZoPrintDialog& print, ZoColorDialog& color, int number) {
  static_cast<void>(print.setPages(true, 2));                               // error: cannot convert
  static_cast<void>(print.setPages(1, number));                             // error: not a constant
  static_cast<void>(print.setRange(ZoPrintDialog::kPages, -1, 2));          // error: negativeOrTooLarge
  static_cast<void>(print.setCopies(true));                                 // error: cannot convert
  static_cast<void>(print.setCopies(-1));                                   // error: negativeOrTooLarge
  print.setCollated(2);                                                     // error: true or false
  print.setToFile(L"a.prn");                                                // error: true or false
  print.setSelection(ZoPrintDialog::kSelection);                            // error: true or false
  color.setPalette(256);                                                    // error: true or false
}

void files(ZoFileDialog& dialog) {
  ZoFileDialog save(true);                                                  // error: no matching function
  dialog.show();                                                            // error: nodiscard
  dialog.addFilter(L"Values", L"*.val");                                    // error: nodiscard
  static_cast<void>(dialog.addFilter(nullptr, L"*.val"));                   // error: no name
  static_cast<void>(dialog.setFilter(true));                                // error: cannot convert
  static_cast<void>(dialog.setFilter(-1));                                  // error: negativeOrTooLarge
  dialog.setFile(nullptr);                                                  // error: no file
  dialog.setFolder(nullptr);                                                // error: no folder
  ZoFolderDialog folder(nullptr);                                           // error: show(owner)
  ZoFolderDialog().setFolder(nullptr);                                      // error: no folder
}

void edits(ZoVariantEdits& edits) {
  edits.setText(L"a", L"1");                                                // error: nodiscard
  edits.undo();                                                             // error: nodiscard
  static_cast<void>(edits.setText(L"a", 0));                                // error: cannot convert
  static_cast<void>(edits.setFlags(L"a", true));                            // error: no matching function
  static_cast<void>(edits.setFlags(L"a", -1));                              // error: negativeOrTooLarge
  static_cast<void>(edits.insert(L"a", true, 1));                           // error: cannot convert
  static_cast<void>(edits.insert(L"a", -1, 1));                             // error: negativeOrTooLarge
  static_cast<void>(edits.move(L"a", true));                                // error: cannot convert
  edits.setReadOnly(5);                                                     // error: true or false
  edits.setReadOnly(&edits);                                                // error: true or false
  const ZoVariant& gone = ZoVariantEdits(ZoVariant(1)).value();
  static_cast<void>(ZoVariantEdits(gone).elements(L""));                    // error: keep edits
}
