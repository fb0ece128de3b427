// The data of an entry as a store of its own.
#pragma once

#include <algorithm>
#include <vector>

#include "library/format.h"
#include "persist/container.h"

namespace zo {

class MemberData final : public ByteStore {
 public:
  static constexpr std::size_t kSmall = std::size_t{64} << 10;  // is read at once

  MemberData(ByteStore& store, const RawEntry& entry)
      : store_(store), begin_(entry.dataPosition()), size_(entry.record.storedSize) {
    if (size_ > kSmall) return;
    small_.resize(static_cast<std::size_t>(size_));
    if (!store_.read(begin_, small_)) small_.clear();
  }
  [[nodiscard]] std::uint64_t size() const noexcept override { return size_; }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    if (offset > size_ || to.size() > size_ - offset) return false;
    if (small_.empty()) return store_.read(begin_ + offset, to);
    std::copy_n(small_.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
    return true;
  }

 private:
  ByteStore& store_;
  std::uint64_t begin_, size_;
  std::vector<unsigned char> small_;
};

}  // namespace zo
