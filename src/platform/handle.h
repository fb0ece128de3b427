// The one owner of a kernel handle, which it closes.
//
// No handle is null here: some calls of the platform fail with null, others with
// INVALID_HANDLE_VALUE, and a Handle takes both for none. What FindFirstFile and the like return is
// not closed by CloseHandle and does not belong here.
//
// Errors:  a refused CloseHandle is ignored. Nothing throws.
// Threads: one thread at a time per object; the kernel object behind it is the platform's matter.
#pragma once

#include <windows.h>

#include <utility>

namespace zo {

class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) noexcept
      : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(Handle&& other) noexcept : handle_(other.release()) {}
  Handle& operator=(Handle&& other) noexcept {
    Handle(std::move(other)).swap(*this);
    return *this;
  }
  ~Handle() {
    if (handle_) CloseHandle(handle_);
  }

  [[nodiscard]] HANDLE get() const noexcept { return handle_; }
  explicit operator bool() const noexcept { return handle_ != nullptr; }

  // Hands the handle to the caller, who closes it.
  [[nodiscard]] HANDLE release() noexcept { return std::exchange(handle_, nullptr); }
  // Closes what is held and owns `handle` instead.
  void reset(HANDLE handle = nullptr) noexcept { Handle(handle).swap(*this); }
  void swap(Handle& other) noexcept { std::swap(handle_, other.handle_); }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace zo
