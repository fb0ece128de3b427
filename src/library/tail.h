// What follows the last entry of a library, and whose it is. docs/formats/library.md, "Tails".
#pragma once

#include "library/state.h"

namespace zo {

// What follows the last entry, also behind a mark.
[[nodiscard]] ScanEnd tailEnd(LibraryState& library);
// Whether a member is being added behind the last one, or was when its writer was killed.
[[nodiscard]] inline bool isBeingAdded(LibraryState& library) {
  return tailEnd(library) == ScanEnd::kClosedGate;
}
// Whether what follows the last entry is what a killed writer of this library leaves. Nothing else
// is ever cut.
[[nodiscard]] bool isOwnTail(LibraryState& library);

}  // namespace zo
