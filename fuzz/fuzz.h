// What the fuzz targets share.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "persist/memory_streams.h"

// Ends the program with the condition that does not hold, in every build.
#define ZO_FUZZ_CHECK(condition)                                                          \
  do {                                                                                    \
    if (!(condition)) {                                                                   \
      std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                       \
    }                                                                                     \
  } while (false)

// A copy that ends where its memory ends, so that a byte read past it shows.
inline zo::test::ByteVector fuzzInput(const unsigned char* data, std::size_t size) {
  return {data, data + size};
}
