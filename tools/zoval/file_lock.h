// One writer of a file at a time, among the programs of this machine that ask for it.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

namespace zoval {

// Held until it ends; one whose program ended in it is taken over.
class FileLock {
 public:
  FileLock() = default;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock() {
    if (isHeld_) ReleaseMutex(mutex_.get());
  }

  // Waits for it, a few seconds at most. False when others kept it.
  [[nodiscard]] bool take(const std::wstring& path);

 private:
  struct Close {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
  };
  std::unique_ptr<void, Close> mutex_;
  bool isHeld_ = false;
};

}  // namespace zoval
