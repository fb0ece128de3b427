#include "persist/sdk_memory.h"

#include <bit>

namespace zo {
namespace {

// For a larger block the codec works much longer than the platform.
constexpr std::size_t kLargestKept = std::size_t{8} << 20;

void* allocateOnce(ISzAllocPtr, std::size_t size) noexcept {
  return size ? std::malloc(size) : nullptr;
}
void releaseOnce(ISzAllocPtr, void* block) noexcept { std::free(block); }

}  // namespace

const ISzAlloc kSdkMemory = {allocateOnce, releaseOnce};

ReusedMemory::ReusedMemory() noexcept
    : ISzAlloc{.Alloc = [](ISzAllocPtr self, std::size_t size) -> void* {
                 return of(self).allocate(size);
               },
               .Free = [](ISzAllocPtr self, void* block) { of(self).release(block); }} {}

// The SDK has its memory const.
ReusedMemory& ReusedMemory::of(ISzAllocPtr self) noexcept {
  return const_cast<ReusedMemory&>(static_cast<const ReusedMemory&>(*self));
}

// The smallest free block that is large enough; else the place of the smallest free one.
ReusedMemory::Slot* ReusedMemory::slotFor(std::size_t size) noexcept {
  Slot* best = nullptr;
  for (Slot& slot : slots_) {
    if (slot.isUsed) continue;
    const bool fits = slot.capacity >= size;
    const bool bestFits = best && best->capacity >= size;
    if (!best || (fits && !bestFits) || (fits == bestFits && slot.capacity < best->capacity)) {
      best = &slot;
    }
  }
  return best;
}

void* ReusedMemory::allocate(std::size_t size) noexcept {
  Slot* const slot = size <= kLargestKept ? slotFor(size) : nullptr;
  if (!slot || size == 0) return allocateOnce(this, size);
  if (slot->capacity < size) {
    slot->capacity = 0;
    slot->block.reset();
    slot->block.reset(std::malloc(std::bit_ceil(size)));
    if (!slot->block) return nullptr;
    slot->capacity = std::bit_ceil(size);
  }
  slot->isUsed = true;
  return slot->block.get();
}

void ReusedMemory::release(void* block) noexcept {
  for (Slot& slot : slots_) {
    if (block && slot.block.get() == block) {
      slot.isUsed = false;
      return;
    }
  }
  std::free(block);
}

}  // namespace zo
