// Watches how much memory the code under test takes from the C heap.
//
// It sees malloc and realloc as this program's own objects call them (the linker leads them here),
// and operator new. With a linker that cannot do this it sees operator new alone. One watch at a
// time, on one thread. (support/failing_memory.h lets the memory run out.)
#pragma once

#include <cstddef>

namespace zo::test {

class MemoryWatch {
 public:
  MemoryWatch();
  ~MemoryWatch();
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;

  // The most bytes that were live at once, of those requested since the watch began. While a block
  // is moved, both count.
  std::size_t peak() const;
};

}  // namespace zo::test
