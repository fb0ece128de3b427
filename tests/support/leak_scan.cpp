// Which blocks can still be reached: pointers are followed from the writable data of the modules
// and from the blocks of the thread runtime, through all live blocks. Any word that could be an
// address counts as one.
#include <cstring>
#include <string>

#include "support/guarded_heap.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"
#include "support/watched_modules.h"

namespace zo::test {

void HeapEngine::reach(const void* from, std::size_t bytes) {
  const auto* word = static_cast<const char*>(from);
  for (const char* end = word + bytes; end - word >= 8; word += 8) {
    const void* pointer;
    std::memcpy(&pointer, word, sizeof pointer);
    Block* block = slots_.find(pointer);
    // One past the end counts as inside: iterators and empty blocks point there, to the
    // inaccessible page of their own slot.
    if (!block || block->state != Block::kLive || block->lastReached == leakScan_) continue;
    if (pointer < block->start || pointer > block->start + block->size) continue;
    block->lastReached = leakScan_;
    block->nextToScan = scanQueue_;
    scanQueue_ = block;
  }
}

void HeapEngine::drainScanQueue() {
  while (Block* block = scanQueue_) {
    scanQueue_ = block->nextToScan;
    reach(block->start, block->size);
  }
}

void HeapEngine::scanRoots() {
  visitModuleData([](const void* from, std::size_t bytes) {
    heapEngine.reach(from, bytes);
    heapEngine.drainScanQueue();
  });
  for (Block* block = live_.front(); block; block = block->next) {
    if (block->lastReached == leakScan_ || !isThreadRuntime(block->frames[0])) continue;
    block->lastReached = leakScan_;
    reach(block->start, block->size);
    drainScanQueue();
  }
}

HeapEngine::LeakCount HeapEngine::findLeaks(std::uint64_t mark, Block* list, std::size_t capacity) {
  LeakCount leaks{};
  const Locked locked(lock_);
  if (full_ || !live_.back() || live_.back()->serial <= mark) return leaks;
  ++leakScan_;
  scanRoots();
  for (const Block* b = live_.back(); b && b->serial > mark; b = b->previous) {
    if (b->lastReached == leakScan_) continue;
    ++leaks.blocks;
    leaks.bytes += b->size;
    if (leaks.listed < capacity) list[leaks.listed++] = *b;
  }
  return leaks;
}

std::string leaksSince(std::uint64_t mark) {
  Block list[8];
  const HeapEngine::LeakCount leaks = heapEngine.findLeaks(mark, list, std::size(list));
  if (!leaks.blocks) return {};
  std::string text =
      std::to_string(leaks.blocks) + " blocks leaked, " + std::to_string(leaks.bytes) + " bytes\n";
  for (std::size_t i = 0; i < leaks.listed; ++i) {
    text += "  " + std::to_string(list[i].size) + " bytes (number " +
            std::to_string(list[i].serial) + ") allocated at\n";
    for (const void* frame : list[i].frames) {
      if (frame) text.append("    ").append(PlaceText(frame).text).append("\n");
    }
  }
  return text;
}

}  // namespace zo::test
