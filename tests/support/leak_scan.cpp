// Which blocks can still be reached: pointers are followed from the writable data of the modules
// and from the blocks of the thread runtime, through all live blocks. Any word that could be an
// address counts as one.
#include <cstring>
#include <mutex>

#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"

namespace zo::test {

void HeapEngine::reach(const void* from, std::size_t bytes) {
  const auto* word = static_cast<const char*>(from);
  for (const char* end = word + bytes; end - word >= 8; word += 8) {
    const void* pointer;
    std::memcpy(&pointer, word, sizeof pointer);
    Block* block = slots_.find(pointer);
    // One past the end counts as inside: iterators and empty blocks point there, to the
    // inaccessible page of their own slot.
    if (!block || !block->isLive || block->lastReached == leakScan_) continue;
    if (pointer < block->start || pointer > block->start + block->size) continue;
    block->lastReached = leakScan_;
    block->nextToScan = scanQueue_;
    scanQueue_ = block;
  }
}

void HeapEngine::reachFrom(const void* root, std::size_t bytes) {
  reach(root, bytes);
  while (Block* block = scanQueue_) {
    scanQueue_ = block->nextToScan;
    reach(block->start, block->size);
  }
}

void HeapEngine::scanRoots() {
  ++leakScan_;
  visitModuleData([](const void* from, std::size_t bytes) { heapEngine.reachFrom(from, bytes); });
  for (Block* block = live_.front(); block; block = block->next) {
    if (block->lastReached == leakScan_ || !isThreadRuntime(block->frames[0])) continue;
    block->lastReached = leakScan_;
    reachFrom(block->start, block->size);
  }
}

std::size_t HeapEngine::reportLeaks(std::uint64_t mark) {
  constexpr unsigned long long kListed = 8;
  const std::scoped_lock locked(lock_);
  if (full_ || !live_.back() || live_.back()->serial <= mark) return 0;
  scanRoots();
  unsigned long long blocks = 0, bytes = 0;
  for (const Block* b = live_.back(); b && b->serial > mark; b = b->previous) {
    if (b->lastReached == leakScan_) continue;
    bytes += b->size;
    if (++blocks > kListed) continue;
    rawPrint("guarded heap: leak of %llu bytes, allocated at\n",
             static_cast<unsigned long long>(b->size));
    printStack(b->frames, Block::kFrames);
  }
  if (blocks) rawPrint("guarded heap: %llu blocks leaked, %llu bytes\n", blocks, bytes);
  return blocks;
}

}  // namespace zo::test
