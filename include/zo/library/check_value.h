// The check value that a library keeps of a member's bytes, as ZoLibEntry::crc has it: CRC-32. It
// tells whether a file is what a member holds, without reading the member.
//
//   std::uint32_t value = 0;
//   while (const unsigned int count = file.read(buffer, sizeof buffer))
//     value = zoCheckValue(buffer, count, value);
//
// Errors:  nothing throws. Null, and a size that ends behind all memory of programs, count as no
//          bytes; any other size is taken for true.
// Threads: any.
#pragma once

#include <zo/config.h>
#include <zo/text/not_negative.h>

#include <cstddef>
#include <cstdint>

// `before` is the value of the bytes that come before these.
[[nodiscard]] ZO_COM_API std::uint32_t zoCheckValue(
    const void* bytes, zo::NotNegative<std::size_t> size,
    zo::NotNegative<std::uint32_t> before = 0U) noexcept;
