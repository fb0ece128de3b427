#include "platform/output_file.h"

#include <algorithm>

namespace zo {

OutputFile::OutputFile(const wchar_t* name) noexcept
    : file_(fileApi().create(name ? name : L"", GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL)) {
  if (!file_) fail(GetLastError());
}

void OutputFile::write(const void* bytes, size_t count) noexcept {
  constexpr size_t kMost = size_t{1} << 30;  // one call takes a 32-bit count
  const auto* rest = static_cast<const char*>(bytes);
  while (count > 0 && error_ == 0) {
    const auto portion = static_cast<DWORD>(std::min(count, kMost));
    DWORD written = 0;
    if (!fileApi().write(file_.get(), rest, portion, written)) return fail(GetLastError());
    // A disk file takes all or fails; a call that takes less has met the end of the medium.
    if (written != portion) return fail(ERROR_HANDLE_DISK_FULL);
    rest += portion;
    count -= portion;
  }
}

int OutputFile::close() noexcept {
  if (!file_.close()) fail(GetLastError());
  return error();
}

// The first code stays; a call that failed without one must still not look like success.
void OutputFile::fail(DWORD code) noexcept {
  if (error_ == 0) error_ = code != 0 ? code : ERROR_WRITE_FAULT;
}

}  // namespace zo
