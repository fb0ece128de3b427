// Bytes of members on their way: copied part by part, watched, checked.
#pragma once

#include <algorithm>
#include <vector>

#include "bytes/crc32.h"
#include "library/progress.h"
#include "persist/container.h"

namespace zo {

inline constexpr std::size_t kPiece = std::size_t{64} << 10;  // larger ones leave the cache

// Copies a part of a store through the buffer. Pieces end where the buffer's size divides their
// place, which is that of the first byte where it goes. False when the part cannot be read or the
// sink refuses it.
[[nodiscard]] inline bool copyPart(ByteStore& from, std::uint64_t begin, std::uint64_t size,
                                   ByteSink& to, std::span<unsigned char> buffer,
                                   std::uint64_t place = 0) {
  for (std::uint64_t done = 0; done < size;) {
    const std::uint64_t room = buffer.size() - (place + done) % buffer.size();
    const auto piece =
        buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(room, size - done)));
    if (!from.read(begin + done, piece) || !to.write(piece)) return false;
    done += piece.size();
  }
  return true;
}

// The same through a buffer of its own, which needs no memory for little.
[[nodiscard]] inline bool copyPart(ByteStore& from, std::uint64_t begin, std::uint64_t size,
                                   ByteSink& to) {
  constexpr std::size_t kLittle = 2048;
  if (size <= kLittle) {
    unsigned char little[kLittle];
    return copyPart(from, begin, size, to, little);
  }
  std::vector<unsigned char> buffer(
      static_cast<std::size_t>(std::min<std::uint64_t>(size, kPiece)));
  return copyPart(from, begin, size, to, buffer);
}

// All that a source gives. One that ends too early is for the caller to notice.
[[nodiscard]] inline bool copyAll(ByteSource& from, ByteSink& to) {
  for (Bytes piece; !(piece = from.next()).empty();) {
    if (!to.write(piece)) return false;
  }
  return true;
}

// Reports what passes on.
class WatchedSink final : public ByteSink {
 public:
  WatchedSink(ByteSink& sink, Progress& progress) : sink_(sink), progress_(progress) {}
  bool write(Bytes bytes) noexcept override {
    return sink_.write(bytes) && progress_.add(bytes.size());
  }

 private:
  ByteSink& sink_;
  Progress& progress_;
};

// The check value of what passes on, or of what ends here.
class CheckedSink final : public ByteSink {
 public:
  explicit CheckedSink(ByteSink* sink = nullptr) : sink_(sink) {}
  bool write(Bytes bytes) noexcept override {
    crc_ = crc32Update(crc_, bytes);
    return !sink_ || sink_->write(bytes);
  }
  [[nodiscard]] std::uint32_t crc() const { return ~crc_; }

 private:
  ByteSink* sink_;
  std::uint32_t crc_ = kCrcStart;
};

// Looks only whether it is to go on.
class NoSink final : public ByteSink {
 public:
  explicit NoSink(Progress& progress) : progress_(progress) {}
  bool write(Bytes) noexcept override { return progress_.goesOn(); }

 private:
  Progress& progress_;
};

}  // namespace zo
