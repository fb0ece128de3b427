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
  bytes_ = std::min(bytes, kMostChunks << kChunkShift);
  base_ = static_cast<char*>(VirtualAlloc(nullptr, bytes_, MEM_RESERVE, PAGE_NOACCESS));
  table_ = static_cast<Block*>(VirtualAlloc(nullptr, (bytes_ >> kLeastShift) * sizeof(Block),
                                            MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  return base_ && table_;
}

bool SlotSpace::grow(unsigned shift) {
  const std::size_t slot = std::size_t{1} << shift;
  const std::size_t span = std::max(slot, std::size_t{1} << kChunkShift);
  const std::size_t at = (dealt_ + slot - 1) & ~(slot - 1);
  if (at > bytes_ || span > bytes_ - at) return false;
  dealt_ = at + span;
  std::fill_n(chunkShifts_ + (at >> kChunkShift), span >> kChunkShift,
              static_cast<std::uint8_t>(shift));
  classes_[shift].fresh = base_ + at;
  classes_[shift].end = base_ + at + span;
  return true;
}

Block* SlotSpace::takeRested(unsigned shift, std::size_t least) {
  BlockList& resting = classes_[shift].resting;
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
  SlotClass& slots = classes_[shift];
  if (slots.fresh == slots.end && !grow(shift)) return takeRested(shift, 0);
  Block* block = table_ + ((slots.fresh - base_) >> kLeastShift);
  block->slot = slots.fresh;
  block->shift = static_cast<std::uint8_t>(shift);
  slots.fresh += std::size_t{1} << shift;
  return block;
}

Block* SlotSpace::find(const void* address) const {
  const auto* at = static_cast<const char*>(address);
  if (at < base_ || at >= base_ + bytes_) return nullptr;
  const auto offset = static_cast<std::size_t>(at - base_);
  const unsigned shift = chunkShifts_[offset >> kChunkShift];
  if (!shift) return nullptr;
  Block* block = table_ + (offset >> shift << (shift - kLeastShift));
  return block->slot ? block : nullptr;
}

}  // namespace zo::test
