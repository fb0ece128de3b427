#include "platform/whole_file.h"

#include <utility>

#include "platform/open_file.h"
#include "platform/system_path.h"

namespace zo {

bool readWholeFile(const wchar_t* name, std::size_t most, std::string& bytes) {
  const OpenFile file(fileApi().create(SystemPath(name), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN));
  std::int64_t size = 0;
  if (!file || !fileApi().size(file.get(), size)) return false;
  if (size < 0 || static_cast<std::uint64_t>(size) > most) return false;
  std::string read(static_cast<std::size_t>(size), '\0');
  std::size_t at = 0;
  while (at < read.size()) {
    DWORD done = 0;
    const std::size_t wanted = read.size() - at;
    if (!fileApi().read(file.get(), &read[at], static_cast<DWORD>(wanted), done)) return false;
    if (done == 0) break;  // it has become shorter
    at += done;
  }
  read.resize(at);
  bytes = std::move(read);
  return true;
}

}  // namespace zo
