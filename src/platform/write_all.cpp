#include "platform/write_all.h"

#include <algorithm>

#include "platform/file_api.h"

namespace zo {

std::size_t writeAll(HANDLE file, const void* bytes, std::size_t count) noexcept {
  constexpr std::size_t kMost = std::size_t{1} << 30;  // a call's size has 32 bits
  const auto* const begin = static_cast<const char*>(bytes);
  std::size_t written = 0;
  while (written < count) {
    DWORD done = 0;
    const auto part = static_cast<DWORD>(std::min(count - written, kMost));
    if (!fileApi().write(file, begin + written, part, done)) break;
    if (done == 0) {
      SetLastError(ERROR_DISK_FULL);
      break;
    }
    written += done;
  }
  return written;
}

}  // namespace zo
