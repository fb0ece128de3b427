// Encoder of LZMA streams: the SDK's, with its settings in one place.
#pragma once

#include <LzmaEnc.h>

#include <cstdint>

#include "bytes/byte_stream.h"

namespace zo {

class LzmaEncoder {
 public:
  // Both return a status of LzmaUtils. Level and dictionary size as LzmaUtils takes them. The
  // size of the content makes the encoder take no more memory than that needs; the format stays
  // the same.
  [[nodiscard]] int begin(int level, std::uint32_t dictSize, std::uint64_t contentSize) noexcept;

  // After begin: the five bytes before the stream.
  [[nodiscard]] int writeHeader(std::span<unsigned char> header) noexcept;
  // The stream of all of `content` at `out`; outSize is its room and becomes its size.
  [[nodiscard]] int encode(Bytes content, unsigned char* out, std::size_t& outSize) noexcept;
  [[nodiscard]] int encode(ISeqInStream& in, ISeqOutStream& out) noexcept;

  // After begin: the whole container of `content`. `size` is the room at `out` and becomes what was
  // used of it; containerRoom() is enough for any content.
  [[nodiscard]] int encodeContainer(Bytes content, unsigned char* out, std::size_t& size) noexcept;
  [[nodiscard]] static std::size_t containerRoom(std::size_t contentSize) noexcept {
    return contentSize + contentSize / 3 + 133;
  }

  // Takes its memory there; that must outlive it.
  explicit LzmaEncoder(ISzAllocPtr memory) : memory_(memory) {}
  ~LzmaEncoder();
  LzmaEncoder(const LzmaEncoder&) = delete;
  LzmaEncoder& operator=(const LzmaEncoder&) = delete;

 private:
  ISzAllocPtr memory_;
  CLzmaEncHandle encoder_ = nullptr;
};

}  // namespace zo
