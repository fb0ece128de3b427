// Start and end of the library. The client that loads the DLL calls zoComDllAttach once, and
// zoComDllDetach before it frees the DLL:
//
//   if (zoComDllAttach() == 0) {
//     ...
//     zoComDllDetach();
//   }
//
// The functions are exported under their plain names, for GetProcAddress.
//
// Errors:  as said below. Nothing throws.
// Threads: one, while no other uses the library.
#pragma once

#include <zo/config.h>

extern "C" {

// Makes the process-wide locks and the standard services. Returns 0; or 1 when the library is
// attached already: nothing changes then, and it is not this caller's to detach.
[[nodiscard]] ZO_COM_API int zoComDllAttach();

// Frees the locks and destroys the standard services; the dispatcher, destroyed last, destroys the
// reactors that are still registered with it. Installed services are left to their owners, and stay
// installed: set their slots to null before, or find them in force after the next attach. Returns
// 0; or 1 when the library is not attached.
ZO_COM_API int zoComDllDetach();

// Destroys the standard services and leaves the locks: ZoSystem::destruction() for clients that
// check for memory that was not freed. Returns 0.
ZO_COM_API int zoFreeGlobalMemory();

}  // extern "C"
