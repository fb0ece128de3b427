// The LZMA container of arbitrary bytes in memory.
//
// Errors:  status codes of the LZMA SDK, named below. Nothing throws; on any code but success and
//          checkMismatch `out` is empty.
// Threads: any number of calls at once.
// Cost:    compressing, see ZoCompress; decompressing, see ZoExplode, plus the result.
// Stored:  docs/formats/compressed-container.md.
#pragma once

#include <zo/config.h>

#include <vector>

class ZO_COM_API LzmaUtils {
 public:
  // The status codes that occur.
  enum Status : int {
    success = 0,
    damaged = 1,
    outOfMemory = 2,
    checkMismatch = 3,  // `out` is delivered all the same
    unsupported = 4,    // not a container of ours
    badParameter = 5,   // null data, 4 GiB or more, a dictionary that the encoder refuses
    inputEnded = 6,
    outputFull = 7,
  };

  // Compresses at a level from 0 (fast) to 9 (best), other values counting as the encoder has it; a
  // dictSize of 0 takes the level's own dictionary size. No dictionary is larger than the data
  // needs.
  [[nodiscard]] static int LzmaCompressData(std::vector<unsigned char>& out, const void* data,
                                            unsigned long long size, int level,
                                            unsigned int dictSize);

  [[nodiscard]] static int LzmaUncompressData(std::vector<unsigned char>& out, const void* data,
                                              unsigned long long size);

  // Whether the first byte is that of a container: lc 3, lp 0, pb 2. No other byte is looked at;
  // null gives false.
  [[nodiscard]] static bool IsLzmaCompressedData(const unsigned char* data);
};
