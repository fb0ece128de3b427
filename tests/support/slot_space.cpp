#include "support/slot_space.h"

#include <windows.h>

#include <algorithm>

namespace zo::test {

void BlockList::append(Block* block) {
  block->previous = back_;
  block->next = nullptr;
  (back_ ? back_->next : front_) = block;
  back_ = block;
  ++count_;
}

void BlockList::remove(Block* block) {
  (block->previous ? block->previous->next : front_) = block->next;
  (block->next ? block->next->previous : back_) = block->previous;
  --count_;
}

bool SlotSpace::reserve(std::size_t bytes) {
  constexpr DWORD kZeroed = MEM_RESERVE | MEM_COMMIT;
  units_ = bytes >> kLeastShift;
  base_ = static_cast<char*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS));
  blocks_ =
      static_cast<Block*>(VirtualAlloc(nullptr, units_ * sizeof(Block), kZeroed, PAGE_READWRITE));
  firstUnits_ = static_cast<std::uint32_t*>(
      VirtualAlloc(nullptr, units_ * sizeof(std::uint32_t), kZeroed, PAGE_READWRITE));
  return base_ && blocks_ && firstUnits_;
}

Block* SlotSpace::takeRested(unsigned shift, std::size_t least) {
  BlockList& resting = resting_[shift];
  if (resting.count() <= least) return nullptr;
  Block* block = resting.front();
  resting.remove(block);
  return block;
}

Block* SlotSpace::take(unsigned shift) {
  // Address space that rests in each size before it is used again: 4,096 of the smallest slots.
  constexpr std::size_t kRestingBytes = std::size_t{1} << 25;
  if (shift > kMostShift) return nullptr;
  const std::size_t least = std::max<std::size_t>(kRestingBytes >> shift, 1);
  if (Block* rested = takeRested(shift, least)) return rested;
  const std::size_t units = std::size_t{1} << (shift - kLeastShift);
  if (units > units_ - dealt_) return takeRested(shift, 0);
  Block* block = blocks_ + dealt_;
  block->slot = base_ + (dealt_ << kLeastShift);
  block->shift = static_cast<std::uint8_t>(shift);
  std::fill_n(firstUnits_ + dealt_, units, static_cast<std::uint32_t>(dealt_));
  dealt_ += units;
  return block;
}

Block* SlotSpace::find(const void* address) const {
  const std::size_t unit =
      (reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(base_)) >>
      kLeastShift;
  return unit < dealt_ ? blocks_ + firstUnits_[unit] : nullptr;
}

}  // namespace zo::test
