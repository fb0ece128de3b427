#include "graph/failing_new.h"

#include <cstdlib>
#include <new>

int requestsUntilOutOfMemory = 0;

void* operator new(std::size_t size) {
  if (requestsUntilOutOfMemory == 1) throw std::bad_alloc();
  if (requestsUntilOutOfMemory > 1) --requestsUntilOutOfMemory;
  void* block = std::malloc(size != 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
