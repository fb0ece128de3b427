// A line for whoever watches the program in a debugger.
#pragma once

namespace zo {

void debugOutput(const char* line) noexcept;

}  // namespace zo
