#include "library/write_lock.h"

#include <zo/library/library_results.h>

#include "library/library_file.h"
#include "names/name_compare.h"

namespace zo {

std::wstring writeLockName(const std::wstring& fullPath) {
  static_assert(sizeof(std::size_t) == 8);
  std::wstring name = L"ZoLibrary-";
  const std::size_t hash = hashName(fullPath);
  for (int shift = 60; shift >= 0; shift -= 4) name += L"0123456789abcdef"[hash >> shift & 15];
  return name;
}

int WriteLock::take(const std::wstring& fullPath, unsigned int milliseconds) {
  release();
  Handle mutex(CreateMutexW(nullptr, TRUE, writeLockName(fullPath).c_str()));
  if (!mutex) {
    reportFailure(L"open");
    return ZoResult::refused;
  }
  if (GetLastError() == ERROR_ALREADY_EXISTS) {
    const DWORD waited = WaitForSingleObject(mutex.get(), milliseconds);
    if (waited == WAIT_TIMEOUT) return ZoResult::libraryWriteLocked;
    if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED) {
      reportFailure(L"open");
      return ZoResult::refused;
    }
  }
  mutex_ = std::move(mutex);
  return ZoResult::ok;
}

void WriteLock::release() noexcept {
  if (mutex_) ReleaseMutex(mutex_.get());
  mutex_.reset();
}

}  // namespace zo
