// Typed comparison of elements, and the adapters that show it to the engines.
//
// ZoCompare<T> orders by the type's own operators; derive from it for another order. Equal means 0.
//
// Errors:  what the operators of the type throw passes through.
// Threads: stateless as given here; any number of threads.
#pragma once

#include <zo/text/containers/vcallbacks.h>

#include <cstdint>
#include <utility>

template <class T>
class ZoCompare {
 public:
  ZoCompare() = default;
  ZoCompare(const ZoCompare&) = default;
  ZoCompare& operator=(const ZoCompare&) = default;
  virtual ~ZoCompare() = default;

  // Negative, 0 or positive. A type without `<` is compared by `==` (0 or 1), one without both by
  // identity.
  [[nodiscard]] virtual int compare(const T& a, const T& b) const {
    if constexpr (requires { a < b; }) {
      return a < b ? -1 : b < a ? 1 : 0;
    } else if constexpr (requires { a == b; }) {
      return a == b ? 0 : 1;
    } else {
      return &a == &b ? 0 : 1;
    }
  }
};

// The order ignoring case where the type has one (text); else the type's own.
template <class T>
class ZoCICompare : public ZoCompare<T> {};

namespace zo {

template <class T, class Base>
class TypedCompare : public Base {
 public:
  explicit TypedCompare(const ZoCompare<T>& compare) noexcept : compare_(&compare) {}
  int compare(const void* a, const void* b) const override {
    return compare_->compare(*static_cast<const T*>(a), *static_cast<const T*>(b));
  }
  [[nodiscard]] const ZoCompare<T>& typed() const noexcept { return *compare_; }

 private:
  const ZoCompare<T>* compare_;  // not owned; outlives this
};

// What a key begins with in the order C, for a tree (vtree.h); 0 where nothing is known.
template <class K, class C>
[[nodiscard]] std::uint32_t frontOf(const K&) {
  return 0;
}

// Any callable (a, b) -> int as a comparison: `array.sort(zo::compareBy<Part>(byWeight))`.
template <class T, class F>
class CompareBy final : public ZoCompare<T> {
 public:
  explicit CompareBy(F f) : f_(std::move(f)) {}
  int compare(const T& a, const T& b) const override { return f_(a, b); }

 private:
  F f_;
};

template <class T, class F>
CompareBy<T, F> compareBy(F f) {
  return CompareBy<T, F>(std::move(f));
}

}  // namespace zo

template <class T>
class ZoArrayCompare final : public zo::TypedCompare<T, ZoVArrayCompare> {
  using zo::TypedCompare<T, ZoVArrayCompare>::TypedCompare;
};
template <class T>
class ZoListCompare final : public zo::TypedCompare<T, ZoVListCompare> {
  using zo::TypedCompare<T, ZoVListCompare>::TypedCompare;
};
template <class T>
class ZoHashCompare final : public zo::TypedCompare<T, ZoVHashCompare> {
  using zo::TypedCompare<T, ZoVHashCompare>::TypedCompare;
};
template <class T>
class ZoTreeCompare final : public zo::TypedCompare<T, ZoVTreeCompare> {
  using zo::TypedCompare<T, ZoVTreeCompare>::TypedCompare;
};
