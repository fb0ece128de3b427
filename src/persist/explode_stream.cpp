// Decompression of containers from a stream to a stream.
#include <zo/persist/zip.h>
#include <zo/results.h>

#include <array>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "persist/container.h"
#include "persist/legacy_reader.h"
#include "persist/lzma_decoder.h"
#include "persist/part_source.h"

namespace zo {

namespace {

struct Trailer {
  std::uint32_t size = 0;
  std::uint32_t check = 0;
};

bool readTrailer(ByteStore& in, Trailer& trailer) {
  std::array<unsigned char, kTrailerSize> bytes;
  if (!in.read(in.size() - kTrailerSize, bytes)) return false;
  trailer = {.size = load32(bytes.data()), .check = load32(bytes.data() + 4)};
  return true;
}

int explodeLegacy(ByteStore& in, ByteSink& out) {
  Trailer trailer;
  if (in.size() < kTrailerSize || !readTrailer(in, trailer)) return ZoResult::refused;
  PartSource body(in, 0, in.size() - kTrailerSize);
  LegacyReader reader(body, trailer.check);
  std::uint64_t size = 0;
  for (Bytes run; !(run = reader.next()).empty();) {
    size += run.size();
    if (size > kMaxContent || !out.write(run)) return ZoResult::refused;
  }
  return reader.result();
}

int explodeLzma(ByteStore& in, ByteSink& out) {
  Trailer trailer;
  std::array<unsigned char, kLzmaHeaderSize> header;
  if (in.size() < kMinLzmaContainer || !readTrailer(in, trailer) || !in.read(0, header)) {
    return ZoResult::refused;
  }
  const std::uint64_t streamSize = in.size() - kMinLzmaContainer;
  PartSource stream(in, kLzmaHeaderSize, streamSize);
  LzmaDecoder decoder(header, stream, streamSize, trailer.size, LzmaDecoder::Window::dictionary);
  std::uint32_t crc = kCrcStart;
  for (Bytes run; !(run = decoder.next()).empty();) {
    crc = crc32Update(crc, run);
    if (!out.write(run)) return ZoResult::refused;
  }
  if (decoder.status() != LzmaUtils::success) return ZoResult::refused;
  return ~crc == trailer.check ? ZoResult::ok : ZoZip::checkMismatch;
}

}  // namespace

int explodeStream(ByteStore& in, ByteSink& out) {
  unsigned char first = 0;
  if (in.size() == 0 || !in.read(0, {&first, 1})) return ZoResult::refused;
  return LzmaUtils::IsLzmaCompressedData(&first) ? explodeLzma(in, out) : explodeLegacy(in, out);
}

}  // namespace zo
