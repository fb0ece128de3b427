#include <windows.h>

#include <commctrl.h>
#include <zo/dialogs/variant_dialog.h>

#include "dialogs/editor.h"
#include "platform/common_controls.h"

int ZoVariantDialog::run(HWND__* owner) {
  const zo::CommonControls controls;
  if (auto* const init = controls.find<decltype(InitCommonControlsEx)>("InitCommonControlsEx")) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES};
    init(&classes);
  }
  zo::Editor editor({.value = value_,
                     .other = other_ ? &*other_ : nullptr,
                     .isReadOnly = readOnly_,
                     .title = title(),
                     .key = key_,
                     .take = take_});
  switch (editor.show(owner)) {
    case IDOK:
      value_ = std::move(editor).value();
      return ZoResult::ok;
    case 0:
      return failed(editor.error());
    default:
      return ZoResult::cancelled;
  }
}
