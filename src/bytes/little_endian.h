// Numbers of 32 and 64 bits in little-endian order, at any address.
#pragma once

#include <cstdint>

namespace zo {

[[nodiscard]] inline std::uint32_t load32(const unsigned char* from) noexcept {
  return from[0] | std::uint32_t{from[1]} << 8 | std::uint32_t{from[2]} << 16 |
         std::uint32_t{from[3]} << 24;
}

[[nodiscard]] inline std::uint64_t load64(const unsigned char* from) noexcept {
  return load32(from) | std::uint64_t{load32(from + 4)} << 32;
}

inline void store32(unsigned char* to, std::uint32_t value) noexcept {
  for (int i = 0; i < 4; ++i) to[i] = static_cast<unsigned char>(value >> 8 * i);
}

}  // namespace zo
