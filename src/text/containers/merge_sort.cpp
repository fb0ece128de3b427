#include "text/containers/merge_sort.h"

#include <zo/results.h>

#include <algorithm>

namespace zo {
namespace {

// Runs of about this length are made by insertion, halving for the place: so few elements are moved
// quickly, and comparing is what costs.
constexpr std::size_t kLongestRun = 32;

template <Words kKind>
class Sorter {
 public:
  Sorter(const ElementCompare& compare, bool ascending)
      : compare_(compare), ascending_(ascending) {}

  // Takes pointers to words.
  bool before(void* const* a, void* const* b) const {
    const void* const x = kKind == Words::kPointers ? *a : static_cast<const void*>(a);
    const void* const y = kKind == Words::kPointers ? *b : static_cast<const void*>(b);
    return ascending_ ? compare_.compare(x, y) < 0 : compare_.compare(y, x) < 0;
  }

  void insertionSort(void** first, void** end) const {
    for (void** i = first + 1; i < end; ++i) {
      if (!before(i, i - 1)) continue;
      void* word = *i;
      void** low = first;  // the place is in [low, high]
      void** high = i - 1;
      while (low < high) {
        void** const middle = low + (high - low) / 2;
        if (before(&word, middle)) {
          high = middle;
        } else {
          low = middle + 1;
        }
      }
      std::copy_backward(low, i, i + 1);
      *low = word;
    }
  }

  // Merges [first, middle) and [middle, end) into `to`.
  void merge(void** first, void** middle, void** end, void** to) const {
    void** left = first;
    void** right = middle;
    if (!before(right, middle - 1)) {  // in order already
      std::copy(first, end, to);
      return;
    }
    while (left < middle && right < end) *to++ = before(right, left) ? *right++ : *left++;
    to = std::copy(left, middle, to);
    std::copy(right, end, to);
  }

  int sort(void** words, std::size_t n, bool& changed) const {
    std::size_t ordered = 1;
    while (ordered < n && !before(words + ordered, words + ordered - 1)) ++ordered;
    changed = ordered < n;
    if (!changed) return ZoResult::ok;

    // Runs of equal length, whose number is a power of two: every merge is of equal halves.
    std::size_t runs = 1;
    while (n > runs * kLongestRun) runs *= 2;
    const auto startOf = [=](std::size_t run) { return run * n / runs; };
    for (std::size_t run = 0; run < runs; ++run)
      insertionSort(words + startOf(run), words + startOf(run + 1));
    if (runs == 1) return ZoResult::ok;
    const PointerBuffer spare(n);
    if (!spare) return ZoResult::outOfMemory;
    void** from = words;
    void** to = spare.data();
    for (std::size_t width = 1; width < runs; width *= 2) {
      for (std::size_t run = 0; run < runs; run += 2 * width) {
        const std::size_t first = startOf(run);
        merge(from + first, from + startOf(run + width), from + startOf(run + 2 * width),
              to + first);
      }
      std::swap(from, to);
    }
    if (from != words) std::copy(from, from + n, words);
    return ZoResult::ok;
  }

 private:
  const ElementCompare& compare_;
  bool ascending_;
};

}  // namespace

int mergeSort(void** words, std::size_t n, Words kind, const ElementCompare& compare,
              bool ascending, bool& changed) {
  if (kind == Words::kPointers)
    return Sorter<Words::kPointers>(compare, ascending).sort(words, n, changed);
  return Sorter<Words::kElements>(compare, ascending).sort(words, n, changed);
}

}  // namespace zo
