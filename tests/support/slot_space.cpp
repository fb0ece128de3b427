#include "support/slot_space.h"

#include <windows.h>

#include <algorithm>

namespace zo::test {

namespace {

// Address space that rests in each size before it is used again: 4,096 of the smallest guarded
// slots.
constexpr std::size_t kRestingBytes = std::size_t{1} << 25;

std::size_t leastResting(unsigned shift) {
  return std::max<std::size_t>(kRestingBytes >> shift, 1);
}

}  // namespace

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

bool SlotSpace::reserve(std::size_t bytes, unsigned leastShift, Records records) {
  bytes = std::min(bytes, kMostChunks << kChunkShift);
  base_ = static_cast<char*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS));
  if (!base_) return false;
  bytes_ = bytes;
  leastShift_ = leastShift;
  if (records == Records::kInSlot) return true;
  table_ = static_cast<Block*>(VirtualAlloc(nullptr, (bytes >> leastShift) * sizeof(Block),
                                            MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  return table_ != nullptr;
}

Block* SlotSpace::recordOf(char* slot) const {
  return table_ ? table_ + (static_cast<std::size_t>(slot - base_) >> leastShift_)
                : reinterpret_cast<Block*>(slot);
}

bool SlotSpace::grow(unsigned shift) {
  const std::size_t slot = std::size_t{1} << shift;
  const std::size_t span = std::max(slot, std::size_t{1} << kChunkShift);
  const std::size_t at = (dealt_ + slot - 1) & ~(slot - 1);
  if (at > bytes_ || span > bytes_ - at) return false;
  if (!table_ && !VirtualAlloc(base_ + at, span, MEM_COMMIT, PAGE_READWRITE)) return false;
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
  if (shift > kMostShift) return nullptr;
  if (Block* rested = takeRested(shift, leastResting(shift))) return rested;
  SlotClass& slots = classes_[shift];
  if (slots.fresh == slots.end && !grow(shift)) return takeRested(shift, 0);
  Block* block = recordOf(slots.fresh);
  *block = Block{};
  block->slot = slots.fresh;
  block->shift = static_cast<std::uint8_t>(shift);
  slots.fresh += std::size_t{1} << shift;
  return block;
}

Block* SlotSpace::find(const void* address) const {
  if (!contains(address)) return nullptr;
  const auto offset = static_cast<std::size_t>(static_cast<const char*>(address) - base_);
  const unsigned shift = chunkShifts_[offset >> kChunkShift];
  if (!shift) return nullptr;
  char* slot = base_ + (offset >> shift << shift);
  const SlotClass& slots = classes_[shift];
  if (slot >= slots.fresh && slot < slots.end) return nullptr;  // dealt out, not yet taken
  return recordOf(slot);
}

}  // namespace zo::test
