// The host toolkit's folder dialog, or a stand-in for it with just the calls that the library
// makes. A build with ZO_WITH_SEC_DIR_SELECT takes the toolkit's own, which has not been tried;
// what follows is the stand-in.
//
// Errors:  DoModal gives -1 when the dialog cannot be shown; GetLastError() says why. Nothing
//          throws but std::bad_alloc.
// Threads: the one that shows it.
#pragma once

#include <zo/config.h>
#include <zo/platform_types.h>
#include <zo/text/string.h>

#if defined(ZO_WITH_SEC_DIR_SELECT)

#include ZO_SEC_DIR_SELECT_HEADER

#else

#include <utility>

class ZO_COM_API SECDirSelectDlg {
 public:
  // An empty title is the platform's own; a folder that is not there is not chosen at first.
  SECDirSelectDlg(ZoString title, ZoString folder, HWND__* owner)
      : title_(std::move(title)), path_(std::move(folder)), owner_(owner) {}

  // IDOK, IDCANCEL, or -1.
  [[nodiscard]] long long DoModal();
  // What was chosen, after IDOK.
  void GetPath(ZoString& path) const { path = path_; }

 private:
  ZoString title_;
  ZoString path_;
  HWND__* owner_;
};

#endif
