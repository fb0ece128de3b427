// What all of the library shares in a process from zoComDllAttach to zoComDllDetach. The lock of
// operations on library files (library/files_lock.h) is there before and after, too.
#pragma once

#include <windows.h>
#include <zo/system/guard.h>

namespace zo {

struct ProcessLocks {
  CRITICAL_SECTION decoder;  // of the legacy decoder; nobody enters it, as each has its own buffer
  ZoSingleWriterMultiReaderGuard guard;
  bool attached;
};
extern ProcessLocks processLocks;

}  // namespace zo
