// A line for whoever watches the program in a debugger.
#pragma once

namespace zo {

void debugOutput(const char* line) noexcept;
void debugOutput(const wchar_t* line) noexcept;

}  // namespace zo
