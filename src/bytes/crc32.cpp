#include "bytes/crc32.h"

#include <7zCrc.h>

#include "bytes/crc32_fold.h"

namespace zo {
namespace {

bool prepare() noexcept {
  CrcGenerateTable();
  return canFoldCrc();
}

}  // namespace

std::uint32_t crc32Update(std::uint32_t crc, Bytes bytes) noexcept {
  static const bool s_folds = prepare();
  constexpr std::size_t kWorth = 256;  // bytes, from which on it is faster
  if (s_folds && bytes.size() >= kWorth) {
    const std::size_t folded = bytes.size() / kFoldUnit * kFoldUnit;
    const auto left = foldCrc(crc, bytes.first(folded));
    crc = CrcUpdate(0, left.data(), left.size());
    bytes = bytes.subspan(folded);
  }
  return CrcUpdate(crc, bytes.data(), bytes.size());
}

}  // namespace zo
