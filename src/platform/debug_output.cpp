#include "platform/debug_output.h"

#include <windows.h>

namespace zo {

void debugOutput(const char* line) noexcept { OutputDebugStringA(line); }
void debugOutput(const wchar_t* line) noexcept { OutputDebugStringW(line); }

}  // namespace zo
