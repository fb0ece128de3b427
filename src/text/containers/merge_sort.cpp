#include "text/containers/merge_sort.h"

#include <zo/results.h>

#include <algorithm>

namespace zo {
namespace {

constexpr std::size_t kInsertionRun = 8;

class Order {
 public:
  Order(const ElementCompare& compare, bool ascending)
      : m_compare(compare), m_ascending(ascending) {}
  bool operator()(const void* a, const void* b) const {
    return m_ascending ? m_compare.compare(a, b) < 0 : m_compare.compare(b, a) < 0;
  }

 private:
  const ElementCompare& m_compare;
  bool m_ascending;
};

void insertionSort(void** first, void** end, const Order& before) {
  for (void** i = first + 1; i < end; ++i) {
    void* const element = *i;
    void** gap = i;
    for (; gap > first && before(element, gap[-1]); --gap) *gap = gap[-1];
    *gap = element;
  }
}

// Merges [first, middle) and [middle, end) into `to`.
void merge(void** first, void** middle, void** end, void** to, const Order& before) {
  void** left = first;
  void** right = middle;
  if (!before(*right, middle[-1])) {  // already in order
    std::copy(first, end, to);
    return;
  }
  while (left < middle && right < end) *to++ = before(*right, *left) ? *right++ : *left++;
  to = std::copy(left, middle, to);
  std::copy(right, end, to);
}

}  // namespace

int mergeSort(void** elements, std::size_t n, const ElementCompare& compare, bool ascending,
              bool& changed) {
  const Order before(compare, ascending);
  changed = false;
  std::size_t ordered = 1;
  while (ordered < n && !before(elements[ordered], elements[ordered - 1])) ++ordered;
  if (ordered >= n) return ZoResult::ok;

  changed = true;
  for (std::size_t i = 0; i < n; i += kInsertionRun) {
    insertionSort(elements + i, elements + std::min(i + kInsertionRun, n), before);
  }
  if (n <= kInsertionRun) return ZoResult::ok;
  const PointerBuffer spare(n);
  if (!spare) return ZoResult::outOfMemory;
  void** from = elements;
  void** to = spare.data();
  for (std::size_t run = kInsertionRun; run < n; run *= 2) {
    for (std::size_t i = 0; i < n; i += 2 * run) {
      const std::size_t middle = std::min(i + run, n);
      const std::size_t end = std::min(i + 2 * run, n);
      if (middle == end) {
        std::copy(from + i, from + end, to + i);
      } else {
        merge(from + i, from + middle, from + end, to + i, before);
      }
    }
    std::swap(from, to);
  }
  if (from != elements) std::copy(from, from + n, elements);
  return ZoResult::ok;
}

}  // namespace zo
