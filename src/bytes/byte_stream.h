// Bytes that come in pieces and bytes that go out in pieces: what the codecs read and write, be it
// memory or a file.
#pragma once

#include <span>
#include <utility>

namespace zo {

using Bytes = std::span<const unsigned char>;

class ByteSource {
 public:
  ByteSource() = default;
  virtual ~ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  // The next piece, valid until the next call. Empty at the end, and where no more can be had.
  virtual Bytes next() noexcept = 0;
};

class ByteSink {
 public:
  ByteSink() = default;
  virtual ~ByteSink() = default;
  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;

  // Takes all of the bytes, or returns false.
  [[nodiscard]] virtual bool write(Bytes bytes) noexcept = 0;
};

// A block of memory as one piece.
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(Bytes bytes) noexcept : bytes_(bytes) {}
  Bytes next() noexcept override { return std::exchange(bytes_, Bytes()); }

 private:
  Bytes bytes_;
};

}  // namespace zo
