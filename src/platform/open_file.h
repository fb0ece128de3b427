// The one owner of an open file of the platform, closed through the same door as it was opened.
#pragma once

#include <utility>

#include "platform/file_api.h"

namespace zo {

class OpenFile {
 public:
  OpenFile() = default;
  explicit OpenFile(HANDLE handle) noexcept : handle_(handle) {}
  OpenFile(OpenFile&& other) noexcept : handle_(other.release()) {}
  OpenFile& operator=(OpenFile&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~OpenFile() { close(); }

  [[nodiscard]] HANDLE get() const noexcept { return handle_; }
  explicit operator bool() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE release() noexcept { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
  // true also when there is nothing to close.
  bool close() { return !*this || fileApi().close(release()); }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

// Keeps the thread's last error over what is cleaned up after a failure.
class KeptError {
 public:
  KeptError() noexcept : error_(GetLastError()) {}
  KeptError(const KeptError&) = delete;
  KeptError& operator=(const KeptError&) = delete;
  ~KeptError() { SetLastError(error_); }

 private:
  DWORD error_;
};

}  // namespace zo
