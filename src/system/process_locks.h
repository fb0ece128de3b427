// The locks that all of the library shares in a process. They exist from zoComDllAttach to
// zoComDllDetach.
#pragma once

#include <windows.h>
#include <zo/system/guard.h>

namespace zo {

struct ProcessLocks {
  CRITICAL_SECTION files;    // operations on library files
  CRITICAL_SECTION decoder;  // of the legacy decoder; nobody enters it, as each has its own buffer
  ZoSingleWriterMultiReaderGuard guard;
  bool attached;
};
extern ProcessLocks processLocks;

}  // namespace zo
