// What the compression suites share: data files and the operations under test as plain functions.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "persist/implode_encoder.h"
#include "persist/memory_streams.h"

namespace zo::test {

// A file of the source tree. Fails the test when it cannot be read.
ByteVector sourceFile(const std::string& path);

struct Exploded {
  int result = 0;
  bool delivered = false;
  ByteVector bytes;
  bool operator==(const Exploded&) const = default;
};

// ZoExplode's buffer form; checks what holds for every call: output exactly when the result is not
// 1, and a zero byte after it.
Exploded explode(Bytes container);
// The same container from a stream to a stream.
Exploded explodeStreamed(Bytes container);

// Content that is worth compressing: words, runs, and noise.
ByteVector sampleContent(std::size_t size, unsigned int seed);
ByteVector lzmaContainer(Bytes content, int level);

// The bytes with a few changes: cut, longer, shorter, flipped bits, telling values.
ByteVector mutated(const ByteVector& original, std::mt19937& random);
// How many mutations a test tries; the environment's ZO_MUTATIONS takes the place of the ordinary
// number: 500000 takes the archives about a minute.
int mutationCount(int ordinary);

}  // namespace zo::test
