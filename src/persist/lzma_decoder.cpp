// The decoder of the LZMA SDK, driven step by step over a window of our own: its one-call interface
// would allocate at once whatever a damaged header asks for.
#include "persist/lzma_decoder.h"

#include <zo/persist/lzma_utils.h>

#include <algorithm>

#include "persist/container.h"
#include "persist/sdk_memory.h"

namespace zo {

namespace {

// How much is decoded between two calls of a stream's writer.
constexpr std::size_t kRun = std::size_t{256} << 10;

}  // namespace

LzmaDecoder::LzmaDecoder(Bytes header, ByteSource& stream, std::uint64_t streamSize,
                         std::uint32_t contentSize, Window window) noexcept
    : stream_(stream), spare_(window == Window::content), remaining_(contentSize) {
  LzmaDec_CONSTRUCT(&decoder_);
  status_ = LzmaDec_AllocateProbs(&decoder_, header.data(), static_cast<unsigned>(header.size()),
                                  &kSdkMemory);
  if (status_ != LzmaUtils::success) return;
  maxWindow_ = contentSize;
  if (window == Window::dictionary) {
    maxWindow_ = std::min<std::size_t>(maxWindow_, decoder_.prop.dicSize);
  }
  if (!resizeWindow(firstRoom(maxWindow_, streamSize))) status_ = LzmaUtils::outOfMemory;
  LzmaDec_Init(&decoder_);
}

LzmaDecoder::~LzmaDecoder() { LzmaDec_FreeProbs(&decoder_, &kSdkMemory); }

bool LzmaDecoder::resizeWindow(std::size_t capacity) noexcept {
  // An empty content needs a block all the same.
  if (!window_.resize(std::max<std::size_t>(capacity + spare_, 1))) return false;
  decoder_.dic = window_.data();
  decoder_.dicBufSize = capacity;
  return true;
}

// A full window grows until it is as large as it may be; then the dictionary begins anew at its
// start. Growing keeps all positions, and the decoder knows its window only by them.
bool LzmaDecoder::makeRoom() noexcept {
  if (decoder_.dicPos < decoder_.dicBufSize || remaining_ == 0) return true;
  if (decoder_.dicBufSize < maxWindow_) {
    return resizeWindow(std::min(maxWindow_, 2 * decoder_.dicBufSize));
  }
  decoder_.dicPos = 0;
  return true;
}

// One call of the decoder, with more input when there is none. Returns the number of bytes.
std::size_t LzmaDecoder::decodeSome(std::size_t limit) noexcept {
  if (piece_.empty()) piece_ = stream_.next();
  const std::size_t from = decoder_.dicPos;
  SizeT taken = piece_.size();
  ELzmaStatus end = LZMA_STATUS_NOT_SPECIFIED;
  status_ = LzmaDec_DecodeToDic(&decoder_, limit, piece_.data(), &taken, LZMA_FINISH_ANY, &end);
  const bool ended = piece_.empty();
  piece_ = piece_.subspan(taken);
  const std::size_t made = decoder_.dicPos - from;
  remaining_ -= made;
  const bool endsEarly = end == LZMA_STATUS_FINISHED_WITH_MARK && remaining_ > 0;
  if (status_ != LzmaUtils::success || endsEarly) {
    status_ = LzmaUtils::damaged;
  } else if (end == LZMA_STATUS_NEEDS_MORE_INPUT && ended) {
    status_ = LzmaUtils::inputEnded;
  }
  needsInput_ = end == LZMA_STATUS_NEEDS_MORE_INPUT;
  return made;
}

Bytes LzmaDecoder::next() noexcept {
  // Even the stream of an empty content begins with bytes to look at.
  while (status_ == LzmaUtils::success && (remaining_ > 0 || needsInput_)) {
    if (!makeRoom()) {
      status_ = LzmaUtils::outOfMemory;
      break;
    }
    const std::size_t from = decoder_.dicPos;
    const std::size_t room = decoder_.dicBufSize - from;
    const std::size_t made = decodeSome(
        from + static_cast<std::size_t>(std::min<std::uint64_t>({remaining_, room, kRun})));
    if (made > 0) return {window_.data() + from, made};
  }
  return {};
}

Block LzmaDecoder::takeWindow() noexcept { return std::move(window_); }

}  // namespace zo
