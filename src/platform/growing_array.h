// Plain values side by side in memory that grows in place (platform/growing_memory.h): millions of
// them are added without copying those before.
#pragma once

#include <algorithm>
#include <new>
#include <span>
#include <type_traits>

#include "platform/growing_memory.h"

namespace zo {

template <class T>
  requires std::is_trivially_copyable_v<T>
class GrowingArray {
 public:
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] std::span<const T> all() const noexcept { return {values(), size_}; }
  [[nodiscard]] const T& operator[](std::size_t i) const noexcept { return values()[i]; }
  [[nodiscard]] T& operator[](std::size_t i) noexcept { return values()[i]; }
  // Makes room for so many in all. Throws std::bad_alloc, and then nothing has changed.
  void reserve(std::size_t count) {
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_alloc();
    const std::size_t wanted = count * sizeof(T);
    if (wanted > memory_.capacity()) memory_.grow(size_ * sizeof(T), wanted);
  }
  // What there is room for throws nothing.
  void append(std::span<const T> added) {
    reserve(size_ + added.size());
    std::copy(added.begin(), added.end(), values() + size_);
    size_ += added.size();
  }
  void append(const T& added) { append(std::span(&added, 1)); }
  // Keeps the first so many.
  void shorten(std::size_t size) noexcept { size_ = size; }

 private:
  [[nodiscard]] T* values() const noexcept { return reinterpret_cast<T*>(memory_.data()); }

  GrowingMemory memory_;
  std::size_t size_ = 0;
};

}  // namespace zo
