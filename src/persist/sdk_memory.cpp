#include "persist/sdk_memory.h"

#include <cstdlib>

namespace zo {

namespace {

void* allocate(ISzAllocPtr, size_t size) noexcept { return size ? std::malloc(size) : nullptr; }
void release(ISzAllocPtr, void* block) noexcept { std::free(block); }

}  // namespace

const ISzAlloc kSdkMemory = {allocate, release};

}  // namespace zo
