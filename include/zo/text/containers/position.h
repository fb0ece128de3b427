// Positions in containers: unsigned 32-bit, 0 ... entries - 1.
#pragma once

#include <zo/config.h>

namespace zo {
inline constexpr unsigned npos = 0xFFFFFFFF;  // no position
}
