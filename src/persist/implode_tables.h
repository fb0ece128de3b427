// The fixed codes of the PKWARE Data Compression Library's implode format. Part of the format: the
// numbers never change.
//
// Three prefix codes, each given by the lengths of its codes: of a literal byte (in text mode), of
// the length of a copy, and of the upper six bits of its distance. Codes of one length are
// consecutive numbers in the order of their symbols, shorter codes first, as in canonical Huffman
// codes, but with all bits inverted: the first code of all is all ones. A code is sent from its
// highest bit on, everything else from its lowest.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zo::implode {

inline constexpr unsigned int kMaxCodeBits = 13;

inline constexpr std::array<std::uint8_t, 256> kLiteralCodeBits = {
    11, 12, 12, 12, 12, 12, 12, 12, 12, 8,  7,  12, 12, 7,  12, 12,  // 00
    12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 13, 12, 12, 12, 12, 12,  // 10
    4,  10, 8,  12, 10, 12, 10, 8,  7,  7,  8,  9,  7,  6,  7,  8,   // 20 space
    7,  6,  7,  7,  7,  7,  8,  7,  7,  8,  8,  12, 11, 7,  9,  11,  // 30 0
    12, 6,  7,  6,  6,  5,  7,  8,  8,  6,  11, 9,  6,  7,  6,  6,   // 40 @
    7,  11, 6,  6,  6,  7,  9,  8,  9,  9,  11, 8,  11, 9,  12, 8,   // 50 P
    12, 5,  6,  6,  6,  5,  6,  6,  6,  5,  11, 7,  5,  6,  5,  5,   // 60 `
    6,  10, 5,  5,  5,  5,  8,  7,  8,  8,  10, 11, 11, 12, 12, 12,  // 70 p
    13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13,  // 80
    13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13,  // 90
    13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13,  // a0
    12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,  // b0
    12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,  // c0
    12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,  // d0
    13, 12, 13, 13, 13, 12, 13, 13, 13, 12, 13, 13, 13, 13, 12, 13,  // e0
    13, 13, 12, 12, 12, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13,  // f0
};

inline constexpr std::array<std::uint8_t, 16> kLengthCodeBits = {2, 3, 3, 3, 4, 4, 4, 5,
                                                                 5, 5, 5, 6, 6, 6, 7, 7};
// The length of a copy is the base plus a number of so many bits that follows the code.
inline constexpr std::array<std::uint16_t, 16> kLengthBase = {3,  2,  4,  5,  6,  7,  8,   9,
                                                              10, 12, 16, 24, 40, 72, 136, 264};
inline constexpr std::array<std::uint8_t, 16> kLengthExtraBits = {0, 0, 0, 0, 0, 0, 0, 0,
                                                                  1, 2, 3, 4, 5, 6, 7, 8};
inline constexpr unsigned int kMaxLength = 518;
inline constexpr unsigned int kEndLength = 519;  // is no copy but the end of the data

inline constexpr std::array<std::uint8_t, 64> kDistanceCodeBits = {
    2, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8};
// The lower bits of a distance follow its code as they are: two for a copy of two bytes, else as
// many as the header says, 4, 5 or 6 (a dictionary of 1024, 2048 or 4096 bytes).
inline constexpr unsigned int kShortCopy = 2;
inline constexpr unsigned int kShortCopyDistanceBits = 2;
inline constexpr unsigned int kMinDistanceBits = 4;
inline constexpr unsigned int kMaxDistanceBits = 6;
inline constexpr unsigned int kMaxDistance = 64u << kMaxDistanceBits;

// What stands in the stream for each symbol, lowest bit first. Fails to compile for lengths that
// make no complete code.
template <std::size_t n>
constexpr std::array<std::uint16_t, n> codesFor(const std::array<std::uint8_t, n>& lengths) {
  std::array<std::uint16_t, n> codes{};
  unsigned int code = 0;
  for (unsigned int bits = 1; bits <= kMaxCodeBits; ++bits) {
    for (std::size_t symbol = 0; symbol < n; ++symbol) {
      if (lengths[symbol] != bits) continue;
      for (unsigned int i = 0; i < bits; ++i) {
        if (!(code >> (bits - 1 - i) & 1)) {
          codes[symbol] = static_cast<std::uint16_t>(codes[symbol] | 1u << i);
        }
      }
      ++code;
    }
    code <<= 1;
  }
  if (code != 2u << kMaxCodeBits) throw "not a complete prefix code";
  return codes;
}

inline constexpr auto kLiteralCodes = codesFor(kLiteralCodeBits);
inline constexpr auto kLengthCodes = codesFor(kLengthCodeBits);
inline constexpr auto kDistanceCodes = codesFor(kDistanceCodeBits);

}  // namespace zo::implode
