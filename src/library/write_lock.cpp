#include "library/write_lock.h"

#include <zo/library/library_results.h>

#include "library/disk_file.h"
#include "names/name_compare.h"
#include "text/code_units.h"

namespace zo {
namespace {

int makeAndWait(const std::wstring& fullPath, unsigned int milliseconds, Handle& mutex) {
  Handle made(CreateMutexW(nullptr, TRUE, writeLockName(fullPath).c_str()));
  DWORD waited = made ? WAIT_OBJECT_0 : WAIT_FAILED;
  if (made && GetLastError() == ERROR_ALREADY_EXISTS) {
    waited = WaitForSingleObject(made.get(), milliseconds);
  }
  if (waited == WAIT_TIMEOUT) return ZoResult::libraryWriteLocked;
  if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED) {
    reportFailure(L"open");
    return ZoResult::refused;
  }
  mutex = std::move(made);
  return ZoResult::ok;
}

}  // namespace

std::wstring writeLockName(const std::wstring& fullPath) {
  static_assert(sizeof(std::size_t) == 8);
  constexpr std::size_t kDigits = 16;
  std::wstring name = L"ZoLibrary-";
  const std::size_t begin = name.size();
  name.resize(begin + kDigits);
  writeHex(name.data() + begin, hashName(fullPath), kDigits, kLowerHexDigits);
  return name;
}

int WriteLock::take(const std::wstring& fullPath) {
  release();
  return makeAndWait(fullPath, 0, mutex_);
}

int WriteLock::await(const std::wstring& fullPath, unsigned int milliseconds) {
  WriteLock passing;
  return makeAndWait(fullPath, milliseconds, passing.mutex_);
}

void WriteLock::release() noexcept {
  if (mutex_) ReleaseMutex(mutex_.get());
  mutex_.reset();
}

}  // namespace zo
