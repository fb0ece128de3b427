#include "support/guarded_heap.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "support/exit_codes.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"

namespace zo::test {

constinit HeapEngine heapEngine;

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAddressSpace = std::size_t{1} << 34;
constexpr std::size_t kLargest = kAddressSpace / 4;
constexpr unsigned kSmallGuarded = 13;     // one page and the inaccessible one behind it
constexpr std::size_t kFillLimit = 65536;  // contents are filled up to here; fences always
constexpr std::size_t kFence = 16;         // at least so many bytes on each side of a fenced block
constexpr std::size_t kLongestTail = 256;  // checked behind a fenced block
constexpr std::size_t kLeastRest = 256;    // small slots that rest even when mappings are short
constexpr char kFenceByte = static_cast<char>(0xFB);
constexpr char kNewByte = static_cast<char>(0xCD);
constexpr char kFreedByte = static_cast<char>(0xDD);

class Locked {
 public:
  explicit Locked(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~Locked() { ReleaseSRWLockExclusive(&lock_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  SRWLOCK& lock_;
};

constexpr std::size_t roundUp(std::size_t n, std::size_t power) {
  return (n + power - 1) & ~(power - 1);
}
constexpr unsigned shiftFor(std::size_t bytes) {
  return static_cast<unsigned>(std::bit_width(bytes - 1));
}

// What a type of this size can ask for at most; so the block leaves no gap before the page behind
// it.
constexpr std::size_t naturalAlignment(std::size_t size) {
  return size == 0 ? 16 : std::min<std::size_t>(size & (~size + 1), 16);
}

// The first byte that is not `value`, or `to`.
const char* firstOther(const char* from, const char* to, char value) {
  if (from == to) return to;
  // Equal to itself shifted by one: a whole range compared at the speed of memcmp.
  if (*from == value && !std::memcmp(from, from + 1, static_cast<std::size_t>(to - from) - 1)) {
    return to;
  }
  return std::find_if(from, to, [value](char c) { return c != value; });
}

// The accessible bytes around a block that are known: [front, start) and [start + size, back).
struct Fences {
  explicit Fences(const Block& block) {
    const std::size_t slotBytes = std::size_t{1} << block.shift;
    char* end = block.start + block.size;
    if (block.guarded) {
      back = block.slot + slotBytes - kPage;
      front = std::min(block.start, back - 1);
      front = block.slot + (static_cast<std::size_t>(front - block.slot) & ~(kPage - 1));
    } else {
      front = block.slot + sizeof(Block);
      back = std::min(block.slot + slotBytes, end + kLongestTail);
    }
  }
  char* front;
  char* back;
};

void printStack(void* const (&frames)[Block::kFrames]) {
  for (void* frame : frames) {
    if (frame) rawPrint("    %s\n", PlaceText(frame).text);
  }
}

// Where in or beside its block the address lies, and who allocated it.
void printPlace(const Block& block, const void* address) {
  const char* state = block.state == Block::kLive ? "live" : "freed";
  const auto offset = static_cast<const char*>(address) - block.start;
  const auto size = static_cast<std::ptrdiff_t>(block.size);
  const auto number = static_cast<unsigned long long>(block.serial);
  if (offset < 0) {
    rawPrint("  %lld bytes before", static_cast<long long>(-offset));
  } else if (offset < size) {
    rawPrint("  at byte %lld of", static_cast<long long>(offset));
  } else {
    rawPrint("  %lld bytes past the end of", static_cast<long long>(offset - size));
  }
  rawPrint(" the %s block of %lld bytes (number %llu), allocated at\n", state,
           static_cast<long long>(size), number);
  printStack(block.frames);
}

[[noreturn]] void heapDamage(const char* what, const void* address, const Block* block) {
  rawPrint("guarded heap: %s at %p\n", what, address);
  if (block) printPlace(*block, address);
  Stack here{};
  RtlCaptureStackBackTrace(2, Block::kFrames, here.frames, nullptr);
  rawPrint("  found at\n");
  printStack(here.frames);
  endProcess(kExitHeapDamage);
}

}  // namespace

bool HeapEngine::start(std::size_t guardedLimit) {
  guardedLimit_ = guardedLimit;
  active_ = guarded_.reserve(kAddressSpace, kSmallGuarded, SlotSpace::Records::kInTable) &&
            fenced_.reserve(kAddressSpace, SlotSpace::kLeastShift, SlotSpace::Records::kInSlot);
  return active_;
}

Block* HeapEngine::takeGuardedSlot(unsigned shift) {
  if (openSlots_ < guardedLimit_) return guarded_.take(shift);
  return shift == kSmallGuarded ? guarded_.takeRested(shift, kLeastRest) : nullptr;
}

// Small slots keep their page while they rest: changing its protection costs half of committing it
// anew.
bool HeapEngine::open(Block* block, char* from, std::size_t bytes) {
  if (block->committed) {
    DWORD before;
    return VirtualProtect(from, bytes, PAGE_READWRITE, &before);
  }
  if (!VirtualAlloc(from, bytes, MEM_COMMIT, PAGE_READWRITE)) return false;
  block->committed = block->shift == kSmallGuarded;
  ++openSlots_;
  return true;
}

void HeapEngine::close(Block* block) {
  const Fences fences(*block);
  const auto bytes = static_cast<std::size_t>(fences.back - fences.front);
  DWORD before;
  if (block->committed) {
    if (VirtualProtect(fences.front, bytes, PAGE_NOACCESS, &before)) return;
  } else if (VirtualFree(fences.front, bytes, MEM_DECOMMIT)) {
    --openSlots_;
    return;
  }
  heapDamage("the system does not let go of a page", fences.front, block);
}

Block* HeapEngine::placeGuarded(std::size_t size, std::size_t alignment) {
  const std::size_t bytes = roundUp(size, alignment);
  const std::size_t pages = std::max(roundUp(bytes, kPage), kPage);
  Block* block = takeGuardedSlot(shiftFor(pages + kPage));
  if (!block) return nullptr;
  char* end = block->slot + (std::size_t{1} << block->shift) - kPage;
  if (!open(block, end - pages, pages)) {
    block->state = Block::kFreed;
    block->start = end - pages;
    block->size = 0;
    guarded_.rest(block);
    return nullptr;
  }
  block->guarded = true;
  block->start = end - bytes;
  std::memset(end - pages, kFenceByte, pages - bytes);
  std::memset(block->start + size, kFenceByte, bytes - size);
  ++guardedCount_;
  return block;
}

Block* HeapEngine::placeFenced(std::size_t size, std::size_t alignment) {
  const std::size_t offset = roundUp(sizeof(Block) + kFence, alignment);
  Block* block = fenced_.take(std::max(shiftFor(offset + size + kFence), SlotSpace::kLeastShift));
  if (!block) return nullptr;
  if (block->state == Block::kFreed) checkRested(block);
  block->start = block->slot + offset;
  block->size = size;
  const Fences fences(*block);
  std::memset(fences.front, kFenceByte, static_cast<std::size_t>(block->start - fences.front));
  std::memset(block->start + size, kFenceByte,
              static_cast<std::size_t>(fences.back - block->start) - size);
  ++fencedCount_;
  return block;
}

void* HeapEngine::allocate(std::size_t size, std::size_t alignment, const Stack& stack) {
  if (size > kLargest || alignment > kPage) return nullptr;
  const Locked locked(lock_);
  Block* block =
      guarding_ ? placeGuarded(size, std::max(alignment, naturalAlignment(size))) : nullptr;
  if (!block) block = placeFenced(size, std::max<std::size_t>(alignment, 16));
  if (!block) return nullptr;
  block->size = size;
  block->serial = ++serial_;
  block->lastReached = 0;
  block->state = Block::kLive;
  std::memcpy(block->frames, stack.frames, sizeof block->frames);
  std::memset(block->start, kNewByte, std::min(size, kFillLimit));
  live_.append(block);
  mostLive_ = std::max(mostLive_, live_.count());
  return block->start;
}

Block* HeapEngine::requireLive(void* start) {
  for (SlotSpace* space : {&guarded_, &fenced_}) {
    if (!space->contains(start)) continue;
    Block* block = space->find(start);
    if (!block || block->state == Block::kNew) heapDamage("free of no block", start, nullptr);
    if (block->start != start) heapDamage("free inside or beside a block", start, block);
    if (block->state != Block::kLive) heapDamage("double free", start, block);
    return block;
  }
  return nullptr;
}

bool HeapEngine::release(void* start) {
  const Locked locked(lock_);
  Block* block = requireLive(start);
  if (!block) return false;
  checkFences(block);
  live_.remove(block);
  block->state = Block::kFreed;
  if (block->guarded) {
    close(block);
    guarded_.rest(block);
  } else {
    std::memset(block->start, kFreedByte, std::min(block->size, kFillLimit));
    fenced_.rest(block);
  }
  return true;
}

const Block* HeapEngine::liveBlock(void* start) {
  const Locked locked(lock_);
  return requireLive(start);
}

const Block* HeapEngine::slotAround(const void* address) const {
  if (!active_) return nullptr;
  const Block* block = guarded_.find(address);
  if (!block) block = fenced_.find(address);
  return block && block->serial ? block : nullptr;
}

void HeapEngine::checkFences(const Block* block) const {
  const Fences fences(*block);
  const char* before = firstOther(fences.front, block->start, kFenceByte);
  if (before != block->start) heapDamage("bytes before a block were written", before, block);
  const char* behind = firstOther(block->start + block->size, fences.back, kFenceByte);
  if (behind != fences.back) heapDamage("bytes behind a block were written", behind, block);
}

void HeapEngine::checkRested(const Block* block) const {
  const char* end = block->start + std::min(block->size, kFillLimit);
  const char* written = firstOther(block->start, end, kFreedByte);
  if (written != end) heapDamage("a freed block was written", written, block);
}

void HeapEngine::checkAllFences() {
  const Locked locked(lock_);
  for (const Block* block = live_.front(); block; block = block->next) checkFences(block);
  fenced_.forEachResting([this](const Block* block) { checkRested(block); });
}

void HeapEngine::printSummary() const {
  rawPrint("guarded heap: %llu blocks guarded, %llu only fenced, at most %llu live\n",
           static_cast<unsigned long long>(guardedCount_),
           static_cast<unsigned long long>(fencedCount_),
           static_cast<unsigned long long>(mostLive_));
}

void printBlockAround(const void* address) {
  if (const Block* block = heapEngine.slotAround(address)) printPlace(*block, address);
}

bool guardedHeapActive() { return heapEngine.active(); }
std::size_t liveBlocks() { return heapEngine.liveCount(); }
void startGuarding() { heapEngine.startGuarding(); }
std::uint64_t allocationMark() { return heapEngine.newestSerial(); }

void checkHeapAtEnd() {
  if (!heapEngine.active()) return;
  heapEngine.checkAllFences();
  heapEngine.printSummary();
}

}  // namespace zo::test
