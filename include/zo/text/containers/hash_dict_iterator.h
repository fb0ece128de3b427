// Iterators of ZoHashDict: they stand on an entry, and survive insertions and the removal of other
// entries; growing changes what comes next. When their own entry is removed by someone else they
// are not valid; see vhash.h for what noticing that costs.
//
// Errors, Threads: as iterator.h.
#pragma once

#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/iterator.h>

#include <utility>

namespace zo {

// What both kinds share.
template <class T, class K, class Base>
class HashWalker : public Base {
 public:
  void reset() final { walk_.reset(); }
  bool toFirst() final { return walk_.toFirst(); }
  [[nodiscard]] bool atFirst() const final { return walk_.atFirst(); }
  [[nodiscard]] bool isValid() const final { return walk_.isValid(); }
  bool next() final { return walk_.next(); }
  [[nodiscard]] const K* key() const final {
    const auto* const node = static_cast<const HashNode<T, K>*>(walk_.node());
    return node ? &node->key : nullptr;
  }

  // As in the root class, without its virtual call.
  [[nodiscard]] auto current() const noexcept {
    return static_cast<decltype(std::declval<const Base&>().current())>(place());
  }
  [[nodiscard]] auto operator()() const noexcept { return current(); }

 protected:
  explicit HashWalker(ZoVHash& hash) noexcept : walk_(hash) {}

  [[nodiscard]] const T* element() const final { return place(); }
  [[nodiscard]] T* place() const noexcept {
    auto* const node = static_cast<HashNode<T, K>*>(walk_.node());
    return node ? &node->value : nullptr;
  }

  ZoVHashIterator walk_;
};

}  // namespace zo

template <class T, class K, class H = ZoCIHashValue<K>>
class ZoHashDictIterator final : public zo::HashWalker<T, K, ZoDictIterator<T, K>> {
 public:
  explicit ZoHashDictIterator(ZoHashDict<T, K, H>& dict) noexcept
      : zo::HashWalker<T, K, ZoDictIterator<T, K>>(dict.hash_) {}

  using zo::HashWalker<T, K, ZoDictIterator<T, K>>::reset;
  void reset(ZoHashDict<T, K, H>& dict) noexcept { this->walk_.reset(dict.hash_); }

 protected:
  int take(T* out) final { return this->walk_.remove(out); }
};

template <class T, class K, class H = ZoCIHashValue<K>>
class ZoHashDictCIterator final : public zo::HashWalker<T, K, ZoDictCIterator<T, K>> {
 public:
  // The engine's iterator can change its table; this class does not let it.
  explicit ZoHashDictCIterator(const ZoHashDict<T, K, H>& dict) noexcept
      : zo::HashWalker<T, K, ZoDictCIterator<T, K>>(const_cast<ZoVHash&>(dict.hash_)) {}

  using zo::HashWalker<T, K, ZoDictCIterator<T, K>>::reset;
  void reset(const ZoHashDict<T, K, H>& dict) noexcept {
    this->walk_.reset(const_cast<ZoVHash&>(dict.hash_));
  }
};
