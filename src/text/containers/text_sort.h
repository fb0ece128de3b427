// Sorting texts ignoring case by sort keys: each text is looked at once, instead of at every
// comparison.
#pragma once

#include "text/containers/merge_sort.h"

namespace zo {

// Sorts words as mergeSort does, when compare is the order of texts ignoring case (and no order
// derived from it), there are enough of them, and there is memory. False when nothing was done.
// Texts whose keys cannot be relied on are compared as ever.
[[nodiscard]] bool sortTextsByKeys(void** words, std::size_t n, Words kind,
                                   const ElementCompare& compare, bool ascending) noexcept;

}  // namespace zo
