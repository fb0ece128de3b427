#include "support/heap_hooks.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"
#include "support/watched_modules.h"

namespace zo::test {

namespace {

// The runtime's own functions, for blocks that it allocates itself, and past the heap's limit.
struct {
  void*(__cdecl* malloc)(std::size_t);
  void(__cdecl* free)(void*);
  std::size_t(__cdecl* size)(void*);
  void*(__cdecl* alignedMalloc)(std::size_t, std::size_t);
  void(__cdecl* alignedFree)(void*);
} runtime;

// Notes who called the hook that calls this.
[[gnu::noinline]] void* allocate(std::size_t size, std::size_t alignment) {
  void* frames[Block::kFrames] = {};
  RtlCaptureStackBackTrace(2, Block::kFrames, frames, nullptr);
  return heapEngine.allocate(size, alignment, frames);
}

void* __cdecl hookMalloc(std::size_t size) {
  void* block = allocate(size, 1);
  return block ? block : runtime.malloc(size);
}

void __cdecl hookFree(void* block) {
  if (block && !heapEngine.release(block)) runtime.free(block);
}

void* __cdecl hookCalloc(std::size_t count, std::size_t size) {
  if (size && count > static_cast<std::size_t>(-1) / size) return nullptr;
  void* block = allocate(count * size, 1);
  if (!block) block = runtime.malloc(count * size);
  if (block) std::memset(block, 0, count * size);
  return block;
}

std::size_t __cdecl hookSize(void* start) {
  const Block* block = heapEngine.liveBlock(start);
  return block ? block->size : runtime.size(start);
}

// Always moves the block, so that pointers kept to the old place are found out.
void* __cdecl hookRealloc(void* old, std::size_t size) {
  if (old && !size) {
    hookFree(old);
    return nullptr;
  }
  void* block = allocate(size, 1);
  if (!block) block = runtime.malloc(size);
  if (block && old) {
    std::memcpy(block, old, std::min(size, hookSize(old)));
    hookFree(old);
  }
  return block;
}

void* __cdecl hookAlignedMalloc(std::size_t size, std::size_t alignment) {
  void* block = allocate(size, alignment);
  return block ? block : runtime.alignedMalloc(size, alignment);
}

void __cdecl hookAlignedFree(void* block) {
  if (block && !heapEngine.release(block)) runtime.alignedFree(block);
}

template <typename Function>
void load(Function& function, const char* name) {
  function = reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(kHookedRuntime), name)));
}

void startHeap() {
  wchar_t text[32] = L"";
  GetEnvironmentVariableW(L"ZO_GUARDED_HEAP", text, 32);
  if (std::wcscmp(text, L"guard")) return;
  std::size_t limit = 28000;
  if (GetEnvironmentVariableW(L"ZO_GUARDED_LIMIT", text, 32))
    limit = std::wcstoul(text, nullptr, 10);
  load(runtime.malloc, "malloc");
  load(runtime.free, "free");
  load(runtime.size, "_msize");
  load(runtime.alignedMalloc, "_aligned_malloc");
  load(runtime.alignedFree, "_aligned_free");
  if (!heapEngine.start(limit)) {
    rawPrint("guarded heap: no address space\n");
    std::abort();
  }
  watchModules();
}

// Ahead of the constructors of all other objects of the program.
struct Starter {
  Starter() { startHeap(); }
};
[[gnu::init_priority(101)]] const Starter starter;

}  // namespace

void* heapHookFor(const char* name) {
  static const struct {
    const char* name;
    void* function;
  } hooks[] = {
      {"malloc", reinterpret_cast<void*>(hookMalloc)},
      {"calloc", reinterpret_cast<void*>(hookCalloc)},
      {"realloc", reinterpret_cast<void*>(hookRealloc)},
      {"free", reinterpret_cast<void*>(hookFree)},
      {"_msize", reinterpret_cast<void*>(hookSize)},
      {"_aligned_malloc", reinterpret_cast<void*>(hookAlignedMalloc)},
      {"_aligned_free", reinterpret_cast<void*>(hookAlignedFree)},
  };
  for (const auto& hook : hooks) {
    if (!std::strcmp(hook.name, name)) return hook.function;
  }
  return nullptr;
}

}  // namespace zo::test
