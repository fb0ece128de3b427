// The two containers of compressed data, in memory and as streams.
//
// Format:  docs/formats/compressed-container.md.
// Errors:  where a function returns int: 0, 1 or 1000 as ZoExplode's operations do. Functions that
//          return a status give one of LzmaUtils.
// Threads: all state is on the call.
#pragma once

#include <zo/persist/lzma_utils.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "bytes/byte_stream.h"
#include "persist/block.h"

namespace zo {

class ReusedMemory;

// Part of the format: do not change.
inline constexpr std::size_t kLzmaHeaderSize = 5;  // properties byte, dictionary size
inline constexpr std::size_t kTrailerSize = 8;     // uncompressed size, check value
inline constexpr std::size_t kMinLzmaContainer = kLzmaHeaderSize + kTrailerSize;
inline constexpr unsigned char kLzmaProperties = (2 * 5 + 0) * 9 + 3;  // pb 2, lp 0, lc 3
static_assert(kLzmaProperties == 0x5D);
inline constexpr std::uint64_t kMaxContent = 0xFFFFFFFF;

// The room for content of a stated size that the compressed size justifies: enough for most data at
// once. What goes beyond it is made when it is decoded.
[[nodiscard]] inline std::size_t firstRoom(std::uint64_t stated,
                                           std::uint64_t compressed) noexcept {
  return static_cast<std::size_t>(std::min(stated, (std::uint64_t{64} << 10) + 16 * compressed));
}

// The LZMA level of a compression mode.
[[nodiscard]] int levelOf(unsigned int mode) noexcept;

// ---- Streams: what the caller reads from and writes to may be files ----

// Bytes of which any part can be read.
class ByteStore {
 public:
  virtual ~ByteStore() = default;
  [[nodiscard]] virtual std::uint64_t size() const noexcept = 0;
  // Fills `to` from the offset, or returns false.
  [[nodiscard]] virtual bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept = 0;
};

// Compresses `size` bytes of `in`; a source that gives more, or fewer, is refused. Returns a
// status. Who compresses many gives the memory that is used for all of them.
[[nodiscard]] int compressStream(ByteSource& in, std::uint64_t size, int level, ByteSink& out,
                                 ReusedMemory* memory = nullptr);

// Decompresses a container of either kind. After a 1, `out` may have received some bytes.
[[nodiscard]] int explodeStream(ByteStore& in, ByteSink& out);

// ---- Buffers ----

// Decompresses a container of either kind. On 0 and 1000 `out` holds outSize bytes and a zero
// byte; on 1 it holds nothing.
[[nodiscard]] int explodeBuffer(Bytes in, Block& out, std::size_t& outSize);

// Decompresses an LZMA container. Returns a status; `out` as above, for success and checkMismatch.
[[nodiscard]] int uncompressLzma(Bytes in, Block& out, std::size_t& outSize);

}  // namespace zo
