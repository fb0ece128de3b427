#include "text/containers/merge_sort.h"

#include <zo/results.h>

#include "text/containers/text_sort.h"

namespace zo {
namespace {

template <Words kKind>
class WordOrder {
 public:
  WordOrder(const ElementCompare& compare, bool ascending)
      : compare_(&compare), ascending_(ascending) {}

  bool operator()(void* const& a, void* const& b) const {
    const void* const x = kKind == Words::kPointers ? a : static_cast<const void*>(&a);
    const void* const y = kKind == Words::kPointers ? b : static_cast<const void*>(&b);
    return ascending_ ? compare_->compare(x, y) < 0 : compare_->compare(y, x) < 0;
  }

 private:
  const ElementCompare* compare_;
  bool ascending_;
};

template <Words kKind>
int sortWords(void** words, std::size_t n, const ElementCompare& compare, bool ascending,
              bool& changed) {
  using Sorter = MergeSorter<void*, WordOrder<kKind>>;
  const Sorter sorter(WordOrder<kKind>(compare, ascending));
  changed = !sorter.isOrdered(words, n);
  if (!changed || sortTextsByKeys(words, n, kKind, compare, ascending)) return ZoResult::ok;
  if (Sorter::runsOf(n) == 1) {
    sorter.sort(words, nullptr, n);
    return ZoResult::ok;
  }
  const PointerBuffer spare(n);
  if (!spare) return ZoResult::outOfMemory;
  sorter.sort(words, spare.data(), n);
  return ZoResult::ok;
}

}  // namespace

int mergeSort(void** words, std::size_t n, Words kind, const ElementCompare& compare,
              bool ascending, bool& changed) {
  if (kind == Words::kPointers)
    return sortWords<Words::kPointers>(words, n, compare, ascending, changed);
  return sortWords<Words::kElements>(words, n, compare, ascending, changed);
}

}  // namespace zo
