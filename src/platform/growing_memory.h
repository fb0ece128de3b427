// A block of bytes that grows at its end. A large one grows in place: its addresses are reserved at
// once and get memory as it is needed, so that nothing is copied and no page is touched twice.
#pragma once

#include <cstddef>
#include <memory>

namespace zo {

class GrowingMemory {
 public:
  GrowingMemory() = default;
  GrowingMemory(const GrowingMemory&) = delete;
  GrowingMemory& operator=(const GrowingMemory&) = delete;
  ~GrowingMemory() { release(); }

  [[nodiscard]] std::byte* data() const noexcept { return data_; }
  [[nodiscard]] std::size_t capacity() const noexcept { return capacity_; }
  // Makes room for so many bytes, and more; the first `used` ones stay, elsewhere perhaps. Throws
  // std::bad_alloc, and then nothing has changed.
  void grow(std::size_t used, std::size_t wanted);

 private:
  void release() noexcept;

  std::byte* data_ = nullptr;
  std::size_t capacity_ = 0;
  std::size_t reserved_ = 0;           // 0 while the block is one of the heap
  std::unique_ptr<std::byte[]> heap_;  // its owner then
};

}  // namespace zo
