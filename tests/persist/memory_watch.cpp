#include "persist/memory_watch.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

struct Watched {
  bool active = false;
  std::ptrdiff_t live = 0;
  std::ptrdiff_t peak = 0;
};
Watched g_watch;

// Of a block that counts.
std::ptrdiff_t sizeOf(void* block) {
  return g_watch.active && block ? static_cast<std::ptrdiff_t>(_msize(block)) : 0;
}

void* added(void* block) {
  g_watch.live += sizeOf(block);
  g_watch.peak = std::max(g_watch.peak, g_watch.live);
  return block;
}

}  // namespace

#ifdef ZO_WRAPPED_HEAP
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) { return added(__real_malloc(size)); }

void* __wrap_realloc(void* block, std::size_t size) {
  const std::ptrdiff_t before = sizeOf(block);
  void* const moved = __real_realloc(block, size);
  if (moved == block) g_watch.live -= before;
  added(moved);
  if (moved && moved != block) g_watch.live -= before;
  return moved;
}

void __wrap_free(void* block) {
  g_watch.live -= sizeOf(block);
  __real_free(block);
}
}
#else
#define __real_malloc std::malloc
#define __wrap_free std::free
#endif

// The other forms lead here.
void* operator new(std::size_t size) {
  void* const block = __real_malloc(size > 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  return added(block);
}
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::size_t) noexcept { __wrap_free(block); }

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return added(__real_malloc(size > 0 ? size : 1));
}

namespace zo::test {

MemoryWatch::MemoryWatch() { g_watch = {.active = true}; }

MemoryWatch::~MemoryWatch() { g_watch.active = false; }

std::size_t MemoryWatch::peak() const { return static_cast<std::size_t>(g_watch.peak); }

}  // namespace zo::test
