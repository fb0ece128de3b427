// Allocations of this test program that fail when told to: its operator new is this folder's own.
#pragma once

namespace zo::test {

// From now on, the allocation of this thread that comes after so many others throws std::bad_alloc.
void failAllocationAfter(int others);
// Whether it came to that. No other will fail.
bool allocationFailed();

}  // namespace zo::test
