#include "platform/system_library.h"

#include <windows.h>

void* zo::systemFunctionAddress(const wchar_t* library, const char* name) noexcept {
  const HMODULE module = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return module ? reinterpret_cast<void*>(GetProcAddress(module, name)) : nullptr;
}
