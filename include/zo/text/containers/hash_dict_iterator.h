// Iterators of ZoHashDict: they stand on an entry, and survive insertions and the removal of other entries; growing
// changes what comes next. When their own entry is removed by someone else they are not valid; see vhash.h for what
// noticing that costs.
#pragma once

#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/iterator.h>

namespace zo {

// What both kinds share.
template <class T, class K, class Base>
class HashWalker : public Base {
 public:
  void reset() final { m_walk.reset(); }
  bool toFirst() final { return m_walk.toFirst(); }
  [[nodiscard]] bool atFirst() const final { return m_walk.atFirst(); }
  [[nodiscard]] bool isValid() const final { return m_walk.isValid(); }
  bool next() final { return m_walk.next(); }
  [[nodiscard]] const K* key() const final {
    const auto* const node = static_cast<const HashNode<T, K>*>(m_walk.node());
    return node ? &node->key : nullptr;
  }

 protected:
  explicit HashWalker(ZoVHash& hash) noexcept : m_walk(hash) {}

  [[nodiscard]] const T* element() const final {
    const auto* const node = static_cast<const HashNode<T, K>*>(m_walk.node());
    return node ? &node->value : nullptr;
  }

  ZoVHashIterator m_walk;
};

}  // namespace zo

template <class T, class K, class H = ZoCIHashValue<K>>
class ZoHashDictIterator final : public zo::HashWalker<T, K, ZoDictIterator<T, K>> {
 public:
  explicit ZoHashDictIterator(ZoHashDict<T, K, H>& dict) noexcept
      : zo::HashWalker<T, K, ZoDictIterator<T, K>>(dict.m_hash) {}

  using zo::HashWalker<T, K, ZoDictIterator<T, K>>::reset;
  void reset(ZoHashDict<T, K, H>& dict) noexcept { this->m_walk.reset(dict.m_hash); }

 protected:
  int take(T* out) final { return this->m_walk.remove(out); }
};

template <class T, class K, class H = ZoCIHashValue<K>>
class ZoHashDictCIterator final : public zo::HashWalker<T, K, ZoDictCIterator<T, K>> {
 public:
  // The engine's iterator can change its table; this class does not let it.
  explicit ZoHashDictCIterator(const ZoHashDict<T, K, H>& dict) noexcept
      : zo::HashWalker<T, K, ZoDictCIterator<T, K>>(const_cast<ZoVHash&>(dict.m_hash)) {}

  using zo::HashWalker<T, K, ZoDictCIterator<T, K>>::reset;
  void reset(const ZoHashDict<T, K, H>& dict) noexcept {
    this->m_walk.reset(const_cast<ZoVHash&>(dict.m_hash));
  }
};
