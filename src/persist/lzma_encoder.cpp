// The encoder of the LZMA SDK. It is told the size of the content before it begins: then its tables
// are no larger than the content needs (level 9 would take gigabytes for a single byte), and the
// stream needs no end mark.
#include "persist/lzma_encoder.h"

#include <zo/persist/lzma_utils.h>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "persist/container.h"

namespace zo {

LzmaEncoder::~LzmaEncoder() {
  if (encoder_) LzmaEnc_Destroy(encoder_, memory_, memory_);
}

int LzmaEncoder::begin(int level, std::uint32_t dictSize, std::uint64_t contentSize) noexcept {
  encoder_ = LzmaEnc_Create(memory_);
  if (!encoder_) return LzmaUtils::outOfMemory;
  CLzmaEncProps properties;
  LzmaEncProps_Init(&properties);
  properties.level = level;
  properties.dictSize = dictSize;
  properties.reduceSize = contentSize;
  properties.writeEndMark = 0;
  LzmaEnc_SetDataSize(encoder_, contentSize);
  return LzmaEnc_SetProps(encoder_, &properties);
}

int LzmaEncoder::writeHeader(std::span<unsigned char> header) noexcept {
  SizeT size = header.size();
  return LzmaEnc_WriteProperties(encoder_, header.data(), &size);
}

int LzmaEncoder::encode(Bytes content, unsigned char* out, std::size_t& outSize) noexcept {
  return LzmaEnc_MemEncode(encoder_, out, &outSize, content.data(), content.size(), 0, nullptr,
                           memory_, memory_);
}

int LzmaEncoder::encodeContainer(Bytes content, unsigned char* out, std::size_t& size) noexcept {
  if (const int status = writeHeader({out, kLzmaHeaderSize})) return status;
  std::size_t streamSize = size - kLzmaHeaderSize - kTrailerSize;
  if (const int status = encode(content, out + kLzmaHeaderSize, streamSize)) return status;
  unsigned char* const trailer = out + kLzmaHeaderSize + streamSize;
  store32(trailer, static_cast<std::uint32_t>(content.size()));
  store32(trailer + 4, crc32(content));
  size = kLzmaHeaderSize + streamSize + kTrailerSize;
  return LzmaUtils::success;
}

int LzmaEncoder::encode(ISeqInStream& in, ISeqOutStream& out) noexcept {
  return LzmaEnc_Encode(encoder_, &out, &in, nullptr, memory_, memory_);
}

}  // namespace zo
