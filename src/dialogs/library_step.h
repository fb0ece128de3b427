// The second step of a file dialog that browses into libraries.
#pragma once

#include <zo/names/file_name.h>

#include <string_view>
#include <vector>

#include "platform/item_dialog.h"

namespace zo {

// "a;b" has both lists of patterns.
[[nodiscard]] std::wstring joinedPatterns(std::wstring_view a, std::wstring_view b);
// The file on the disk: of LIBRARY|MEMBER the library.
[[nodiscard]] ZoFileName fileOnDisk(const ZoFileName& name);

struct LibraryStep {
  const ItemDialogRequest& request;  // title, kind, and filters of members
  std::wstring_view patterns;        // files of such names may be libraries
  ZoFileName first;                  // LIBRARY|MEMBER that is chosen at first, or any other name

  // Lets the user choose members of each library among the files; they stand in its place
  // afterwards. What is no library, or cannot be read as one, stays. Gives IDOK, IDCANCEL,
  // MemberDialog::kBack, or 0 for a failure, and fills what else the user said.
  [[nodiscard]] int ask(std::vector<ZoFileName>& files, HWND owner);

  unsigned int filter = 0;
  unsigned long error = 0;
};

}  // namespace zo
