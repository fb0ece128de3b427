#include "system/failing_new.h"

#include <windows.h>

#include <cstdlib>
#include <new>

namespace {

DWORD failingThread = 0;  // none
int left = 0;             // allocations before the one that fails; below zero it has

void* allocate(std::size_t size) {
  const bool counts = failingThread == GetCurrentThreadId() && left >= 0;
  return counts && left-- == 0 ? nullptr : std::malloc(size ? size : 1);
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* const block = allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

void zo::test::failAllocationAfter(int others) {
  left = others;
  failingThread = GetCurrentThreadId();
}

bool zo::test::allocationFailed() {
  failingThread = 0;
  return left < 0;
}
