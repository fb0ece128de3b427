// What can be told of memory that a caller names by its begin and size, without touching it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace zo {

// False where no memory can stand: for null with a size, and where the range ends behind all that
// the platform gives to programs, as with the size that a negative number becomes.
[[nodiscard]] inline bool canBeMemory(const void* begin, std::size_t size) noexcept {
  static const auto last = [] {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return reinterpret_cast<std::uintptr_t>(info.lpMaximumApplicationAddress);
  }();
  const auto first = reinterpret_cast<std::uintptr_t>(begin);
  return size == 0 || (begin && first <= last && size - 1 <= last - first);
}

}  // namespace zo
