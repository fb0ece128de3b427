// A block of the C heap that grows: what decompression fills and hands to the caller, who frees it
// with free.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <utility>

namespace zo {

class Block {
 public:
  Block() = default;
  Block(Block&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), capacity_(std::exchange(other.capacity_, 0)) {}
  Block& operator=(Block&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(capacity_, other.capacity_);
    return *this;
  }
  ~Block() { std::free(data_); }

  [[nodiscard]] unsigned char* data() const noexcept { return data_; }
  [[nodiscard]] std::size_t capacity() const noexcept { return capacity_; }

  // Moves the content into a block of exactly this capacity. False, with all as it was, when there
  // is no memory.
  [[nodiscard]] bool resize(std::size_t capacity) noexcept {
    void* moved = std::realloc(data_, capacity);
    if (!moved) return false;
    data_ = static_cast<unsigned char*>(moved);
    capacity_ = capacity;
    return true;
  }

  // Hands the block to the caller.
  [[nodiscard]] unsigned char* release() noexcept {
    capacity_ = 0;
    return std::exchange(data_, nullptr);
  }

 private:
  unsigned char* data_ = nullptr;
  std::size_t capacity_ = 0;
};

}  // namespace zo
