// Memory for the LZMA SDK: the C heap.
#pragma once

#include <7zTypes.h>

namespace zo {

extern const ISzAlloc kSdkMemory;

}  // namespace zo
