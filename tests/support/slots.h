// Where virtual functions have their places: modules that were built before call by position.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#if !defined(_MSC_VER)  // which lays overloads out backwards and shows slots in another way
namespace zo::test {

// Counted from 0, with two places for the destructor.
template <class Function>
std::size_t slotOf(Function function) {
  std::size_t word = 0;
  std::memcpy(&word, &function, sizeof word);
  return (word - 1) / sizeof(void*);
}

template <class... Functions>
void expectSlots(std::size_t first, Functions... functions) {
  for (const std::size_t slot : {slotOf(functions)...}) EXPECT_EQ(slot, first++);
}

}  // namespace zo::test
#endif
