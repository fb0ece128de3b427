// The sort of all engines: a stable merge sort over pointers to elements.
#pragma once

#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/vcallbacks.h>

#include <cstddef>

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

// Sorts words, each of which points to an element (kPointers) or is an element of that size
// (kElements). Equal elements keep their order in both directions. Takes O(n log n) comparisons and
// n words of memory (status 2 when there is none). When the compare object throws, some words may
// stand twice and others be missing, so they must be copies of what the container holds.
enum class Words { kPointers, kElements };
int mergeSort(void** words, std::size_t n, Words kind, const ElementCompare& compare,
              bool ascending, bool& changed);

}  // namespace zo
