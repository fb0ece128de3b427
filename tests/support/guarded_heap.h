// The guarded heap: a misplaced byte ends the program where it happens.
//
// With ZO_GUARDED_HEAP=guard in the environment, malloc and all that stands on it (operator new of
// the program and of the C++ runtime) is served from here, in every module that is loaded with the
// program and not the system's own:
// - each block ENDS at an inaccessible page, so that reading or writing one byte past it faults.
//   Its alignment is that of a type of its size: the lowest set bit of the size, at most 16;
// - a freed block stays inaccessible until some thousand others were freed after it;
// - freeing twice or inside a block, and bytes written before a block, are reported at the free;
// - new blocks are filled with 0xCD;
// - blocks to which nothing leads any more are leaks.
//
// An inaccessible page costs the system two mappings, of which a process has 65,530 under Linux.
// Past 28,000 live blocks the runtime serves the program again, and leaks are not looked for any
// more.
//
// A fault of the compiler's runtime that shows here: when a thread other than the first ends, its
// thread_local variables are freed before their destructors run. Code under test keeps thread_local
// to types without a destructor.
//
// Errors:  what is found ends the process with a code of exit_codes.h, after a report on stderr.
// Threads: any.
// Cost:    8 us to allocate and free a block, 20 us above one page.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zo::test {

// The number of the newest block: what comes later has a higher one.
std::uint64_t allocationMark();

// Tells on stderr of the blocks allocated after the mark that are live and leaked; gives their
// number. A block is leaked when no chain of pointers leads to it from the writable data of a
// module or from a block of the thread runtime (thread_local variables). The stacks do not count,
// so ask when nothing is in use. Function-local statics and filled caches are no leaks.
std::size_t reportLeaks(std::uint64_t mark);

}  // namespace zo::test
