// A hash value, and whether the key is plain: between two plain keys a policy decides equality by a
// shorter way.
//
// Errors:  nothing throws.
// Threads: a plain value.
#pragma once

#include <zo/config.h>

namespace zo {

// One number for both, which a struct of two would pass through memory.
class HashedKey {
 public:
  HashedKey(unsigned hash, bool plain) noexcept
      : bits_(hash | static_cast<unsigned long long>(plain) << 32) {}
  [[nodiscard]] unsigned hash() const noexcept { return static_cast<unsigned>(bits_); }
  [[nodiscard]] bool plain() const noexcept { return bits_ >> 32 != 0; }

 private:
  unsigned long long bits_;
};

}  // namespace zo
