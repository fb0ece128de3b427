#include "support/watched_modules.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>

#include "support/heap_hooks.h"

namespace zo::test {

namespace {

struct {
  std::array<char*, 64> bases;
  std::size_t count;
} watched;

// Kept as ranges, because asking the loader from inside the heap could lock for ever.
struct ModuleRange {
  const wchar_t* name;
  const char* base;
  const char* end;
} threadRuntime[] = {{L"libwinpthread-1.dll", nullptr, nullptr},
                     {L"libgcc_s_seh-1.dll", nullptr, nullptr}};

template <typename T>
T* at(char* module, std::size_t offset) {
  return reinterpret_cast<T*>(module + offset);
}

const IMAGE_NT_HEADERS* headersOf(char* module) {
  return at<IMAGE_NT_HEADERS>(module,
                              static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
}

bool isSystemPath(std::wstring_view path) {
  wchar_t folder[MAX_PATH];
  const UINT length = GetWindowsDirectoryW(folder, MAX_PATH);
  return path.size() > length && path[length] == L'\\' && !_wcsnicmp(path.data(), folder, length);
}

bool isNamed(std::wstring_view path, std::wstring_view name) {
  return path.size() > name.size() && path[path.size() - name.size() - 1] == L'\\' &&
         !_wcsnicmp(path.data() + path.size() - name.size(), name.data(), name.size());
}

void redirect(IMAGE_THUNK_DATA* slot, void* hook) {
  DWORD before;
  if (!VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before)) return;
  slot->u1.Function = reinterpret_cast<std::uintptr_t>(hook);
  VirtualProtect(slot, sizeof *slot, before, &before);
}

void redirectImports(char* module) {
  const auto& directory =
      headersOf(module)->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (!directory.VirtualAddress) return;
  for (auto* import = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); import->Name;
       ++import) {
    if (_stricmp(at<char>(module, import->Name), kHookedRuntime)) continue;
    auto* name = at<IMAGE_THUNK_DATA>(module, import->OriginalFirstThunk);
    auto* slot = at<IMAGE_THUNK_DATA>(module, import->FirstThunk);
    for (; name->u1.AddressOfData; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* entry = at<IMAGE_IMPORT_BY_NAME>(module, name->u1.AddressOfData);
      if (void* hook = heapHookFor(reinterpret_cast<const char*>(entry->Name)))
        redirect(slot, hook);
    }
  }
}

}  // namespace

void watchModules() {
  HMODULE modules[256];
  DWORD bytes = 0;
  EnumProcessModules(GetCurrentProcess(), modules, sizeof modules, &bytes);
  const std::size_t count = std::min<std::size_t>(bytes / sizeof(HMODULE), std::size(modules));
  for (std::size_t i = 0; i < count && watched.count < watched.bases.size(); ++i) {
    wchar_t text[MAX_PATH];
    const std::wstring_view path(text, GetModuleFileNameW(modules[i], text, MAX_PATH));
    if (isSystemPath(path)) continue;
    char* const module = reinterpret_cast<char*>(modules[i]);
    watched.bases[watched.count++] = module;
    for (ModuleRange& range : threadRuntime) {
      if (!isNamed(path, range.name)) continue;
      range.base = module;
      range.end = module + headersOf(module)->OptionalHeader.SizeOfImage;
    }
    redirectImports(module);
  }
}

void visitModuleData(DataVisitor visit) {
  for (std::size_t i = 0; i < watched.count; ++i) {
    char* module = watched.bases[i];
    const IMAGE_NT_HEADERS* headers = headersOf(module);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
    for (unsigned k = 0; k < headers->FileHeader.NumberOfSections; ++k, ++section) {
      if (section->Characteristics & IMAGE_SCN_MEM_WRITE) {
        visit(module + section->VirtualAddress, section->Misc.VirtualSize);
      }
    }
  }
}

bool isThreadRuntime(const void* address) {
  const auto* code = static_cast<const char*>(address);
  return std::any_of(std::begin(threadRuntime), std::end(threadRuntime),
                     [code](const ModuleRange& m) { return code >= m.base && code < m.end; });
}

}  // namespace zo::test
