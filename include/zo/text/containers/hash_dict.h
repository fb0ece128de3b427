// ZoHashDict<T, K, H>: a dictionary in a hash table. H is the key policy, ZoCIHashValue<K> unless told otherwise:
// text keys ignore case.
//
// Made with 128 buckets and load factor 0.7; it doubles its buckets as it fills. Entries are visited bucket by bucket,
// within a bucket in the order of insertion. Keys and values keep their addresses until they are removed.
//
// Where the policy knows other forms of a key (for ZoString: const wchar_t*, ZoSubString, std::wstring_view), look-up
// takes them as they are, without making a key.
//
// Values and keys that can only be moved are fine; operations that copy refuse them with 1.
//
// Errors, Threads, Cost: as in vhash.h.
#pragma once

#include <zo/text/containers/apply.h>
#include <zo/text/containers/dict.h>
#include <zo/text/containers/hash_table.h>
#include <zo/text/containers/hash_value.h>

#include <initializer_list>

namespace zo {

// H::lookUpForm(key) turns another form of a key into what H hashes and compares.
template <class H, class Q>
concept LookUpForm = requires(const Q& key) { H::lookUpForm(key); };

// Range-for iterator of a hash dictionary: holds until its entry is removed. Growing changes what comes next.
template <class T, class K>
class HashIterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using value_type = DictEntry<T, K>;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = DictEntry<T, K>;

  HashIterator() = default;
  explicit HashIterator(const ZoVHashTable* table) noexcept : m_table(table) {
    if (table) findFrom(0);
  }

  reference operator*() const noexcept {
    auto* const node = static_cast<HashNode<std::remove_const_t<T>, K>*>(m_node);
    return {node->key, node->value};
  }
  HashIterator& operator++() noexcept {
    const unsigned bucket = m_table->bucketOf(m_node->hash);
    m_node = m_node->next;
    if (!m_node) findFrom(bucket + 1);
    return *this;
  }
  HashIterator operator++(int) noexcept {
    HashIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const HashIterator& other) const noexcept { return m_node == other.m_node; }

 private:
  void findFrom(unsigned bucket) noexcept {
    const unsigned buckets = m_table->buckets();
    m_node = nullptr;
    for (; bucket < buckets && !m_node; ++bucket) m_node = *m_table->chain(bucket);
  }

  const ZoVHashTable* m_table = nullptr;
  ZoVHashNode* m_node = nullptr;  // null at the end
};

}  // namespace zo

template <class T, class K, class H = ZoCIHashValue<K>>
class ZoHashDict : public ZoDict<T, K> {
 public:
  explicit ZoHashDict(unsigned buckets = ZoVHash::kDefaultBuckets,
                      double loadFactor = ZoVHash::kDefaultLoadFactor)
      : m_hash(ZoHashTable<T, K>::make(buckets ? buckets : ZoVHash::kDefaultBuckets), buckets,
               loadFactor) {}
  ZoHashDict(std::initializer_list<std::pair<K, T>> entries) : ZoHashDict() {
    for (const auto& [key, value] : entries)
      check(insertAt(key, value));  // the first of equal keys stays
  }
  explicit ZoHashDict(const ZoDict<T, K>& other) : ZoHashDict() { check(this->insertAll(other)); }
  // Copies throw std::bad_alloc when there is no memory; moves leave the other dictionary empty and usable.
  ZoHashDict(const ZoHashDict&) = default;
  ZoHashDict(ZoHashDict&& other) noexcept
      : ZoDict<T, K>(), m_hash(std::move(other.m_hash)), m_policy(other.m_policy) {}
  ZoHashDict& operator=(const ZoHashDict&) = default;
  ZoHashDict& operator=(ZoHashDict&& other) noexcept {
    m_hash = std::move(other.m_hash);
    return *this;
  }
  ZoHashDict& operator=(const ZoDict<T, K>& other) {
    if (this != &other) *this = ZoHashDict(other);
    return *this;
  }
  ~ZoHashDict() override = default;

  [[nodiscard]] unsigned entries() const noexcept final { return m_hash.m_entries; }
  [[nodiscard]] unsigned buckets() const noexcept { return m_hash.buckets(); }
  [[nodiscard]] double loadFactor() const noexcept { return m_hash.loadFactor(); }
  [[nodiscard]] double collisionRatio() const { return m_hash.collisionRatio(); }
  [[nodiscard]] ZoHashStats stats() const { return m_hash.stats(); }

  [[nodiscard]] auto begin() noexcept { return zo::HashIterator<T, K>(m_hash.m_table); }
  [[nodiscard]] auto end() noexcept { return zo::HashIterator<T, K>(); }
  [[nodiscard]] auto begin() const noexcept { return zo::HashIterator<const T, K>(m_hash.m_table); }
  [[nodiscard]] auto end() const noexcept { return zo::HashIterator<const T, K>(); }

  [[nodiscard]] T* at(const K& key) { return valueOf(find(formOf(key))); }
  [[nodiscard]] const T* at(const K& key) const { return valueOf(find(formOf(key))); }
  [[nodiscard]] bool contains(const K& key) const { return find(formOf(key)) != nullptr; }
  template <class Q>
    requires zo::LookUpForm<H, Q>
  [[nodiscard]] T* at(const Q& key) {
    return valueOf(find(H::lookUpForm(key)));
  }
  template <class Q>
    requires zo::LookUpForm<H, Q>
  [[nodiscard]] const T* at(const Q& key) const {
    return valueOf(find(H::lookUpForm(key)));
  }
  template <class Q>
    requires zo::LookUpForm<H, Q>
  [[nodiscard]] bool contains(const Q& key) const {
    return find(H::lookUpForm(key)) != nullptr;
  }
  // Any key that compares equal; every key is looked at.
  [[nodiscard]] bool contains(const K& key, const ZoCompare<K>& compare) const {
    const ZoHashCompare<K> adapter(compare);
    return m_hash.contains(&key, &adapter);
  }

  int findKey(const K& key, K& outKey) const final {
    const zo::HashNode<T, K>* const node = find(formOf(key));
    return node ? zo::assignElement<K>(&outKey, &node->key) : ZoResult::refused;
  }
  // The first key that compares equal; every key is looked at.
  int findKey(const K& key, K& outKey, const ZoCompare<K>& compare) const {
    const ZoHashCompare<K> adapter(compare);
    return m_hash.findKey(&key, &outKey, &adapter);
  }

  int insertAt(const K& key, const T& value) final {
    if constexpr (std::is_copy_constructible_v<K> && std::is_copy_constructible_v<T>) {
      return insertNew(key, value);
    } else {
      return ZoResult::refused;
    }
  }
  int insertAt(K&& key, T&& value) final { return insertNew(std::move(key), std::move(value)); }

  int removeAll(bool freeMemory = false) final {
    m_hash.removeAll();
    return freeMemory ? setCapacity(ZoVHash::kDefaultBuckets, loadFactor()) : ZoResult::ok;
  }
  // Refuses 0 buckets and a load factor that is not above 0. Buckets that are too few for the load factor double.
  int setCapacity(unsigned buckets, double loadFactor) {
    if (const int status = makeTable()) return status;
    const ZoHashKey<K> adapter(m_policy);
    return m_hash.setCapacity(buckets, loadFactor, &adapter);
  }
  int apply(ZoHashApply<T>& applyFn) { return m_hash.apply(&applyFn); }

  void walk(zo::DictCursor& cursor) const final {
    const auto* const table = m_hash.m_table;
    auto* node = static_cast<ZoVHashNode*>(cursor.node);
    unsigned bucket = node ? table->bucketOf(node->hash) + 1 : 0;
    node = node ? node->next : nullptr;
    for (; !node && bucket < buckets(); ++bucket) node = *table->chain(bucket);
    cursor.node = node;
    if (node) {
      cursor.key = &static_cast<zo::HashNode<T, K>*>(node)->key;
      cursor.value = &static_cast<zo::HashNode<T, K>*>(node)->value;
    }
  }
  [[nodiscard]] const ZoVHash& engine() const noexcept { return m_hash; }
  [[nodiscard]] const H& policy() const noexcept { return m_policy; }

 protected:
  T* locate(const K& key) const final { return valueOf(find(formOf(key))); }
  int take(const K& key, T* out) final {
    const ZoHashKey<K> adapter(m_policy);
    return m_hash.removeAt(&key, out, &adapter);
  }

 private:
  template <class V, class Key, class Policy>
  friend class ZoHashDictIterator;
  template <class V, class Key, class Policy>
  friend class ZoHashDictCIterator;

  using Node = zo::HashNode<T, K>;

  static void check(int status) {
    if (status == ZoResult::outOfMemory) throw std::bad_alloc();
  }
  [[nodiscard]] static T* valueOf(Node* node) noexcept { return node ? &node->value : nullptr; }

  // The policy's own functions, not those of a class derived from it.
  [[nodiscard]] static decltype(auto) formOf(const K& key) {
    if constexpr (zo::LookUpForm<H, K>) {
      return H::lookUpForm(key);
    } else {
      return static_cast<const K&>(key);
    }
  }
  template <class Form>
  [[nodiscard]] zo::HashedKey hashOf(const Form& key) const {
    if constexpr (requires { H::hashKey(key); }) {
      return H::hashKey(key);
    } else {
      return {m_policy.H::hash(key), true};
    }
  }
  template <class Form>
  [[nodiscard]] bool matches(ZoVHashNode* node, const Form& key, zo::HashedKey hashed) const {
    const bool plain = node->plain && hashed.plain;
    if (plain && node->hash != hashed.hash) return false;
    const K& mine = static_cast<Node*>(node)->key;
    if constexpr (requires { H::isEqual(mine, key, plain); }) {
      return H::isEqual(mine, key, plain);
    } else {
      return m_policy.H::compare(mine, key) == 0;
    }
  }

  template <class Form>
  [[nodiscard]] Node* find(const Form& key) const {
    const ZoVHashTable* const table = m_hash.m_table;
    if (!table) return nullptr;
    const zo::HashedKey hashed = hashOf(key);
    ZoVHashNode* node = *table->chain(table->bucketOf(hashed.hash));
    while (node && !matches(node, key, hashed)) node = node->next;
    return static_cast<Node*>(node);
  }

  template <class Key, class Value>
  int insertNew(Key&& key, Value&& value) {
    if (const int status = makeTable()) return status;
    if (m_hash.isOverloaded() && m_hash.grow() != ZoResult::ok) return ZoResult::refused;
    if (entries() == zo::npos - 1) return ZoResult::refused;
    auto* const table = static_cast<ZoHashTable<T, K>*>(m_hash.m_table);
    const zo::HashedKey hashed = hashOf(formOf(key));
    ZoVHashNode** link = table->chain(table->bucketOf(hashed.hash));
    const bool collides = *link != nullptr;
    for (; *link; link = &(*link)->next) {
      if (matches(*link, formOf(key), hashed)) return ZoResult::refused;
    }
    ZoVHashNode* node = nullptr;
    if (const int status =
            table->makeNode(node, std::forward<Key>(key), std::forward<Value>(value)))
      return status;
    node->hash = hashed.hash;
    node->plain = hashed.plain;
    *link = node;
    ++m_hash.m_entries;
    if (collides) ++m_hash.m_collisions;
    return ZoResult::ok;
  }

  // For a dictionary that was moved from, or found no memory when it was made.
  int makeTable() {
    if (m_hash.m_table) return ZoResult::ok;
    m_hash.m_table = ZoHashTable<T, K>::make(ZoVHash::kDefaultBuckets);
    if (!m_hash.m_table) return ZoResult::outOfMemory;
    m_hash.m_buckets = ZoVHash::kDefaultBuckets;
    return ZoResult::ok;
  }

  ZoVHash m_hash;
  H m_policy;
};
