// Reference counter of shared storage: holds the number of references minus one.
//
// Arithmetic is 32-bit unsigned and wraps. Not atomic: one thread at a time per counter.
//
// Errors, Threads: as said; nothing throws.
#pragma once

#include <zo/config.h>

class ZoRefCount {
 public:
  constexpr explicit ZoRefCount(int initial = 1) noexcept
      : others_(static_cast<unsigned int>(initial) - 1u) {}

  constexpr void setRefCount(int count) noexcept {
    others_ = static_cast<unsigned int>(count) - 1u;
  }
  [[nodiscard]] constexpr unsigned int references() const noexcept { return others_ + 1u; }
  constexpr void addReference() noexcept { ++others_; }
  // Returns the number of references that remain; whoever sees 0 frees the storage.
  constexpr unsigned int removeReference() noexcept { return others_--; }

 private:
  unsigned int others_;
};

static_assert(sizeof(ZoRefCount) == 4);
