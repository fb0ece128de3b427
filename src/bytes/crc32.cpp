#include "bytes/crc32.h"

#include <7zCrc.h>

namespace zo {

std::uint32_t crc32Update(std::uint32_t crc, Bytes bytes) noexcept {
  static const bool tablesMade = (CrcGenerateTable(), true);
  static_cast<void>(tablesMade);
  return CrcUpdate(crc, bytes.data(), bytes.size());
}

}  // namespace zo
