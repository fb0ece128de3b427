#include "platform/constant_memory.h"

#include <windows.h>

namespace zo {

bool isConstantMemory(const void* memory) noexcept {
  MEMORY_BASIC_INFORMATION region;
  if (VirtualQuery(memory, &region, sizeof region) == 0 || region.Type != MEM_IMAGE) return false;
  return region.Protect == PAGE_READONLY || region.Protect == PAGE_EXECUTE_READ;
}

}  // namespace zo
