#include "support/open_handles.h"

#include <windows.h>

#include <cstdint>

namespace zo::test {

// Every value that a handle may have is asked for: GetProcessHandleCount is always 0 under some
// versions of Wine, and the system's list of all handles (SystemHandleInformation) crashes its
// server, and with it whatever else runs there, when a process starts or ends at that moment.
unsigned long openHandles() {
  constexpr std::uintptr_t kStep = 4, kGap = 256;  // a gap so long is the end of the table
  unsigned long count = 0;
  std::uintptr_t last = 0;
  for (std::uintptr_t value = kStep; value <= last + kGap * kStep; value += kStep) {
    DWORD flags;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number that looks like a pointer
    if (!GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) continue;
    ++count;
    last = value;
  }
  return count;
}

}  // namespace zo::test
