// The platform's file times as numbers: counts of 100 ns since 1601.
#pragma once

#include <windows.h>

#include <cstdint>

namespace zo {

[[nodiscard]] inline std::uint64_t timeValue(FILETIME time) noexcept {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

[[nodiscard]] inline FILETIME fileTime(std::uint64_t value) noexcept {
  return {.dwLowDateTime = static_cast<DWORD>(value),
          .dwHighDateTime = static_cast<DWORD>(value >> 32)};
}

}  // namespace zo
