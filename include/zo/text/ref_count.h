// Reference counter of shared storage: holds the number of references minus one.
//
// Arithmetic is 32-bit unsigned and wraps. Not atomic: one thread at a time per counter.
#pragma once

class ZoRefCount {
 public:
  constexpr explicit ZoRefCount(int initial = 1) noexcept
      : m_others(static_cast<unsigned int>(initial) - 1u) {}

  constexpr void setRefCount(int count) noexcept {
    m_others = static_cast<unsigned int>(count) - 1u;
  }
  [[nodiscard]] constexpr unsigned int references() const noexcept { return m_others + 1u; }
  constexpr void addReference() noexcept { ++m_others; }
  // Returns the number of references that remain; whoever sees 0 frees the storage.
  constexpr unsigned int removeReference() noexcept { return m_others--; }

 private:
  unsigned int m_others;
};

static_assert(sizeof(ZoRefCount) == 4);
