// The locks that all of the library shares in a process. They exist from zoComDllAttach to
// zoComDllDetach.
#pragma once

#include <windows.h>
#include <zo/system/guard.h>

namespace zo {

struct ProcessLocks {
  CRITICAL_SECTION files;    // operations on library files
  CRITICAL_SECTION decoder;  // guards nothing: each legacy decoder has a buffer of its own
  ZoSingleWriterMultiReaderGuard guard;
  bool attached;
};
extern ProcessLocks processLocks;

}  // namespace zo
