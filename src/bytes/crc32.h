// CRC-32 (ISO-HDLC, the polynomial of zlib) as a running register.
#pragma once

#include <cstdint>

#include "bytes/byte_stream.h"

namespace zo {

inline constexpr std::uint32_t kCrcStart = 0xFFFFFFFF;

// The register after `bytes`, without the final inversion.
[[nodiscard]] std::uint32_t crc32Update(std::uint32_t crc, Bytes bytes) noexcept;

// The finished value.
[[nodiscard]] inline std::uint32_t crc32(Bytes bytes) noexcept {
  return ~crc32Update(kCrcStart, bytes);
}

}  // namespace zo
