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
      : m_data(static_cast<void**>(allocateBlock(n * sizeof(void*), alignof(void*)))) {}
  ~PointerBuffer() { freeBlock(m_data, alignof(void*)); }
  PointerBuffer(const PointerBuffer&) = delete;
  PointerBuffer& operator=(const PointerBuffer&) = delete;

  explicit operator bool() const noexcept { return m_data != nullptr; }
  void** data() const noexcept { return m_data; }
  void*& operator[](std::size_t i) const noexcept { return m_data[i]; }

 private:
  void** m_data;
};

// Sorts the pointers by what they point to; equal elements keep their order in both directions. Takes
// O(n log n) comparisons and n pointers of memory (status 2 when there is none, and then nothing has moved).
// When the compare object throws, the order of the pointers is undefined; none is lost from the elements' owner.
int mergeSort(void** elements, std::size_t n, const ElementCompare& compare, bool ascending,
              bool& changed);

}  // namespace zo
