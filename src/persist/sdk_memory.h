// Memory for the LZMA SDK.
#pragma once

#include <7zTypes.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>

namespace zo {

// The C heap.
extern const ISzAlloc kSdkMemory;

// The C heap, with blocks kept for the next codec: fresh pages for each of many small members would
// cost a quarter of the time that compressing them takes.
//
// Threads: one at a time.
class ReusedMemory : private ISzAlloc {
 public:
  ReusedMemory() noexcept;
  ReusedMemory(const ReusedMemory&) = delete;
  ReusedMemory& operator=(const ReusedMemory&) = delete;

  [[nodiscard]] ISzAllocPtr functions() const noexcept { return this; }

 private:
  struct Free {
    void operator()(void* block) const noexcept { std::free(block); }
  };
  struct Slot {
    std::unique_ptr<void, Free> block;
    std::size_t capacity = 0;
    bool isUsed = false;
  };

  [[nodiscard]] static ReusedMemory& of(ISzAllocPtr self) noexcept;
  [[nodiscard]] void* allocate(std::size_t size) noexcept;
  void release(void* block) noexcept;
  [[nodiscard]] Slot* slotFor(std::size_t size) noexcept;

  std::array<Slot, 8> slots_;  // an encoder has six blocks, or five and what it reads and writes
};

// A block of such memory; null when there was none.
class SdkBlock {
 public:
  SdkBlock(ISzAllocPtr memory, std::size_t size) noexcept
      : memory_(memory), data_(static_cast<unsigned char*>(memory->Alloc(memory, size))) {}
  SdkBlock(const SdkBlock&) = delete;
  SdkBlock& operator=(const SdkBlock&) = delete;
  ~SdkBlock() { memory_->Free(memory_, data_); }

  [[nodiscard]] unsigned char* data() const noexcept { return data_; }

 private:
  ISzAllocPtr memory_;
  unsigned char* data_;
};

}  // namespace zo
