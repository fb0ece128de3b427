// Result codes of the geometry operations: 0 success, 1 invalid argument, 3 degenerate input.
#pragma once

#include <zo/results.h>

namespace ZoResult {
inline constexpr int invalidArgument = 1;  // an axis letter that names no axis
inline constexpr int degenerate = 3;  // zero length, parallel, collinear, singular: no such thing
}  // namespace ZoResult
