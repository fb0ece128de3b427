// What the compression suites share: data files, sources that come in small pieces, sinks that
// fail, and the operations under test as plain functions.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "persist/container.h"
#include "persist/implode_encoder.h"

namespace zo::test {

// A file of the source tree. Fails the test when it cannot be read.
ByteVector sourceFile(const std::string& path);

// Bytes in pieces of the given size.
class PiecedSource final : public ByteSource {
 public:
  PiecedSource(Bytes bytes, std::size_t piece) : bytes_(bytes), piece_(piece) {}
  Bytes next() noexcept override;

 private:
  Bytes bytes_;
  std::size_t piece_;
};

class MemoryStore final : public ByteStore {
 public:
  explicit MemoryStore(Bytes bytes) : bytes_(bytes) {}
  std::uint64_t size() const noexcept override { return bytes_.size(); }
  bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override;

 private:
  Bytes bytes_;
};

// Takes so many bytes and no more.
class VectorSink final : public ByteSink {
 public:
  explicit VectorSink(std::size_t room = SIZE_MAX) : room_(room) {}
  bool write(Bytes bytes) noexcept override;
  ByteVector taken;

 private:
  std::size_t room_;
};

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

}  // namespace zo::test
