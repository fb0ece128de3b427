// What the operations that change entries where they stand have in common.
#pragma once

#include "library/change.h"
#include "library/operations.h"

namespace zo {

// Puts the entries into the change as deleted ones.
int patchAsDeleted(Change& change, LibraryState& library,
                   std::span<const IndexEntry* const> entries);
// The deleted member that a name or an entry means; of an entry it is not asked whether it is one.
int findDeleted(LibraryState& library, const MemberRef& member, Versions which,
                const IndexEntry*& found);

}  // namespace zo
