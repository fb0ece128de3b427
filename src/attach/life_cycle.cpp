#include <zo/attach/life_cycle.h>
#include <zo/results.h>
#include <zo/system/registry.h>

#include <utility>

#include "system/process_locks.h"

namespace zo {
ProcessLocks processLocks{};
}

int zoComDllAttach() {
  zo::ProcessLocks& locks = zo::processLocks;
  if (std::exchange(locks.attached, true)) return ZoResult::refused;
  InitializeCriticalSection(&locks.decoder);
  // A refused guard's fields hold handles that are closed already.
  if (!zoSWMRGInitialize(&locks.guard, nullptr)) locks.guard = {};
  return ZoSystem::construction();
}

int zoComDllDetach() {
  zo::ProcessLocks& locks = zo::processLocks;
  if (!std::exchange(locks.attached, false)) return ZoResult::refused;
  DeleteCriticalSection(&locks.decoder);
  zoSWMRGDelete(&locks.guard);
  locks.guard = {};
  return ZoSystem::destruction();
}

int zoFreeGlobalMemory() { return ZoSystem::destruction(); }
