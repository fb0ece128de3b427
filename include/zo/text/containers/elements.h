// Making, copying and moving elements of a type that the engines do not know.
//
// Errors:  a std::bad_alloc of an element becomes status 2; any other exception passes through.
//          What cannot be copied (or made without a value) is refused with 1.
// Threads: any; nothing is shared but the elements.
#pragma once

#include <zo/results.h>
#include <zo/text/containers/node_pool.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace zo {

// True for types whose bytes may be moved to another address instead of calling move constructor
// and destructor. Specialise it for types that hold only pointers to what they own.
template <class T>
inline constexpr bool isRelocatable = std::is_trivially_copyable_v<T>;

// True when an element can change its place without throwing.
template <class T>
inline constexpr bool movesSafely = isRelocatable<T> || std::is_nothrow_move_constructible_v<T>;

// True when copies of an element can be made. Specialised for types whose copy constructor is there
// but does not compile, as that of a container of elements that can only be moved.
template <class T>
inline constexpr bool isCopyable = std::is_copy_constructible_v<T>;
template <class T>
inline constexpr bool isCopyAssignable =
    std::is_copy_assignable_v<T> && (isCopyable<T> || !std::is_copy_constructible_v<T>);

// What every copying constructor and assignment of a container asks for.
template <class... T>
constexpr void assertCopyable() noexcept {
  static_assert((isCopyable<T> && ...),
                "the elements can only be moved: move the container, or its elements one by one");
}

template <class Action>
int asStatus(Action&& action) {
  try {
    action();
    return ZoResult::ok;
  } catch (const std::bad_alloc&) {
    return ZoResult::outOfMemory;
  }
}

// The way back, for what has no status to return; any other status counts for nothing.
inline void throwIfNoMemory(int status) {
  if (status == ZoResult::outOfMemory) throw std::bad_alloc();
}

// A node of the pool, made from the arguments; null together with any status but 0.
template <class Node, class Link, class... Arguments>
[[nodiscard]] int makeNode(NodePool& pool, Link*& node, Arguments&&... arguments) {
  node = nullptr;
  void* const place = pool.allocate();
  if (!place) return ZoResult::outOfMemory;
  if constexpr (std::is_nothrow_constructible_v<Node, Arguments...>) {
    node = ::new (place) Node(std::forward<Arguments>(arguments)...);
  } else {
    try {
      node = ::new (place) Node(std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
      pool.release(place);
      return ZoResult::outOfMemory;
    } catch (...) {
      pool.release(place);
      throw;
    }
  }
  return ZoResult::ok;
}

// Assigns *from to *to.
template <class T>
int assignElement(void* to, const void* from) {
  if constexpr (isCopyAssignable<T>) {
    return asStatus([&] { *static_cast<T*>(to) = *static_cast<const T*>(from); });
  } else {
    return ZoResult::refused;
  }
}

// Moves *from to *to; copies where the type cannot be moved, or where something may yet throw: then
// *from must stay.
template <class T>
int moveElement(void* to, void* from) {
  if constexpr (isCopyAssignable<T> && !(movesSafely<T> && std::is_nothrow_move_assignable_v<T>)) {
    return assignElement<T>(to, from);
  } else if constexpr (std::is_move_assignable_v<T>) {
    return asStatus([&] { *static_cast<T*>(to) = std::move(*static_cast<T*>(from)); });
  } else {
    return ZoResult::refused;
  }
}

// std::destroy_n without <memory>, which would double the time that containers take to compile.
template <class T>
void destroyElements(T* from, std::size_t n) noexcept {
  if constexpr (!std::is_trivially_destructible_v<T>) {
    for (T* const end = from + n; from != end; ++from) from->~T();
  }
}

// Moves n elements to unused memory, which may overlap them; where they were is unused memory
// afterwards.
template <class T>
void relocateElements(T* to, T* from, std::size_t n) noexcept(movesSafely<T>) {
  if (to == from || n == 0) return;
  if constexpr (isRelocatable<T>) {
    std::memmove(static_cast<void*>(to), static_cast<const void*>(from), n * sizeof(T));
  } else {
    const bool backwards = to > from;
    for (std::size_t k = 0; k < n; ++k) {
      const std::size_t i = backwards ? n - 1 - k : k;
      ::new (static_cast<void*>(to + i)) T(std::move(from[i]));
      destroyElements(from + i, 1);
    }
  }
}

// Makes n elements in unused memory with make(place, index); destroys those made when one throws.
template <class T, class Make>
void makeElements(T* to, unsigned n, Make&& make) {
  unsigned made = 0;
  try {
    for (; made < n; ++made) make(to + made, made);
  } catch (...) {
    destroyElements(to, made);
    throw;
  }
}

}  // namespace zo
