// Output for moments in which nothing may allocate: inside the heap, in a crash.
#pragma once

#include <cstddef>

namespace zo::test {

// Writes one formatted text of at most 1,000 characters to standard error, past all buffers.
#if defined(__GNUC__)
[[gnu::format(gnu_printf, 1, 2)]]
#endif
void rawPrint(const char* format, ...);

// "module.exe+0x1234" for an address of code, the bare address where no module is. For addr2line
// add the module's image base (0x140000000 for programs).
struct PlaceText {
  explicit PlaceText(const void* address);
  char text[120];
};

// The places of a stack, one in each line; null ones are left out.
void printStack(void* const* frames, std::size_t count);

// Ends the process here and now with this exit code: no destructors, no DLL notifications.
[[noreturn]] void endProcess(int code);

}  // namespace zo::test
