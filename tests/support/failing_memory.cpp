#include "support/failing_memory.h"

#include <windows.h>

#include <atomic>

namespace zo::test {

namespace {

// Read by every thread's requests; only those of one thread count.
std::atomic<DWORD> g_thread{0};
unsigned g_left = 0;
bool g_forGood = false;
bool g_failed = false;

}  // namespace

bool isMemoryRefused() noexcept {
  if (g_thread.load(std::memory_order_relaxed) != GetCurrentThreadId()) return false;
  if (g_failed && g_forGood) return true;
  if (g_left == 0 || --g_left > 0) return false;
  return g_failed = true;
}

FailingMemory::FailingMemory(unsigned n, Then then) {
  g_left = n;
  g_forGood = then == kForGood;
  g_failed = false;
  g_thread = GetCurrentThreadId();
}

FailingMemory::~FailingMemory() { g_thread = 0; }

bool FailingMemory::failed() const { return g_failed; }

// An exception that finds no memory for itself takes it from the C++ runtime's reserve, and the
// lock of that reserve is made with memory when it is first taken: here, before memory is gone for
// good.
bool FailingMemory::isPossible() {
  const FailingMemory failing(1, kOnce);
  try {
    throw std::bad_alloc();
  } catch (const std::bad_alloc&) {
    const bool refused = failing.failed();
#ifdef ZO_GUARDED
    EXPECT_TRUE(refused) << "start this program on the guarded heap";
#endif
    return refused;
  }
}

}  // namespace zo::test
