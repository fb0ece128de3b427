// Being told that something changed in a folder. Of the folders below it nothing is told: platforms
// that watch a whole tree miss what is made in a new folder before they watch that, too.
//
// Errors:  a folder that the platform does not watch (absent, on some networks) gives a watch that
//          is none.
// Threads: any: what was signalled once stays so, for all who ask.
// Cost:    a kernel object each; asking takes one call for 64 of them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>
#include <utility>

namespace zo {

class FolderWatch {
 public:
  // What counts as a change: names that come and go, or any change of a file as well.
  enum What { kNames, kFiles };

  FolderWatch() = default;
  FolderWatch(const wchar_t* folder, What what) noexcept;
  FolderWatch(FolderWatch&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  FolderWatch& operator=(FolderWatch&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~FolderWatch();

  explicit operator bool() const noexcept { return handle_ != nullptr; }
  [[nodiscard]] HANDLE get() const noexcept { return handle_; }

 private:
  HANDLE handle_ = nullptr;
};

// Whether any of the watches was told of a change; true also where that cannot be asked.
[[nodiscard]] bool anyChanged(std::span<const HANDLE> watches) noexcept;

}  // namespace zo
