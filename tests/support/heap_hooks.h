// The C runtime's memory functions as served by the guarded heap.
#pragma once

namespace zo::test {

inline constexpr char kHookedRuntime[] = "msvcrt.dll";

// The replacement for a function of the runtime, null for those that are left alone.
void* heapHookFor(const char* name);

}  // namespace zo::test
