#include <windows.h>
#include <zo/dialogs/folder_dialog.h>
#include <zo/host/sec_dir_select_dlg.h>

#include "dialogs/places.h"

void ZoFolderDialog::setFolder(const ZoFileName& folder) {
  // A name that is refused as a folder is none: nothing is chosen at first.
  static_cast<void>(folder_.setFullName(folder.fullName(), false, true));
}

int ZoFolderDialog::run(HWND__* owner) {
  std::wstring first = zo::folderThatIs(folder_);
  if (first.empty()) first = zo::folderThatIs(zo::keptFolder(key_));
  SECDirSelectDlg dialog(title(), ZoString(std::wstring_view(first)), owner);
  switch (dialog.DoModal()) {
    case IDOK:
      break;
    case IDCANCEL:
      return ZoResult::cancelled;
    default:
      return failed(GetLastError());
  }
  ZoString path;
  dialog.GetPath(path);
  setFolder(ZoFileName(path));
  zo::keepFolder(key_, folder_);
  return ZoResult::ok;
}
