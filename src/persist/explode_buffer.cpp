// Decompression of containers in memory.
#include <zo/persist/zip.h>
#include <zo/results.h>

#include <algorithm>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "persist/container.h"
#include "persist/legacy_reader.h"
#include "persist/lzma_decoder.h"

namespace zo {

namespace {

// Appends to a block whose first `size` bytes are in use, and leaves room for one byte more.
bool append(Block& block, std::size_t& size, Bytes bytes) noexcept {
  const std::size_t needed = size + bytes.size() + 1;
  if (needed > block.capacity() && !block.resize(std::max(needed, 2 * block.capacity()))) {
    return false;
  }
  std::copy(bytes.begin(), bytes.end(), block.data() + size);
  size += bytes.size();
  return true;
}

int explodeLegacy(Bytes in, Block& out, std::size_t& outSize) {
  if (in.size() < kTrailerSize) return ZoResult::refused;
  MemorySource body(in.first(in.size() - kTrailerSize));
  LegacyReader reader(body, load32(in.data() + in.size() - 4));
  Block block;
  if (!block.resize(firstRoom(load32(in.data() + in.size() - kTrailerSize), in.size()) + 1)) {
    return ZoResult::refused;
  }
  std::size_t size = 0;
  for (;;) {
    const Bytes run = reader.next();
    if (!append(block, size, run) || size > kMaxContent) return ZoResult::refused;
    if (run.empty()) break;
  }
  const int result = reader.result();
  if (result == ZoResult::refused) return result;
  if (block.capacity() > size + 1) {
    static_cast<void>(block.resize(size + 1));  // that it cannot shrink would do no harm
  }
  block.data()[size] = 0;
  out = std::move(block);
  outSize = size;
  return result;
}

}  // namespace

int uncompressLzma(Bytes in, Block& out, std::size_t& outSize) {
  outSize = 0;
  if (in.size() < kMinLzmaContainer) return LzmaUtils::inputEnded;
  if (!LzmaUtils::IsLzmaCompressedData(in.data())) return LzmaUtils::unsupported;
  const Bytes header = in.first(kLzmaHeaderSize);
  const Bytes stream = in.subspan(kLzmaHeaderSize, in.size() - kMinLzmaContainer);
  const unsigned char* const trailer = stream.data() + stream.size();
  const std::uint32_t size = load32(trailer);

  MemorySource source(stream);
  LzmaDecoder decoder(header, source, stream.size(), size, LzmaDecoder::Window::content);
  std::uint32_t crc = kCrcStart;
  for (Bytes run; !(run = decoder.next()).empty();) crc = crc32Update(crc, run);
  if (decoder.status() != LzmaUtils::success) return decoder.status();
  out = decoder.takeWindow();
  out.data()[size] = 0;
  outSize = size;
  return ~crc == load32(trailer + 4) ? LzmaUtils::success : LzmaUtils::checkMismatch;
}

int explodeBuffer(Bytes in, Block& out, std::size_t& outSize) {
  outSize = 0;
  if (in.empty() || !LzmaUtils::IsLzmaCompressedData(in.data())) {
    return explodeLegacy(in, out, outSize);
  }
  switch (uncompressLzma(in, out, outSize)) {
    case LzmaUtils::success:
      return ZoResult::ok;
    case LzmaUtils::checkMismatch:
      return ZoZip::checkMismatch;
    default:
      return ZoResult::refused;
  }
}

}  // namespace zo
