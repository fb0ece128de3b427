#include "system/failing_new.h"

#include <windows.h>

#include <cstdlib>
#include <new>

namespace {

DWORD failingThread = 0;  // none
int left = 0;             // allocations before the one that fails; below zero it has

void* allocate(std::size_t size) {
  if (failingThread && failingThread == GetCurrentThreadId() && left >= 0 && left-- == 0)
    return nullptr;
  return std::malloc(size ? size : 1);
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* const block = allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace zo::test {

FailingNew::FailingNew(int before) {
  left = before;
  failingThread = GetCurrentThreadId();
}
FailingNew::~FailingNew() { failingThread = 0; }
bool FailingNew::happened() const { return left < 0; }

}  // namespace zo::test
