#include "text/containers/chain_index.h"

#include <bit>
#include <new>

namespace zo {

template <class T>
ChainIndex::Block<T> ChainIndex::makeBlock(std::size_t n) noexcept {
  // NOLINTNEXTLINE(bugprone-sizeof-expression): some elements are pointers
  Block<T> block(static_cast<T*>(allocateBlock(n * sizeof(T), alignof(T))));
  if (block) std::uninitialized_value_construct_n(block.get(), n);
  return block;
}

std::unique_ptr<ChainIndex> ChainIndex::make(unsigned buckets, unsigned entries) noexcept {
  std::unique_ptr<ChainIndex> index(new (std::nothrow) ChainIndex);
  if (!index) return nullptr;
  index->last_ = makeBlock<ZoVHashNode*>(buckets);
  if (!index->last_ || !index->makeSlots(std::bit_ceil(std::size_t{entries} * 2 + 2)))
    return nullptr;
  return index;
}

bool ChainIndex::makeSlots(std::size_t n) noexcept {
  Block<Slot> slots = makeBlock<Slot>(n);
  if (!slots) return false;
  const std::size_t old = slots_ ? mask_ + 1 : 0;
  slots_.swap(slots);
  mask_ = n - 1;
  shift_ = std::countl_zero(mask_);
  for (std::size_t i = 0; i < old; ++i) {
    if (slots.get()[i].node) put(slots.get()[i]);
  }
  return true;
}

std::size_t ChainIndex::homeOf(unsigned hash, unsigned fingerprint) const noexcept {
  const auto both = static_cast<unsigned long long>(hash) << 31 | fingerprint;
  return static_cast<std::size_t>(both * 0x9E3779B97F4A7C15u >>
                                  shift_);  // the bits all have part in
}

void ChainIndex::put(const Slot& slot) noexcept {
  std::size_t i = homeOf(slot.node->hash, slot.node->fingerprint);
  while (slotAt(i).node) ++i;
  slotAt(i) = slot;
}

std::size_t ChainIndex::placeOf(const ZoVHashNode* node) const noexcept {
  std::size_t i = homeOf(node->hash, node->fingerprint);
  while (slotAt(i).node != node) ++i;
  return i & mask_;
}

ZoVHashNode* ChainIndex::find(unsigned hash, unsigned fingerprint,
                              std::size_t& from) const noexcept {
  const std::size_t home = homeOf(hash, fingerprint);
  while (ZoVHashNode* const node = slotAt(home + from).node) {
    ++from;
    if (node->hash == hash && node->fingerprint == fingerprint) return node;
  }
  return nullptr;
}

bool ChainIndex::append(unsigned bucket, ZoVHashNode* node) noexcept {
  if ((count_ + 1) * 2 > mask_ && !makeSlots((mask_ + 1) * 2)) return false;
  put({node, last(bucket)});
  last_.get()[bucket] = node;
  ++count_;
  return true;
}

ZoVHashNode* ChainIndex::remove(unsigned bucket, ZoVHashNode* node) noexcept {
  std::size_t hole = placeOf(node);
  ZoVHashNode* const before = slotAt(hole).before;
  if (node->next) {
    slotAt(placeOf(node->next)).before = before;
  } else {
    last_.get()[bucket] = before;
  }
  // Whatever may stand in the hole moves there, so that no search ends too early.
  for (std::size_t i = hole + 1; const ZoVHashNode* const other = slotAt(i).node; ++i) {
    const std::size_t home = homeOf(other->hash, other->fingerprint);
    if (((i - home) & mask_) < ((i - hole) & mask_)) continue;
    slotAt(hole) = slotAt(i);
    hole = i;
  }
  slotAt(hole) = {};
  --count_;
  return before;
}

}  // namespace zo
