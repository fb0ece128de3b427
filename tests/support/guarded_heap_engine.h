// The inside of the guarded heap; its users include guarded_heap.h.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "support/slot_space.h"

namespace zo::test {

class HeapEngine {
 public:
  bool start(std::size_t limit);
  bool active() const { return active_; }

  // Null when the limit is reached, and for alignments above one page.
  void* allocate(std::size_t size, std::size_t alignment, void* const (&frames)[Block::kFrames]);
  // False when the address is not of this heap.
  bool release(void* start);
  // The live block that starts here; null when the address is not of this heap.
  const Block* liveBlock(void* start);
  // The slot around an address, in whatever state. Takes no lock: a crash calls it.
  const Block* slotAround(const void* address) const { return slots_.find(address); }

  std::size_t liveCount() const { return live_.count(); }
  std::uint64_t newestSerial() const { return serial_; }

  struct LeakCount {
    std::size_t blocks, bytes, listed;
  };
  // Copies the first leaked blocks to `list`.
  LeakCount findLeaks(std::uint64_t mark, Block* list, std::size_t capacity);

 private:
  Block* takeSlot(unsigned shift);
  bool open(Block* block);
  void close(Block* block);
  Block* requireLive(void* start);

  // leak_scan.cpp
  void scanRoots();
  void reach(const void* from, std::size_t bytes);
  void drainScanQueue();

  bool active_ = false;
  bool full_ = false;  // some blocks came from the runtime
  SRWLOCK lock_ = SRWLOCK_INIT;
  SlotSpace slots_;
  BlockList live_;
  std::uint64_t serial_ = 0;
  std::uint64_t leakScan_ = 0;
  Block* scanQueue_ = nullptr;
  std::size_t limit_ = 0;
  // Slots that split the mappings: small ones ever opened, large ones in use.
  std::size_t openSlots_ = 0;
};

// The one heap of the process. It is constant-initialised, thus usable before any constructor has
// run.
extern HeapEngine heapEngine;

class Locked {
 public:
  explicit Locked(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~Locked() { ReleaseSRWLockExclusive(&lock_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  SRWLOCK& lock_;
};

// "3 bytes past the end of the freed block of 10 bytes (number 7)" and where it was allocated, on
// standard error. Does nothing for addresses that are not of the guarded heap.
void printBlockAround(const void* address);

}  // namespace zo::test
