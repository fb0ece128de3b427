// The address space behind the guarded heap: a reserved range cut into slots of 2^shift bytes.
//
// Each unit of the least size knows the first one of its slot, so that the slot around any address
// is found by a table look-up. A slot given back rests at the end of its size's queue and is taken
// again only when enough others rest behind it.
//
// Threads: none of its own; the heap's lock covers it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zo::test {

// What the heap knows of one slot and the block in it.
struct Block {
  static constexpr unsigned kFrames = 6;

  char* slot;
  char* start;  // what the program got
  std::size_t size;
  std::uint64_t serial;       // counts allocations from 1
  std::uint64_t lastReached;  // the leak scan that last found a way to it
  Block* previous;            // in the list of live blocks or in a queue of resting ones
  Block* next;
  Block* nextToScan;
  std::uint8_t shift;  // the slot has 2^shift bytes
  bool isLive;
  bool isCommitted;       // keeps its page while it rests
  void* frames[kFrames];  // who allocated it, innermost first; shorter stacks end with null
};

// Blocks in the order in which they came; links inside the blocks.
class BlockList {
 public:
  Block* front() const { return front_; }
  Block* back() const { return back_; }
  std::size_t count() const { return count_; }
  void append(Block* block);
  void remove(Block* block);

 private:
  Block* front_ = nullptr;
  Block* back_ = nullptr;
  std::size_t count_ = 0;
};

class SlotSpace {
 public:
  static constexpr unsigned kLeastShift = 13;

  bool reserve(std::size_t bytes);
  // A slot of this size, new or rested; null when the range is used up.
  Block* take(unsigned shift);
  // The slot that has rested longest if more than `least` rest; null otherwise.
  Block* takeRested(unsigned shift, std::size_t least);
  void rest(Block* block) { resting_[block->shift].append(block); }
  // The slot around the address, null when none was ever taken there.
  Block* find(const void* address) const;

 private:
  static constexpr unsigned kMostShift = 33;

  char* base_ = nullptr;
  std::size_t units_ = 0, dealt_ = 0;
  Block* blocks_ = nullptr;  // by the first unit
  std::uint32_t* firstUnits_ = nullptr;
  BlockList resting_[kMostShift + 1];
};

}  // namespace zo::test
