// Keeps the process's current folder: what it was is set again at the end of the scope.
#pragma once

#include <windows.h>

#include <string>

#include "platform/system_path.h"

namespace zo {

class KeptCurrentFolder {
 public:
  KeptCurrentFolder()
      : folder_(platformText(
            [](DWORD size, wchar_t* buffer) { return GetCurrentDirectoryW(size, buffer); })) {}
  ~KeptCurrentFolder() { SetCurrentDirectoryW(folder_.c_str()); }
  KeptCurrentFolder(const KeptCurrentFolder&) = delete;
  KeptCurrentFolder& operator=(const KeptCurrentFolder&) = delete;

 private:
  std::wstring folder_;
};

}  // namespace zo
