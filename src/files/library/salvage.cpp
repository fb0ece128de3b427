// Copying what can be read from a damaged library into another one.
#include "files/library/change.h"

namespace zo {

int LibraryCore::salvageInto(LibraryCore& target,
                             const std::function<bool(const ZoLibEntry&, int)>& report) {
  static_cast<void>(target);
  static_cast<void>(report);
  return ZoResult::refused;
}

}  // namespace zo
