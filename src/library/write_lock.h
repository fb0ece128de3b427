// The lock of a library's only writer on this machine: a mutex that every spelling of the file's
// path leads to.
//
// Threads: the thread that took it releases it.
#pragma once

#include <string>

#include "platform/handle.h"

namespace zo {

// "ZoLibrary-" and sixteen hexadecimal digits, of a full path. Other programs may wait for it.
[[nodiscard]] std::wstring writeLockName(const std::wstring& fullPath);

class WriteLock {
 public:
  WriteLock() = default;
  WriteLock(const WriteLock&) = delete;
  WriteLock& operator=(const WriteLock&) = delete;
  ~WriteLock() { release(); }

  // 0, 1, or 1005 when another one has it. A writer that died holding it does not hold it any more.
  [[nodiscard]] int take(const std::wstring& fullPath);
  // Waits until nobody has it: 0, 1, or 1005 when that took too long.
  [[nodiscard]] static int await(const std::wstring& fullPath, unsigned int milliseconds);
  void release() noexcept;

 private:
  Handle mutex_;
};

}  // namespace zo
