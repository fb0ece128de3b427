#include "support/raw_print.h"

#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace zo::test {

void rawPrint(const char* format, ...) {
  char text[1000];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  if (length <= 0) return;
  DWORD written;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), text,
            std::min(static_cast<DWORD>(length), static_cast<DWORD>(sizeof text - 1)), &written,
            nullptr);
}

PlaceText::PlaceText(const void* address) {
  HMODULE module = nullptr;
  char path[MAX_PATH] = "";
  constexpr DWORD kByAddress =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExA(kByAddress, static_cast<const char*>(address), &module) ||
      !GetModuleFileNameA(module, path, sizeof path)) {
    std::snprintf(text, sizeof text, "%p", address);
    return;
  }
  const char* slash = std::strrchr(path, '\\');
  const auto offset = static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address) -
                                                      reinterpret_cast<std::uintptr_t>(module));
  std::snprintf(text, sizeof text, "%.90s+0x%llx", slash ? slash + 1 : path, offset);
}

void printStack(void* const* frames, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (frames[i]) rawPrint("    %s\n", PlaceText(frames[i]).text);
  }
}

void endProcess(int code) {
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
  for (;;) Sleep(INFINITE);  // not reached
}

}  // namespace zo::test
