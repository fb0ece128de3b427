#include "system/service_scope.h"

#include <cwchar>

namespace zo {

bool isThisLibrary(const wchar_t* module) noexcept {
  return module && _wcsicmp(module, L"zo_com") == 0;
}

}  // namespace zo
