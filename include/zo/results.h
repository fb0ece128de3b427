// Result codes that operations of all families share. An operation returns one of these as int; a
// family adds codes of its own beside its class, and each function's contract says which ones it
// gives.
#pragma once

#include <zo/config.h>

namespace ZoResult {
inline constexpr int ok = 0;
inline constexpr int refused = 1;      // not found, failed, or a service guard not obtained in time
inline constexpr int outOfMemory = 2;  // nothing was lost
inline constexpr int invalid = 3;      // a null reactor; a URL that cannot be served
inline constexpr int timeOut = 5;      // from the guard's convenience wrappers
inline constexpr int cancelled = 1020;  // the user, or a watcher, did not want to go on
}  // namespace ZoResult
