// Elements that tell what a container does with them.
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <stdexcept>

namespace telltale {

struct CopyFailed : std::runtime_error {
  CopyFailed() : std::runtime_error("copy") {}
};

enum class Failure { kException, kNoMemory };

// What the n-th copy from now on does; 0 means every copy works.
inline int copiesUntilFailure = 0;
inline Failure failure = Failure::kException;
inline int live = 0;    // elements that exist
inline int broken = 0;  // uses of an element that does not

inline void copying() {
  if (copiesUntilFailure == 0 || --copiesUntilFailure > 0) return;
  if (failure == Failure::kNoMemory) throw std::bad_alloc();
  throw CopyFailed();
}

enum class Moves { kNot, kSafely, kAsACopy };

// Counts itself, notices use before construction and after destruction, and fails to be copied on
// demand. A move cannot throw, or may as a copy may, or there is none.
template <Moves kMoves>
class Element {
 public:
  Element() : Element(0) {}
  Element(int v) : value(v) { ++live; }  // NOLINT: a value is an element in these tests
  Element(const Element& other) : value(other.checked().value) {
    copying();
    ++live;
  }
  Element(Element&& other) noexcept(kMoves == Moves::kSafely)
    requires(kMoves != Moves::kNot)
      : value(other.checked().value) {
    if constexpr (kMoves == Moves::kAsACopy) copying();
    other.value = -1;
    ++live;
  }
  Element& operator=(const Element& other) {
    checked();
    copying();
    value = other.checked().value;
    return *this;
  }
  Element& operator=(Element&& other) noexcept(kMoves == Moves::kSafely)
    requires(kMoves != Moves::kNot)
  {
    checked();
    if constexpr (kMoves == Moves::kAsACopy) copying();
    value = other.checked().value;
    if (this != &other) other.value = -1;
    return *this;
  }
  ~Element() {
    checked();
    magic_ = 0;
    --live;
  }

  bool operator==(const Element& other) const { return checked().value == other.checked().value; }
  bool operator<(const Element& other) const { return checked().value < other.checked().value; }

  int value;

 private:
  const Element& checked() const {
    if (magic_ != kMagic) ++broken;
    return *this;
  }

  static constexpr unsigned kMagic = 0x600DF00D;
  unsigned magic_ = kMagic;
};

using Mover = Element<Moves::kSafely>;
using Copier = Element<Moves::kNot>;
using Thrower = Element<Moves::kAsACopy>;

}  // namespace telltale

template <telltale::Moves kMoves>
struct std::hash<telltale::Element<kMoves>> {
  std::size_t operator()(const telltale::Element<kMoves>& e) const {
    return static_cast<std::size_t>(e.value) * 7;
  }
};
