// Decoder of an LZMA stream of known length, over a window that grows with the data.
//
// The window is the dictionary and, when it may hold all of the content, the output itself. What
// the input claims (its dictionary size, its length) limits the window; only decoded data makes it
// grow.
//
// Errors:  status() is one of LzmaUtils. Data that is cut, or that ends (by an end mark) before its
//          stated length, is an error; data that goes on behind it is not.
// Threads: one thread at a time per object.
#pragma once

#include <LzmaDec.h>

#include <cstdint>

#include "bytes/byte_stream.h"
#include "persist/block.h"

namespace zo {

class LzmaDecoder {
 public:
  enum class Window {
    dictionary,  // no larger than the stream's dictionary
    content,     // all of the content, and room for a byte after it
  };

  // `header` is the five bytes before the stream; `stream` must outlive the decoder. streamSize
  // only decides how much room there is at first.
  LzmaDecoder(Bytes header, ByteSource& stream, std::uint64_t streamSize, std::uint32_t contentSize,
              Window window) noexcept;
  ~LzmaDecoder();
  LzmaDecoder(const LzmaDecoder&) = delete;
  LzmaDecoder& operator=(const LzmaDecoder&) = delete;

  // The next decoded bytes, valid until the next call. Empty at the end and after an error.
  [[nodiscard]] Bytes next() noexcept;
  [[nodiscard]] int status() const noexcept { return status_; }
  // The whole content, when the window is made for it.
  [[nodiscard]] Block takeWindow() noexcept;

 private:
  [[nodiscard]] bool makeRoom() noexcept;
  [[nodiscard]] bool resizeWindow(std::size_t capacity) noexcept;
  [[nodiscard]] std::size_t decodeSome(std::size_t limit) noexcept;

  CLzmaDec decoder_;
  ByteSource& stream_;
  Bytes piece_;
  Block window_;
  std::size_t maxWindow_ = 0;
  std::size_t spare_;  // bytes of the window that are no room for the decoder
  std::uint64_t remaining_;
  int status_;
  bool needsInput_ = true;  // the stream begins with bytes that make no content
};

}  // namespace zo
