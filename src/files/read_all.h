// All bytes of a file, whatever it is made of.
#pragma once

#include <zo/names/file_name.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

class ZoFile;

namespace zo {

struct AllBytes {
  std::unique_ptr<char[]> bytes;
  std::size_t size = 0;

  [[nodiscard]] std::string_view view() const noexcept { return {bytes.get(), size}; }
};

// 0, or a code of ZoFile whose reason is kept: ERROR_FILE_TOO_LARGE, then the thread's last error,
// for more than `most` bytes.
[[nodiscard]] int readAll(ZoFile& file, std::int64_t most, AllBytes& all);  // from its front
[[nodiscard]] int readAll(const ZoFileName& name, std::int64_t most, AllBytes& all);

}  // namespace zo
