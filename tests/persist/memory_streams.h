// Streams over memory for tests and fuzz targets: a source that comes in small pieces, a store, and
// a sink that can be too small.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "persist/container.h"

namespace zo::test {

using ByteVector = std::vector<unsigned char>;

class PiecedSource final : public ByteSource {
 public:
  PiecedSource(Bytes bytes, std::size_t piece) : bytes_(bytes), piece_(piece) {}
  Bytes next() noexcept override {
    const Bytes piece = bytes_.first(std::min(piece_, bytes_.size()));
    bytes_ = bytes_.subspan(piece.size());
    return piece;
  }

 private:
  Bytes bytes_;
  std::size_t piece_;
};

class MemoryStore final : public ByteStore {
 public:
  explicit MemoryStore(Bytes bytes) : bytes_(bytes) {}
  std::uint64_t size() const noexcept override { return bytes_.size(); }
  bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    if (offset > bytes_.size() || to.size() > bytes_.size() - offset) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
    return true;
  }

 private:
  Bytes bytes_;
};

// Takes so many bytes and no more.
class VectorSink final : public ByteSink {
 public:
  explicit VectorSink(std::size_t room = SIZE_MAX) : room_(room) {}
  bool write(Bytes bytes) noexcept override {
    if (bytes.size() > room_ - taken.size()) return false;
    taken.insert(taken.end(), bytes.begin(), bytes.end());
    return true;
  }
  ByteVector taken;

 private:
  std::size_t room_;
};

}  // namespace zo::test
