#include "files/read_all.h"

#include <zo/files/file.h>

#include <algorithm>

#include "files/keep_reason.h"

namespace zo {

int readAll(const ZoFileName& name, std::int64_t most, AllBytes& all) {
  ZoFile file;
  if (const int code = file.open(name, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                                 ZoFile::kSequential))
    return code;
  return readAll(file, most, all);
}

int readAll(ZoFile& file, std::int64_t most, AllBytes& all) {
  constexpr const wchar_t* kOperation = L"text file";
  const std::int64_t size = file.size();
  if (size < 0 || file.seekToBegin() != 0) return ZoResult::refused;
  if (size > most) return keepReason(kOperation, ERROR_FILE_TOO_LARGE);
  AllBytes read;
  read.size = static_cast<std::size_t>(size);
  read.bytes = std::make_unique_for_overwrite<char[]>(read.size);
  constexpr std::size_t kAtOnce = std::size_t{1} << 30;
  for (std::size_t done = 0; done < read.size;) {
    const auto count = static_cast<unsigned int>(std::min(read.size - done, kAtOnce));
    const unsigned int got = file.read(read.bytes.get() + done, count);
    if (got == 0) return keepReason(kOperation, GetLastError() ? GetLastError() : ERROR_HANDLE_EOF);
    done += got;
  }
  all = std::move(read);
  return ZoResult::ok;
}

}  // namespace zo
