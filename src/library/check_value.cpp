#include <zo/library/check_value.h>

#include "bytes/crc32.h"
#include "platform/address_range.h"

std::uint32_t zoCheckValue(const void* bytes, zo::NotNegative<std::size_t> size,
                           zo::NotNegative<std::uint32_t> before) noexcept {
  if (!zo::canBeMemory(bytes, size)) return before;
  return ~zo::crc32Update(~std::uint32_t{before}, {static_cast<const unsigned char*>(bytes), size});
}
