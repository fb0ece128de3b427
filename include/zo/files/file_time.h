// A moment as the platform's files keep it. Converts from and to FILETIME where windows.h is there.
//
// Errors:  nothing throws.
// Threads: a plain value.
#pragma once

#include <zo/platform_types.h>

#include <compare>
#include <concepts>
#include <cstdint>

struct ZoFileTime {
  std::uint64_t ticks = 0;  // of 100 ns since 1601, UTC; 0 for none

  ZoFileTime() = default;
  constexpr explicit ZoFileTime(std::uint64_t count) noexcept : ticks(count) {}
  // Templates, so that FILETIME need not be complete here.
  template <std::same_as<FILETIME> Time>
  constexpr ZoFileTime(const Time& time) noexcept
      : ticks(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime) {}
  template <std::same_as<FILETIME> Time>
  constexpr operator Time() const noexcept {
    Time time{};
    time.dwLowDateTime = static_cast<decltype(time.dwLowDateTime)>(ticks);
    time.dwHighDateTime = static_cast<decltype(time.dwHighDateTime)>(ticks >> 32);
    return time;
  }

  friend constexpr auto operator<=>(const ZoFileTime&, const ZoFileTime&) = default;
};
