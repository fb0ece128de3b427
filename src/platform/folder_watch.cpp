#include "platform/folder_watch.h"

#include <algorithm>

#include "platform/system_path.h"

namespace zo {

FolderWatch::FolderWatch(const wchar_t* folder, What what) noexcept {
  DWORD changes = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME;
  if (what == kFiles) changes |= FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE;
  HANDLE watch = FindFirstChangeNotificationW(folder, FALSE, changes);
  if (watch != INVALID_HANDLE_VALUE) handle_ = watch;
}

FolderWatch::~FolderWatch() {
  if (handle_) FindCloseChangeNotification(handle_);
}

bool anyChanged(std::span<const HANDLE> watches) noexcept {
  while (!watches.empty()) {
    const std::size_t count = std::min<std::size_t>(watches.size(), MAXIMUM_WAIT_OBJECTS);
    if (WaitForMultipleObjects(static_cast<DWORD>(count), watches.data(), FALSE, 0) != WAIT_TIMEOUT)
      return true;
    watches = watches.subspan(count);
  }
  return false;
}

}  // namespace zo
