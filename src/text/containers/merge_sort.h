// The sort of all engines: a stable merge sort over pointers to elements, or over what stands for
// them.
#pragma once

#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/vcallbacks.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zo {

// n pointers; false when there is no memory.
class PointerBuffer {
 public:
  explicit PointerBuffer(std::size_t n) noexcept
      : data_(static_cast<void**>(allocateBlock(n * sizeof(void*), alignof(void*)))) {}
  ~PointerBuffer() { freeBlock(static_cast<void*>(data_), alignof(void*)); }
  PointerBuffer(const PointerBuffer&) = delete;
  PointerBuffer& operator=(const PointerBuffer&) = delete;

  explicit operator bool() const noexcept { return data_ != nullptr; }
  [[nodiscard]] void** data() const noexcept { return data_; }
  void*& operator[](std::size_t i) const noexcept { return data_[i]; }

 private:
  void** data_;
};

// Merges and insertions of items that are cheap to copy, by before(a, b), a strict order of two of
// them. The comparisons made depend on their answers alone.
template <class Item, class Before>
class MergeSorter {
 public:
  explicit MergeSorter(Before before) : before_(before) {}

  [[nodiscard]] bool isOrdered(const Item* items, std::size_t n) const {
    std::size_t ordered = 1;
    while (ordered < n && !before_(items[ordered], items[ordered - 1])) ++ordered;
    return ordered >= n;
  }

  // Runs of equal length, whose number is a power of two: every merge is of equal halves.
  [[nodiscard]] static std::size_t runsOf(std::size_t n) {
    std::size_t runs = 1;
    while (n > runs * kLongestRun) runs *= 2;
    return runs;
  }

  // Where there is more than one run, spare holds n items.
  void sort(Item* items, Item* spare, std::size_t n) const {
    const std::size_t runs = runsOf(n);
    const auto startOf = [=](std::size_t run) { return run * n / runs; };
    for (std::size_t run = 0; run < runs; ++run)
      insertionSort(items + startOf(run), items + startOf(run + 1));
    Item* from = items;
    Item* to = spare;
    for (std::size_t width = 1; width < runs; width *= 2) {
      for (std::size_t run = 0; run < runs; run += 2 * width) {
        const std::size_t first = startOf(run);
        merge(from + first, from + startOf(run + width), from + startOf(run + 2 * width),
              to + first);
      }
      std::swap(from, to);
    }
    if (from != items) std::copy(from, from + n, items);
  }

 private:
  // Runs of about this length are made by insertion, halving for the place: so few items are moved
  // quickly, and comparing is what costs.
  static constexpr std::size_t kLongestRun = 32;

  void insertionSort(Item* first, Item* end) const {
    for (Item* i = first + 1; i < end; ++i) {
      if (!before_(*i, i[-1])) continue;
      const Item item = *i;
      Item* low = first;  // the place is in [low, high]
      Item* high = i - 1;
      while (low < high) {
        Item* const middle = low + (high - low) / 2;
        if (before_(item, *middle)) {
          high = middle;
        } else {
          low = middle + 1;
        }
      }
      std::copy_backward(low, i, i + 1);
      *low = item;
    }
  }

  // Merges [first, middle) and [middle, end) into `to`.
  void merge(const Item* first, const Item* middle, const Item* end, Item* to) const {
    const Item* left = first;
    const Item* right = middle;
    if (!before_(*right, middle[-1])) {  // in order already
      std::copy(first, end, to);
      return;
    }
    while (left < middle && right < end) *to++ = before_(*right, *left) ? *right++ : *left++;
    to = std::copy(left, middle, to);
    std::copy(right, end, to);
  }

  Before before_;
};

// Sorts words, each of which points to an element (kPointers) or is an element of that size
// (kElements). Equal elements keep their order in both directions. Takes O(n log n) comparisons and
// n words of memory (status 2 when there is none). The order of texts ignoring case is decided by
// sort keys where there is memory for them, too. When the compare object throws, some words may
// stand twice and others be missing, so they must be copies of what the container holds.
enum class Words { kPointers, kElements };
int mergeSort(void** words, std::size_t n, Words kind, const ElementCompare& compare,
              bool ascending, bool& changed);

}  // namespace zo
