#include "platform/clock.h"

#include <windows.h>

std::uint64_t zo::millisecondsNow() noexcept { return GetTickCount64(); }
