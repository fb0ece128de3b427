// The platform's dialogs for files and folders: the present one, and where COM refuses it the
// older ones. The process's current folder stays.
//
// Errors:  said by ItemDialogAnswer::error. Nothing throws but std::bad_alloc.
// Threads: the one that calls.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace zo {

struct ItemDialogRequest {
  enum Kind { kOpen, kOpenSeveral, kSave, kFolder };
  struct Filter {
    std::wstring name;
    std::wstring patterns;
  };

  Kind kind = kOpen;
  std::wstring title;      // empty: the platform's own
  std::wstring folder;     // full, shown first; empty: the platform's choice
  std::wstring name;       // that stands there first, without folder
  std::wstring extension;  // for names without one, without a dot
  std::vector<Filter> filters;
  unsigned int filter = 0;
};

struct ItemDialogAnswer {
  unsigned long error = 0;  // 0: taken; ERROR_CANCELLED; else a system error or an HRESULT
  std::vector<std::wstring> names;
  unsigned int filter = 0;
};

// A folder of MAX_PATH characters and more, or a name of more than 255, is left out.
[[nodiscard]] ItemDialogAnswer askForItems(ItemDialogRequest request, HWND owner);

// The older dialogs alone, and what they answer: the name, or a folder and names, between zeros.
[[nodiscard]] ItemDialogAnswer askForItemsAsBefore(const ItemDialogRequest& request, HWND owner);
[[nodiscard]] std::vector<std::wstring> namesInBuffer(const wchar_t* buffer);

}  // namespace zo
