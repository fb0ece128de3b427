// CRC-32 of long runs by carry-less multiplication: sixty-four bytes at a time are folded into what
// lies behind them.
//
// Source:  Gopal, Ozturk, Guilford et al., "Fast CRC Computation for Generic Polynomials Using
//          PCLMULQDQ Instruction", 2009; here for bits in reflected order. What is left of a run,
//          sixteen bytes with the register of the whole, is for the caller's tables.
#pragma once

#include <array>
#include <cstdint>

#include "bytes/byte_stream.h"

namespace zo {

inline constexpr std::size_t kFoldUnit = 16, kFoldLeast = 64;  // bytes

// Whether the processor can.
[[nodiscard]] bool canFoldCrc() noexcept;

// Sixteen bytes: a register of 0 over them is the register `crc` over the run, which has at least
// kFoldLeast bytes and a whole number of kFoldUnit.
[[nodiscard]] std::array<unsigned char, kFoldUnit> foldCrc(std::uint32_t crc, Bytes run) noexcept;

}  // namespace zo
