#include "search/file_look.h"

#include "platform/system_path.h"

bool zo::lookAt(const std::wstring& file, FileLook& look) {
  WIN32_FILE_ATTRIBUTE_DATA details;
  if (!fileApi().details(SystemPath(file.c_str()), details)) return false;
  const bool isFolder = (details.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (isFolder) SetLastError(ERROR_ACCESS_DENIED);
  if (!isFolder) look = lookOf(details);
  return !isFolder;
}
