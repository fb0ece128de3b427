// Watches the memory that the code under test takes from the C heap, and lets it run out.
//
// It sees malloc and realloc as this program's own objects call them (the linker leads them here),
// and operator new, of which only that which gives null can run out. With a linker that cannot do
// this it sees operator new alone. One watch at a time, on one thread.
#pragma once

#include <cstddef>

namespace zo::test {

class MemoryWatch {
 public:
  // From the request with this number on, counted from 1, there is no memory; 0 for never.
  explicit MemoryWatch(std::size_t failAt = 0);
  ~MemoryWatch();
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;

  // The most bytes that were live at once, of those requested since the watch began. While a block
  // is moved, both count.
  std::size_t peak() const;
  bool failed() const;  // whether a request was refused
};

}  // namespace zo::test
