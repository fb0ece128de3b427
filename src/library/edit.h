// What the operations that change entries where they stand have in common.
#pragma once

#include "library/change.h"

namespace zo {

// Puts the entries into the change as deleted ones.
int patchAsDeleted(Change& change, LibraryState& library,
                   std::span<const IndexEntry* const> entries);

}  // namespace zo
