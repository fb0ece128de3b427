// The inside of the guarded heap; its users include guarded_heap.h.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "support/slot_space.h"

namespace zo::test {

// A lock that allocates nothing.
class HeapLock {
 public:
  void lock() { AcquireSRWLockExclusive(&lock_); }
  void unlock() { ReleaseSRWLockExclusive(&lock_); }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};

class HeapEngine {
 public:
  bool start();

  // Null past the limit, and for alignments above one page.
  void* allocate(std::size_t size, std::size_t alignment, void* const (&frames)[Block::kFrames]);
  // False when the address is not of this heap.
  bool release(void* start);
  // The live block that starts here; null when the address is not of this heap.
  const Block* liveBlock(void* start);
  // The slot around an address, in whatever state. Takes no lock: a crash calls it.
  const Block* slotAround(const void* address) const { return slots_.find(address); }

  std::uint64_t newestSerial() const { return serial_; }
  // See guarded_heap.h.
  std::size_t reportLeaks(std::uint64_t mark);

 private:
  Block* takeSlot(unsigned shift);
  bool open(Block* block);
  void close(Block* block);
  Block* requireLive(void* start);

  // leak_scan.cpp
  void scanRoots();
  void reachFrom(const void* root, std::size_t bytes);
  void reach(const void* from, std::size_t bytes);

  bool full_ = false;  // some blocks came from the runtime
  HeapLock lock_;
  SlotSpace slots_;
  BlockList live_;
  std::uint64_t serial_ = 0;
  std::uint64_t leakScan_ = 0;
  Block* scanQueue_ = nullptr;
  // Slots that split the mappings: small ones ever opened, large ones in use.
  std::size_t openSlots_ = 0;
};

// The one heap of the process. It is constant-initialised, thus usable before any constructor has
// run.
extern HeapEngine heapEngine;

// "3 bytes past the end of the freed block of 10 bytes (number 7)" and where it was allocated, on
// standard error. Does nothing for addresses that are not of the guarded heap.
void printBlockAround(const void* address);

// The writable data of the modules whose memory calls go to the heap, range by range.
void visitModuleData(void (*visit)(const void* from, std::size_t bytes));

// Whether the code address belongs to the thread runtime, which keeps some blocks for as long as
// the process lives.
bool isThreadRuntime(const void* address);

}  // namespace zo::test
