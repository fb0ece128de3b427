#include <zo/library/check_value.h>

#include "bytes/crc32.h"

std::uint32_t zoCheckValue(const void* bytes, std::size_t size, std::uint32_t before) noexcept {
  return ~zo::crc32Update(~before, {static_cast<const unsigned char*>(bytes), size});
}
