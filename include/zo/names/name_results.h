// Result codes of file names, beside the common ones. They only report: the name keeps the parts
// that it was split into, unless it could not be split at all.
#pragma once

#include <zo/results.h>

namespace ZoResult {
inline constexpr int nameTooLong = 6;      // drive, directory, name and extension: 261 or more
inline constexpr int nameInvalid = 7;      // a forbidden character, or no name of any form
inline constexpr int nameEndsInBlank = 8;  // the platform would drop the blank
inline constexpr int nameEndsInDot = 9;    // likewise; "." and ".." are no such names
}  // namespace ZoResult
