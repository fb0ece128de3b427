// Result codes of libraries, beside the common ones.
#pragma once

#include <zo/results.h>

namespace ZoResult {
inline constexpr int memberExists = 1001;        // a live member has the name
inline constexpr int memberNotFound = 1002;      // the mark that ends a scan came first
inline constexpr int libraryReadOnly = 1004;     // not opened for writing
inline constexpr int libraryWriteLocked = 1005;  // another writer kept its lock all the time
inline constexpr int libraryInUse = 1006;  // others had its file open, which cannot be replaced
}  // namespace ZoResult
