// Puts the guarded heap in place of the C runtime's memory functions in the modules of the program.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iterator>

#include "support/failing_memory.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"

namespace zo::test {

namespace {

constexpr char kRuntime[] = "msvcrt.dll";

// The runtime's own functions, for blocks that it allocates itself, and past the heap's limit.
struct {
  void*(__cdecl* malloc)(std::size_t);
  void(__cdecl* free)(void*);
  std::size_t(__cdecl* size)(void*);
  void*(__cdecl* alignedMalloc)(std::size_t, std::size_t);
  void(__cdecl* alignedFree)(void*);
} runtime;

// Notes who called the hook that calls this.
#if defined(__GNUC__)
[[gnu::noinline]]
#endif
void* allocate(std::size_t size, std::size_t alignment) {
  void* frames[Block::kFrames] = {};
  RtlCaptureStackBackTrace(2, Block::kFrames, frames, nullptr);
  return heapEngine.allocate(size, alignment, frames);
}

void* __cdecl hookMalloc(std::size_t size) {
  if (isMemoryRefused()) return nullptr;
  void* block = allocate(size, 1);
  return block ? block : runtime.malloc(size);
}

void __cdecl hookFree(void* block) {
  if (block && !heapEngine.release(block)) runtime.free(block);
}

void* __cdecl hookCalloc(std::size_t count, std::size_t size) {
  if (size && count > static_cast<std::size_t>(-1) / size) return nullptr;
  if (isMemoryRefused()) return nullptr;
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
  if (isMemoryRefused()) return nullptr;
  void* block = allocate(size, 1);
  if (!block) block = runtime.malloc(size);
  if (block && old) {
    std::memcpy(block, old, std::min(size, hookSize(old)));
    hookFree(old);
  }
  return block;
}

void* __cdecl hookAlignedMalloc(std::size_t size, std::size_t alignment) {
  if (isMemoryRefused()) return nullptr;
  void* block = allocate(size, alignment);
  return block ? block : runtime.alignedMalloc(size, alignment);
}

void __cdecl hookAlignedFree(void* block) {
  if (block && !heapEngine.release(block)) runtime.alignedFree(block);
}

template <typename Function>
void load(Function& function, const char* name) {
  function = reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(kRuntime), name)));
}

// The modules that are loaded with the program, but for the system's own. Kept, because asking the
// loader from inside the heap could lock for ever.
struct Module {
  char* base;
  bool isThreadRuntime;
} modules[64];
std::size_t moduleCount = 0;

template <typename T>
T* at(char* module, std::size_t offset) {
  return reinterpret_cast<T*>(module + offset);
}

const IMAGE_NT_HEADERS* headersOf(char* module) {
  return at<IMAGE_NT_HEADERS>(module,
                              static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
}

void redirect(IMAGE_THUNK_DATA* slot, const char* name) {
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
    DWORD before;
    if (std::strcmp(hook.name, name)) continue;
    if (!VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before)) continue;
    slot->u1.Function = reinterpret_cast<std::uintptr_t>(hook.function);
    VirtualProtect(slot, sizeof *slot, before, &before);
  }
}

void redirectImports(char* module) {
  const auto& directory =
      headersOf(module)->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (!directory.VirtualAddress) return;
  for (auto* import = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); import->Name;
       ++import) {
    if (_stricmp(at<char>(module, import->Name), kRuntime)) continue;
    auto* name = at<IMAGE_THUNK_DATA>(module, import->OriginalFirstThunk);
    auto* slot = at<IMAGE_THUNK_DATA>(module, import->FirstThunk);
    for (; name->u1.AddressOfData; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      redirect(slot, at<IMAGE_IMPORT_BY_NAME>(module, name->u1.AddressOfData)->Name);
    }
  }
}

void watchModules() {
  HMODULE loaded[256];
  DWORD bytes = 0;
  EnumProcessModules(GetCurrentProcess(), loaded, sizeof loaded, &bytes);
  wchar_t system[MAX_PATH], path[MAX_PATH];
  const UINT length = GetWindowsDirectoryW(system, MAX_PATH);
  const std::size_t count = std::min<std::size_t>(bytes / sizeof(HMODULE), std::size(loaded));
  for (std::size_t i = 0; i < count && moduleCount < std::size(modules); ++i) {
    GetModuleFileNameW(loaded[i], path, MAX_PATH);
    if (!_wcsnicmp(path, system, length)) continue;
    const wchar_t* const name = std::wcsrchr(path, L'\\') + 1;
    char* const base = reinterpret_cast<char*>(loaded[i]);
    modules[moduleCount++] = {
        base, !_wcsicmp(name, L"libwinpthread-1.dll") || !_wcsicmp(name, L"libgcc_s_seh-1.dll")};
    redirectImports(base);
  }
}

void startHeap() {
  wchar_t text[32] = L"";
  GetEnvironmentVariableW(L"ZO_GUARDED_HEAP", text, 32);
  if (std::wcscmp(text, L"guard")) return;
  load(runtime.malloc, "malloc");
  load(runtime.free, "free");
  load(runtime.size, "_msize");
  load(runtime.alignedMalloc, "_aligned_malloc");
  load(runtime.alignedFree, "_aligned_free");
  if (!heapEngine.start()) {
    rawPrint("guarded heap: no address space\n");
    std::abort();
  }
  watchModules();
}

// Ahead of the constructors of all other objects of the program. (Visual C++ needs the guarded heap
// of its own runtime instead: this one is for GCC.)
struct Starter {
  Starter() { startHeap(); }
};
[[gnu::init_priority(101)]] const Starter starter;

}  // namespace

void visitModuleData(void (*visit)(const void* from, std::size_t bytes)) {
  for (std::size_t i = 0; i < moduleCount; ++i) {
    char* const base = modules[i].base;
    const IMAGE_NT_HEADERS* headers = headersOf(base);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
    for (unsigned k = 0; k < headers->FileHeader.NumberOfSections; ++k, ++section) {
      if (section->Characteristics & IMAGE_SCN_MEM_WRITE)
        visit(base + section->VirtualAddress, section->Misc.VirtualSize);
    }
  }
}

bool isThreadRuntime(const void* address) {
  const auto* code = static_cast<const char*>(address);
  return std::any_of(modules, modules + moduleCount, [code](const Module& m) {
    return m.isThreadRuntime && code >= m.base &&
           code < m.base + headersOf(m.base)->OptionalHeader.SizeOfImage;
  });
}

}  // namespace zo::test
