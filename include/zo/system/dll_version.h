// The version of the DLL that is loaded, which may differ from ZO_COM_VERSION of the headers a
// client was built with.
//
// Errors:  none; nothing throws.
// Threads: any.
#pragma once

#include <zo/config.h>

// "MAJOR.MINOR.PATCH"; never null, valid while the DLL is loaded.
[[nodiscard]] ZO_COM_API const char* zoComVersion() noexcept;
