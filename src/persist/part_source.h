// A part of a store, in pieces.
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
      failed_ = true;
      remaining_ = 0;
      return {};
    }
    at_ += piece.size();
    remaining_ -= piece.size();
    return piece;
  }
  [[nodiscard]] bool failed() const noexcept { return failed_; }

 private:
  ByteStore& store_;
  std::uint64_t at_;
  std::uint64_t remaining_;
  bool failed_ = false;
  std::array<unsigned char, 32768> piece_;
};

}  // namespace zo
