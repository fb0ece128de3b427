#include "files/keep_reason.h"

#include <zo/system/file_system.h>

#include "system/service_or_null.h"

namespace zo {

std::atomic<DWORD> keptError = ERROR_SUCCESS;

int keepReason(const wchar_t* operation, ZoFileSystem* service) {
  return keepReason(operation, GetLastError(), ZoResult::refused, service);
}

int keepReason(const wchar_t* operation, DWORD error, int code, ZoFileSystem* service) {
  if (error == ERROR_SUCCESS) error = ERROR_GEN_FAILURE;
  if (!service) service = serviceOrNull<ZoFileSystem>();
  SetLastError(error);
  if (service) {
    try {
      service->errorIO(operation);
    } catch (const std::bad_alloc&) {
      keptError = error;  // what failed has failed, and is not to throw
    }
  } else {
    keptError = error;
  }
  SetLastError(error);
  return code;
}

}  // namespace zo
