#include "support/heap_hooks.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "support/guarded_heap.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"
#include "support/watched_modules.h"

namespace zo::test {

namespace {

// The runtime's own functions, for blocks that it allocated itself or before the heap was started.
struct {
  void(__cdecl* free)(void*);
  std::size_t(__cdecl* size)(void*);
  void*(__cdecl* alignedMalloc)(std::size_t, std::size_t);
  void(__cdecl* alignedFree)(void*);
} runtime;

// Before main only the immediate caller is noted, which is enough to know the thread runtime by.
#define ZO_CALLER(stack)                                                \
  Stack stack{};                                                        \
  if (heapEngine.guarding()) {                                          \
    RtlCaptureStackBackTrace(1, Block::kFrames, stack.frames, nullptr); \
  } else {                                                              \
    stack.frames[0] = __builtin_return_address(0);                      \
  }

void release(void* block) {
  if (block && !heapEngine.release(block)) runtime.free(block);
}

void* __cdecl hookMalloc(std::size_t size) {
  ZO_CALLER(stack)
  return heapEngine.allocate(size, 1, stack);
}

void* __cdecl hookCalloc(std::size_t count, std::size_t size) {
  ZO_CALLER(stack)
  if (size && count > static_cast<std::size_t>(-1) / size) return nullptr;
  void* block = heapEngine.allocate(count * size, 1, stack);
  if (block) std::memset(block, 0, count * size);
  return block;
}

void __cdecl hookFree(void* block) { release(block); }

std::size_t __cdecl hookSize(void* start) {
  const Block* block = heapEngine.liveBlock(start);
  return block ? block->size : runtime.size(start);
}

// Always moves the block, so that pointers kept to the old place are found out.
void* __cdecl hookRealloc(void* old, std::size_t size) {
  ZO_CALLER(stack)
  if (old && !size) {
    release(old);
    return nullptr;
  }
  void* block = heapEngine.allocate(size, 1, stack);
  if (block && old) {
    std::memcpy(block, old, std::min(size, hookSize(old)));
    release(old);
  }
  return block;
}

void* __cdecl hookAlignedMalloc(std::size_t size, std::size_t alignment) {
  ZO_CALLER(stack)
  void* block = heapEngine.allocate(size, alignment, stack);
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

std::size_t numberFromEnvironment(const wchar_t* name, std::size_t otherwise) {
  wchar_t text[32];
  const DWORD length = GetEnvironmentVariableW(name, text, 32);
  return length && length < 32 ? std::wcstoul(text, nullptr, 10) : otherwise;
}

bool asked() {
  wchar_t mode[16];
  const DWORD length = GetEnvironmentVariableW(L"ZO_GUARDED_HEAP", mode, 16);
  return length && length < 16 && !std::wcscmp(mode, L"guard");
}

void startHeap() {
  constexpr std::size_t kMostGuarded = 28000;
  if (!asked()) return;
  load(runtime.free, "free");
  load(runtime.size, "_msize");
  load(runtime.alignedMalloc, "_aligned_malloc");
  load(runtime.alignedFree, "_aligned_free");
  if (!heapEngine.start(numberFromEnvironment(L"ZO_GUARDED_LIMIT", kMostGuarded))) {
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
  struct Hook {
    const char* name;
    void* function;
  };
  static const Hook hooks[] = {
      {"malloc", reinterpret_cast<void*>(hookMalloc)},
      {"calloc", reinterpret_cast<void*>(hookCalloc)},
      {"realloc", reinterpret_cast<void*>(hookRealloc)},
      {"free", reinterpret_cast<void*>(hookFree)},
      {"_msize", reinterpret_cast<void*>(hookSize)},
      {"_aligned_malloc", reinterpret_cast<void*>(hookAlignedMalloc)},
      {"_aligned_free", reinterpret_cast<void*>(hookAlignedFree)},
  };
  for (const Hook& hook : hooks) {
    if (!std::strcmp(hook.name, name)) return hook.function;
  }
  return nullptr;
}

}  // namespace zo::test
