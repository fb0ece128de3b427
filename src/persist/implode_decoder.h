// Decoder of the PKWARE Data Compression Library's implode format, in runs of some kilobytes.
//
// Format:  docs/formats/compressed-container.md, "Implode body".
// Errors:  state() tells how decoding stands. Whatever the input is, it reads nothing outside it
//          and takes no memory: the object holds all it needs, some 20 KB.
// Threads: one thread at a time per object.
// Cost:    at most one table look-up for a literal, two for a copy.
#pragma once

#include <array>
#include <cstdint>

#include "bytes/byte_stream.h"
#include "persist/implode_tables.h"

namespace zo {

class ImplodeDecoder {
 public:
  enum class State {
    running,
    complete,  // the end code was reached; what follows it is not looked at
    cut,       // the input ended before
    broken,    // an unknown header, or a copy from before the start
  };

  // `body` must outlive the decoder.
  explicit ImplodeDecoder(ByteSource& body) noexcept : in_(body) {}
  ImplodeDecoder(const ImplodeDecoder&) = delete;
  ImplodeDecoder& operator=(const ImplodeDecoder&) = delete;

  // The next decoded bytes, valid until the next call; empty only when the state is no longer
  // running. Bytes that stand before a fault are delivered.
  [[nodiscard]] Bytes next() noexcept;
  [[nodiscard]] State state() const noexcept { return state_; }

  // The least number of bytes that a run has unless it is the last one.
  static constexpr std::size_t kRun = 16384;

 private:
  // The next bits of the stream, lowest first. After refill there are at least 56, or all that is
  // left; bits that do not exist read as 0 and leave available() negative when they are taken.
  class BitReader {
   public:
    explicit BitReader(ByteSource& source) noexcept : source_(&source) {}
    void refill() noexcept;
    [[nodiscard]] int available() const noexcept { return available_; }
    [[nodiscard]] unsigned int peek(unsigned int count) const noexcept {
      return static_cast<unsigned int>(bits_) & ((1u << count) - 1);
    }
    void skip(unsigned int count) noexcept {
      bits_ >>= count;
      available_ -= static_cast<int>(count);
    }
    // The literals that come next, some or all, when there are 56 bits: writes up to eight bytes at
    // `out` and returns the end of those that are literals.
    unsigned char* takeCodedLiterals(unsigned char* out) noexcept;
    unsigned char* takePlainLiterals(unsigned char* out) noexcept;
    unsigned int take(unsigned int count) noexcept {
      const unsigned int value = peek(count);
      skip(count);
      return value;
    }

   private:
    void refillAtBorder() noexcept;

    const unsigned char* at_ = nullptr;
    const unsigned char* end_ = nullptr;
    std::uint64_t bits_ = 0;
    int available_ = 0;
    bool sourceEnded_ = false;
    ByteSource* source_;
  };

  [[nodiscard]] bool readHeader() noexcept;
  template <bool coded>
  unsigned char* decodeRun(unsigned char* out, const unsigned char* floor) noexcept;

  static constexpr std::size_t kHistory = implode::kMaxDistance;
  static_assert(kHistory <= kRun);
  // A run may pass its end by eight bytes and a copy, and a copy its own end by 24 bytes.
  static constexpr std::size_t kSlack = 8 + implode::kMaxLength + 24;

  BitReader in_;
  State state_ = State::running;
  bool started_ = false;
  bool codedLiterals_ = false;
  unsigned int distanceBits_ = 0;
  std::size_t runSize_ = 0;
  // The bytes before the run, up to kHistory, end where the run begins.
  std::array<unsigned char, kHistory + kRun + kSlack> buffer_;
};

}  // namespace zo
