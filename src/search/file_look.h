// How a file looks from outside: changed, most likely, when it was written to.
#pragma once

#include <cstdint>
#include <string>

#include "platform/file_api.h"

namespace zo {

struct FileLook {
  std::uint64_t size = 0, written = 0;  // 100 ns since 1601
  [[nodiscard]] bool operator==(const FileLook&) const = default;
};

// Of what the platform tells of a file, in any of its ways.
template <class Told>
[[nodiscard]] FileLook lookOf(const Told& told) noexcept {
  const auto joined = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
  return {
      .size = joined(told.nFileSizeHigh, told.nFileSizeLow),
      .written = joined(told.ftLastWriteTime.dwHighDateTime, told.ftLastWriteTime.dwLowDateTime)};
}

// false where there is no such file; GetLastError() then says why.
[[nodiscard]] bool lookAt(const std::wstring& file, FileLook& look);

}  // namespace zo
