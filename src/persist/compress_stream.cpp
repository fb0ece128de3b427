// Compression from a stream to a stream.
#include <zo/persist/zip.h>

#include <algorithm>
#include <array>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "persist/container.h"
#include "persist/lzma_encoder.h"
#include "persist/sdk_memory.h"

namespace zo {

namespace {

constexpr std::uint64_t kSmall = 256 << 10;

// The SDK reads and writes through structures of C whose first member holds the functions.
struct Input {
  ISeqInStream functions;
  ByteSource* source;
  Bytes piece;
  std::uint64_t size;
  std::uint32_t crc;
};

struct Output {
  ISeqOutStream functions;
  ByteSink* sink;
};

SRes readPiece(ISeqInStreamPtr stream, void* buffer, size_t* size) noexcept {
  Input& in = *reinterpret_cast<Input*>(const_cast<ISeqInStream*>(stream));
  if (in.piece.empty()) in.piece = in.source->next();
  const Bytes part = in.piece.first(std::min(*size, in.piece.size()));
  std::copy(part.begin(), part.end(), static_cast<unsigned char*>(buffer));
  in.piece = in.piece.subspan(part.size());
  in.size += part.size();
  in.crc = crc32Update(in.crc, part);
  *size = part.size();
  return SZ_OK;
}

size_t writePiece(ISeqOutStreamPtr stream, const void* data, size_t size) noexcept {
  const Output& out = *reinterpret_cast<const Output*>(stream);
  return out.sink->write({static_cast<const unsigned char*>(data), size}) ? size : 0;
}

// As a whole: the encoder then has no window to move, and the sink is asked once.
int compressSmall(ByteSource& in, std::size_t size, LzmaEncoder& encoder, ByteSink& out,
                  ISzAllocPtr memory) {
  std::size_t packedSize = LzmaEncoder::containerRoom(size);
  const SdkBlock content(memory, size + 1), packed(memory, packedSize);
  if (!content.data() || !packed.data()) return LzmaUtils::outOfMemory;
  std::size_t filled = 0;
  for (Bytes piece; !(piece = in.next()).empty(); filled += piece.size()) {
    if (piece.size() > size - filled) return LzmaUtils::inputEnded;
    std::copy(piece.begin(), piece.end(), content.data() + filled);
  }
  if (filled != size) return LzmaUtils::inputEnded;
  const int status = encoder.encodeContainer({content.data(), size}, packed.data(), packedSize);
  if (status) return status;
  return out.write({packed.data(), packedSize}) ? LzmaUtils::success : LzmaUtils::outputFull;
}

}  // namespace

int levelOf(unsigned int mode) noexcept {
  switch (mode) {
    case ZoZip::fast:
      return 0;
    case ZoZip::best:
      return 9;
    default:
      return 5;
  }
}

int compressStream(ByteSource& in, std::uint64_t size, int level, ByteSink& out,
                   ReusedMemory* memory) {
  if (size > kMaxContent) return LzmaUtils::badParameter;
  const ISzAllocPtr functions = memory ? memory->functions() : &kSdkMemory;
  LzmaEncoder encoder(functions);
  int status = encoder.begin(level, 0, size);
  if (status) return status;
  if (size <= kSmall)
    return compressSmall(in, static_cast<std::size_t>(size), encoder, out, functions);
  std::array<unsigned char, kLzmaHeaderSize> header;
  status = encoder.writeHeader(header);
  if (status) return status;
  if (!out.write(header)) return LzmaUtils::outputFull;

  Input input{
      .functions = {.Read = readPiece}, .source = &in, .piece = {}, .size = 0, .crc = kCrcStart};
  Output output{.functions = {.Write = writePiece}, .sink = &out};
  status = encoder.encode(input.functions, output.functions);
  if (status) return status;
  if (input.size != size) return LzmaUtils::inputEnded;

  std::array<unsigned char, kTrailerSize> trailer;
  store32(trailer.data(), static_cast<std::uint32_t>(size));
  store32(trailer.data() + 4, ~input.crc);
  return out.write(trailer) ? LzmaUtils::success : LzmaUtils::outputFull;
}

}  // namespace zo
