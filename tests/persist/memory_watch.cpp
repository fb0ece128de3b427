#include "persist/memory_watch.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <unordered_map>

namespace {

struct Watched {
  bool active = false;
  bool failed = false;
  std::size_t failAt = 0;
  std::size_t requests = 0;
  std::size_t live = 0;
  std::size_t peak = 0;
  std::unordered_map<void*, std::size_t> sizes;
};
Watched g_watch;

bool refuses() {
  if (!g_watch.active || g_watch.failAt == 0 || ++g_watch.requests < g_watch.failAt) return false;
  g_watch.failed = true;
  return true;
}

void add(void* block, std::size_t size) {
  if (!g_watch.active || !block) return;
  g_watch.active = false;  // for the table's own memory
  g_watch.sizes[block] = size;
  g_watch.active = true;
  g_watch.live += size;
  g_watch.peak = std::max(g_watch.peak, g_watch.live);
}

[[maybe_unused]] void remove(void* block) {
  if (!g_watch.active) return;
  const auto found = g_watch.sizes.find(block);
  if (found == g_watch.sizes.end()) return;
  g_watch.live -= found->second;
  g_watch.active = false;
  g_watch.sizes.erase(found);
  g_watch.active = true;
}

}  // namespace

#ifdef ZO_WRAPPED_HEAP
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) {
  if (refuses()) return nullptr;
  void* const block = __real_malloc(size);
  add(block, size);
  return block;
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (refuses()) return nullptr;
  void* const moved = __real_realloc(block, size);
  if (!moved) return nullptr;
  if (moved == block) remove(block);
  add(moved, size);
  if (moved != block) remove(block);
  return moved;
}

void __wrap_free(void* block) {
  remove(block);
  __real_free(block);
}
}
#else
#define __real_malloc std::malloc
#define __wrap_free std::free
#endif

// What throws is counted and never refused.
void* operator new(std::size_t size) {
  void* const block = __real_malloc(size > 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  add(block, size);
  return block;
}
void* operator new[](std::size_t size) { return ::operator new(size); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block, std::size_t) noexcept { __wrap_free(block); }

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (refuses()) return nullptr;
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return ::operator new(size, tag);
}

namespace zo::test {

MemoryWatch::MemoryWatch(std::size_t failAt) {
  g_watch = {};
  g_watch.failAt = failAt;
  g_watch.active = true;
}

MemoryWatch::~MemoryWatch() {
  g_watch.active = false;
  g_watch.sizes = {};
}

std::size_t MemoryWatch::peak() const { return g_watch.peak; }
bool MemoryWatch::failed() const { return g_watch.failed; }

}  // namespace zo::test
