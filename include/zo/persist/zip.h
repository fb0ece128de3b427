// What compression and decompression share: the compression modes and the result code of their own.
//
// Errors, Threads: none; constants.
#pragma once

#include <zo/config.h>

struct ZoZip {
  // How much work goes into compressing. Any other value counts as normal. These numbers reach
  // library files: never renumber.
  enum compressMode : unsigned int {
    fast = 0x400,    // LZMA level 0
    normal = 0x800,  // LZMA level 5
    best = 0x1000,   // LZMA level 9
  };

  // Decompression: the check value does not match; the output is delivered all the same.
  static constexpr int checkMismatch = 1000;
};
