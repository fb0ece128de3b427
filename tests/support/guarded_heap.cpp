#include "support/guarded_heap.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <mutex>

#include "support/exit_codes.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"

namespace zo::test {

constinit HeapEngine heapEngine;

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAddressSpace = std::size_t{1} << 34;
constexpr std::size_t kLargest = kAddressSpace / 4;
constexpr unsigned kSmall = SlotSpace::kLeastShift;  // one page and the inaccessible one behind it
constexpr std::size_t kFillLimit = 65536;            // contents are filled up to here
constexpr std::size_t kMostOpen = 28000;             // the system has two mappings for each
constexpr std::size_t kLeastRest = 256;  // small slots that rest even when mappings are short
constexpr char kFenceByte = static_cast<char>(0xFB);
constexpr char kNewByte = static_cast<char>(0xCD);

constexpr std::size_t roundUp(std::size_t n, std::size_t power) {
  return (n + power - 1) & ~(power - 1);
}

// What a type of this size can ask for at most: so no gap is left before the page behind the block.
constexpr std::size_t naturalAlignment(std::size_t size) {
  return size == 0 ? 16 : std::min<std::size_t>(size & (~size + 1), 16);
}

constexpr std::size_t pagesFor(std::size_t bytes) { return std::max(roundUp(bytes, kPage), kPage); }

char* endOf(const Block& block) { return block.slot + (std::size_t{1} << block.shift) - kPage; }

// The accessible bytes of a slot, in front of its inaccessible page.
struct Pages {
  explicit Pages(const Block& block)
      : bytes(pagesFor(static_cast<std::size_t>(endOf(block) - block.start))),
        from(endOf(block) - bytes) {}
  std::size_t bytes;
  char* from;
};

[[noreturn]] void heapDamage(const char* what, const void* address) {
  rawPrint("guarded heap: %s at %p\n", what, address);
  printBlockAround(address);
  void* frames[Block::kFrames] = {};
  RtlCaptureStackBackTrace(2, Block::kFrames, frames, nullptr);
  rawPrint("  found at\n");
  printStack(frames, Block::kFrames);
  endProcess(kExitHeapDamage);
}

void requireFence(const char* from, const char* to, const char* what) {
  const char* other = std::find_if(from, to, [](char c) { return c != kFenceByte; });
  if (other != to) heapDamage(what, other);
}

}  // namespace

bool HeapEngine::start() { return slots_.reserve(kAddressSpace); }

Block* HeapEngine::takeSlot(unsigned shift) {
  if (openSlots_ < kMostOpen) return slots_.take(shift);
  return shift == kSmall ? slots_.takeRested(shift, kLeastRest) : nullptr;
}

// Small slots keep their page while they rest: changing its protection costs half of committing it
// anew.
bool HeapEngine::open(Block* block) {
  const Pages pages(*block);
  if (block->isCommitted) {
    DWORD before;
    return VirtualProtect(pages.from, pages.bytes, PAGE_READWRITE, &before);
  }
  if (!VirtualAlloc(pages.from, pages.bytes, MEM_COMMIT, PAGE_READWRITE)) return false;
  block->isCommitted = block->shift == kSmall;
  ++openSlots_;
  return true;
}

void HeapEngine::close(Block* block) {
  const Pages pages(*block);
  DWORD before;
  if (block->isCommitted) {
    if (VirtualProtect(pages.from, pages.bytes, PAGE_NOACCESS, &before)) return;
  } else if (VirtualFree(pages.from, pages.bytes, MEM_DECOMMIT)) {
    --openSlots_;
    return;
  }
  heapDamage("the system does not let go of a page", block->start);
}

void* HeapEngine::allocate(std::size_t size, std::size_t alignment,
                           void* const (&frames)[Block::kFrames]) {
  if (size > kLargest || alignment > kPage) return nullptr;
  const std::scoped_lock locked(lock_);
  const std::size_t bytes = roundUp(size, std::max(alignment, naturalAlignment(size)));
  Block* block = takeSlot(static_cast<unsigned>(std::bit_width(pagesFor(bytes) + kPage - 1)));
  if (block) {
    block->start = endOf(*block) - bytes;
    block->size = size;
  }
  if (!block || !open(block)) {
    full_ = true;
    return nullptr;
  }
  const Pages pages(*block);
  std::memset(pages.from, kFenceByte, pages.bytes - bytes);
  std::memset(block->start, kNewByte, std::min(size, kFillLimit));
  std::memset(block->start + size, kFenceByte, bytes - size);
  block->serial = ++serial_;
  block->lastReached = 0;
  block->isLive = true;
  std::memcpy(block->frames, frames, sizeof block->frames);
  live_.append(block);
  return block->start;
}

Block* HeapEngine::requireLive(void* start) {
  Block* block = slots_.find(start);
  if (!block) return nullptr;
  if (block->start != start) heapDamage("free inside or beside a block", start);
  if (!block->isLive) heapDamage("double free", start);
  return block;
}

bool HeapEngine::release(void* start) {
  const std::scoped_lock locked(lock_);
  Block* block = requireLive(start);
  if (!block) return false;
  requireFence(Pages(*block).from, block->start, "bytes before a block were written");
  requireFence(block->start + block->size, endOf(*block), "bytes behind a block were written");
  live_.remove(block);
  block->isLive = false;
  close(block);
  slots_.rest(block);
  return true;
}

const Block* HeapEngine::liveBlock(void* start) {
  const std::scoped_lock locked(lock_);
  return requireLive(start);
}

void printBlockAround(const void* address) {
  const Block* const block = heapEngine.slotAround(address);
  if (!block) return;
  const long long offset = static_cast<const char*>(address) - block->start;
  const auto size = static_cast<long long>(block->size);
  if (offset < 0) rawPrint("  %lld bytes before", -offset);
  if (offset >= 0 && offset < size) rawPrint("  at byte %lld of", offset);
  if (offset >= size) rawPrint("  %lld bytes past the end of", offset - size);
  rawPrint(" the %s block of %lld bytes (number %llu), allocated at\n",
           block->isLive ? "live" : "freed", size, static_cast<unsigned long long>(block->serial));
  printStack(block->frames, Block::kFrames);
}

std::uint64_t allocationMark() { return heapEngine.newestSerial(); }
std::size_t reportLeaks(std::uint64_t mark) { return heapEngine.reportLeaks(mark); }

}  // namespace zo::test
