// The inside of the guarded heap; its users include guarded_heap.h.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "support/slot_space.h"

namespace zo::test {

// Where an allocation came from; filled by the hook that the program called.
struct Stack {
  void* frames[Block::kFrames];
};

class HeapEngine {
 public:
  bool start(std::size_t guardedLimit);
  bool active() const { return active_; }
  bool guarding() const { return guarding_; }
  void startGuarding() { guarding_ = true; }

  // Null when the address space of the heap is used up, and for alignments above one page.
  void* allocate(std::size_t size, std::size_t alignment, const Stack& stack);
  // False when the address is not of this heap.
  bool release(void* start);
  // The live block that starts here; null when the address is not of this heap.
  const Block* liveBlock(void* start);
  // The slot around an address, in whatever state. Takes no lock: a crash calls it.
  const Block* slotAround(const void* address) const;

  std::size_t liveCount() const { return live_.count(); }
  std::uint64_t newestSerial() const { return serial_; }
  void checkAllFences();
  void printSummary() const;

  struct LeakCount {
    std::size_t blocks;
    std::size_t bytes;
    std::size_t listed;
  };
  // Copies the first leaked blocks to `list`.
  LeakCount findLeaks(std::uint64_t mark, Block* list, std::size_t capacity);

 private:
  Block* placeGuarded(std::size_t size, std::size_t alignment);
  Block* placeFenced(std::size_t size, std::size_t alignment);
  Block* takeGuardedSlot(unsigned shift);
  bool open(Block* block, char* from, std::size_t bytes);
  void close(Block* block);
  void checkFences(const Block* block) const;
  void checkRested(const Block* block) const;
  Block* requireLive(void* start);

  // leak_scan.cpp
  void scanRoots();
  void reach(const void* from, std::size_t bytes);
  void drainScanQueue();

  bool active_ = false;
  bool guarding_ = false;
  SRWLOCK lock_ = SRWLOCK_INIT;
  SlotSpace guarded_;
  SlotSpace fenced_;
  BlockList live_;
  std::uint64_t serial_ = 0;
  std::uint64_t leakScan_ = 0;
  Block* scanQueue_ = nullptr;
  std::size_t guardedLimit_ = 0;
  std::size_t openSlots_ =
      0;  // slots that split the mappings: small ones ever opened, large ones in use
  std::size_t guardedCount_ = 0;
  std::size_t fencedCount_ = 0;
  std::size_t mostLive_ = 0;
};

// The one heap of the process. It is constant-initialised, thus usable before any constructor has
// run.
extern HeapEngine heapEngine;

// "3 bytes past the end of the freed block of 10 bytes (number 7)" and where it was allocated, on
// standard error. Does nothing for addresses that are not of the guarded heap.
void printBlockAround(const void* address);

}  // namespace zo::test
