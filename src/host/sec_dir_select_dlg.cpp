#include <windows.h>
#include <zo/host/sec_dir_select_dlg.h>

#include "platform/item_dialog.h"

long long SECDirSelectDlg::DoModal() {
  zo::ItemDialogRequest request;
  request.kind = zo::ItemDialogRequest::kFolder;
  request.title = title_.view();
  request.folder = path_.view();
  const zo::ItemDialogAnswer answer = zo::askForItems(request, owner_);
  if (answer.error == ERROR_CANCELLED) return IDCANCEL;
  SetLastError(answer.error);
  if (answer.error != ERROR_SUCCESS || answer.names.empty()) return -1;
  path_ = std::wstring_view(answer.names.front());
  return IDOK;
}
