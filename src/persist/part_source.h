// A part of a store, in pieces. It ends where it cannot be read; who reads a container sees by its
// check value, and who knows the size by that, whether it was whole.
#pragma once

#include <algorithm>
#include <array>

#include "persist/container.h"

namespace zo {

class PartSource final : public ByteSource {
 public:
  PartSource(ByteStore& store, std::uint64_t begin, std::uint64_t size) noexcept
      : store_(store), at_(begin), remaining_(size) {}

  Bytes next() noexcept override {
    const std::span<unsigned char> piece(
        piece_.data(),
        static_cast<std::size_t>(std::min<std::uint64_t>(remaining_, piece_.size())));
    if (piece.empty()) return {};
    if (!store_.read(at_, piece)) {
      remaining_ = 0;
      return {};
    }
    at_ += piece.size();
    remaining_ -= piece.size();
    return piece;
  }

 private:
  ByteStore& store_;
  std::uint64_t at_;
  std::uint64_t remaining_;
  std::array<unsigned char, 32768> piece_;
};

}  // namespace zo
