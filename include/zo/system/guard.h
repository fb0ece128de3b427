// Single-writer/multi-reader guard: any number of readers at once, but a writer only alone.
//
// Three kernel objects carry it. Guards initialised with the same name share them, across modules
// and across the processes of a session; a guard without a name is its owner's own. A copy of the
// structure is the same guard: delete one of them, once, when nobody uses any.
//
// Errors:  waits answer a ZoWait code; nothing throws. A null guard, or one whose handles are null,
//          gives ZoWait::failed and is otherwise left alone. A guard that zoSWMRGInitialize refused
//          must not be used, and not be deleted: its fields hold handles that are closed already.
// Threads: every function may be called from any thread, but the writer side belongs to the thread
//          that took it: it may take it again, and each wait needs its own zoSWMRGDoneWriting, from
//          that thread. The reader side belongs to nobody: any thread may give it back.
//          A writer may also read, and stays a reader after it is done writing. A reader that waits
//          to write waits for itself. Nobody is promised a turn: readers can keep a writer out.
// Death:   a thread or process that ends while it holds the mutex (as a writer, or for the moment
//          in which a reader comes or goes) frees it. The next to obtain the guard gets
//          ZoWait::abandoned, once: it holds the guard like any other and must be done with it, and
//          should distrust what the guard protects. The guard itself stays sound.
//          Where zoSWMRGDoneReading meets the freed mutex first, nobody is told: beside a reader
//          only another reader can have ended, or a writer that reads too.
//          A reader that ends inside stays counted, and keeps writers out, because a count has no
//          owner. Whoever knows of its end (by its process handle, say) calls zoSWMRGDoneReading in
//          its place; otherwise the count goes with the objects, when every guard of that name has
//          been deleted. Two moments of a reader's leaving are not made good: one that ends just
//          before it would have let writers in keeps them out until the next reader has come and
//          gone, and one that ends while it tests for others may take another's count with it.
// Cost:    kernel calls: two for a write, eight for a read by an only reader, seven with others.
#pragma once

#include <zo/config.h>

#include <cstddef>
#include <type_traits>

// What a wait answers: the platform's own numbers.
namespace ZoWait {
inline constexpr unsigned long obtained = 0;
inline constexpr unsigned long abandoned = 0x80;     // obtained, from a holder that ended in it
inline constexpr unsigned long timeOut = 258;        // not obtained in time
inline constexpr unsigned long failed = 0xFFFFFFFF;  // not obtained; the last error says why

inline constexpr unsigned long forever = 0xFFFFFFFF;  // as a time: wait without an end

// Whether the guard is held after a wait that answered `result`.
[[nodiscard]] constexpr bool holds(unsigned long result) noexcept {
  return result == obtained || result == abandoned;
}
}  // namespace ZoWait

// Kernel handles, in this order.
struct ZoSingleWriterMultiReaderGuard {
  void* mutexNoWriter = nullptr;   // held while writing, and while a reader comes or goes
  void* eventNoReaders = nullptr;  // manual reset; signalled while no reader is inside
  void* semNumReaders = nullptr;   // its count is the number of readers inside
};
static_assert(sizeof(ZoSingleWriterMultiReaderGuard) == 3 * sizeof(void*));
static_assert(std::is_standard_layout_v<ZoSingleWriterMultiReaderGuard> &&
              std::is_trivially_copyable_v<ZoSingleWriterMultiReaderGuard>);
static_assert(offsetof(ZoSingleWriterMultiReaderGuard, eventNoReaders) == sizeof(void*) &&
              offsetof(ZoSingleWriterMultiReaderGuard, semNumReaders) == 2 * sizeof(void*));

// Makes the three objects, or opens those that exist under their names. Returns 1 when all three
// are there, otherwise 0 and nothing is left open; the fields then hold what could be made and is
// closed again, and null for what could not. What `guard` held before is forgotten, not closed.
// A null name makes a guard of one's own. An empty one is a name like any other. Names differ by
// case, hold no backslash and have 80 characters at most: the objects are named
// "SWMRGMutexNoWriter", "SWMRGEventNoReaders" and "SWMRGSemNumReaders" directly followed by `name`,
// each in 100 characters with the terminator. Refused is also a name under which an object of
// another kind exists.
[[nodiscard]] ZO_COM_API int zoSWMRGInitialize(ZoSingleWriterMultiReaderGuard* guard,
                                               const wchar_t* name) noexcept;

// Closes each handle that is not null; the fields keep their values. Objects live on while another
// guard of the same name has them open. Null is allowed.
ZO_COM_API void zoSWMRGDelete(ZoSingleWriterMultiReaderGuard* guard) noexcept;

// Waits at most `timeOut` milliseconds until no other thread writes and no reader is inside.
// With 0 it only tries. New readers may come in while it waits.
[[nodiscard]] ZO_COM_API unsigned long zoSWMRGWaitToWrite(ZoSingleWriterMultiReaderGuard* guard,
                                                          unsigned long timeOut) noexcept;

// Gives one wait to write back. From a thread that does not hold the writer side: does nothing.
ZO_COM_API void zoSWMRGDoneWriting(ZoSingleWriterMultiReaderGuard* guard) noexcept;

// Waits at most `timeOut` milliseconds until no other thread writes, and counts the caller in. Both
// ZoWait::obtained and ZoWait::abandoned mean that it is inside, any other answer that it is not.
// ZoWait::failed also answers a reader for whom the count has no room (2147483647 are inside).
[[nodiscard]] ZO_COM_API unsigned long zoSWMRGWaitToRead(ZoSingleWriterMultiReaderGuard* guard,
                                                         unsigned long timeOut) noexcept;

// Counts one reader out; the last one lets writers in. Waits without an end for a reader that is
// just coming or going, and for a writer that reads too.
// A call without its wait to read is not detected, which would cost every matching call another
// kernel call: it takes a reader's count if one is inside, and otherwise blocks until one comes.
ZO_COM_API void zoSWMRGDoneReading(ZoSingleWriterMultiReaderGuard* guard) noexcept;
