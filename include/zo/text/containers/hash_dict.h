// ZoHashDict<T, K, H>: a dictionary in a hash table. H is the key policy, ZoCIHashValue<K> unless
// told otherwise: text keys ignore case.
//
// Made with 128 buckets and load factor 0.7; it doubles its buckets as it fills. The first
// insertion makes the buckets, so an empty dictionary takes no memory beside itself. Entries are
// visited bucket by bucket, within a bucket in the order of insertion. Keys and values keep their
// addresses until they are removed.
//
// Where the policy knows other forms of a key (for ZoString: const wchar_t*, ZoSubString,
// std::wstring_view), look-up takes them as they are, without making a key.
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

// Range-for iterator of a hash dictionary: holds until its entry is removed. Growing changes what
// comes next.
template <class T, class K>
class HashRangeIterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using value_type = DictEntry<T, K>;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = DictEntry<T, K>;

  HashRangeIterator() = default;
  explicit HashRangeIterator(const ZoVHash& hash) noexcept : hash_(&hash) {
    if (hash.table()) findFrom(0);
  }

  reference operator*() const noexcept {
    auto* const node = static_cast<HashNode<std::remove_const_t<T>, K>*>(node_);
    return {node->key, node->value};
  }
  HashRangeIterator& operator++() noexcept {
    const unsigned bucket = hash_->table()->bucketOf(node_->hash);
    node_ = node_->next;
    if (!node_) findFrom(bucket + 1);
    return *this;
  }
  HashRangeIterator operator++(int) noexcept {
    HashRangeIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const HashRangeIterator& other) const noexcept { return node_ == other.node_; }

 private:
  void findFrom(unsigned bucket) noexcept {
    const ZoVHashTable& table = *hash_->table();
    node_ = nullptr;
    for (; bucket < table.buckets() && !node_; ++bucket) node_ = *table.chain(bucket);
  }

  const ZoVHash* hash_ = nullptr;  // whose storage changes when it grows
  ZoVHashNode* node_ = nullptr;    // null at the end
};

}  // namespace zo

template <class T, class K, class H = ZoCIHashValue<K>>
class ZoHashDict : public ZoDict<T, K> {
 public:
  // 0 buckets and a load factor that is not above 0 give the defaults.
  explicit ZoHashDict(unsigned buckets = ZoVHash::kDefaultBuckets,
                      double loadFactor = ZoVHash::kDefaultLoadFactor) noexcept
      : hash_(nullptr, 0, loadFactor) {
    hash_.buckets_ = buckets;
  }
  template <class Number>
    requires(std::is_floating_point_v<Number> || std::is_same_v<Number, bool>)
  explicit ZoHashDict(Number, double = 0) = delete;  // the number of buckets comes first
  ZoHashDict(std::initializer_list<std::pair<K, T>> entries) : ZoHashDict() {
    zo::assertCopyable<K, T>();
    for (const auto& [key, value] : entries)
      zo::throwIfNoMemory(insertAt(key, value));  // the first of equal keys stays
  }
  explicit ZoHashDict(const ZoDict<T, K>& other) : ZoHashDict() {
    zo::assertCopyable<K, T>();
    zo::throwIfNoMemory(this->insertAll(other));
  }
  // Copies throw std::bad_alloc when there is no memory; moves leave the other dictionary empty and
  // usable.
  ZoHashDict(const ZoHashDict& other)
      : ZoDict<T, K>(other), hash_(other.hash_), policy_(other.policy_) {
    zo::assertCopyable<K, T>();
  }
  ZoHashDict(ZoHashDict&& other) noexcept
      : ZoDict<T, K>(),
        hash_(std::move(other.hash_)),
        policy_(other.policy_) {}  // NOLINT(performance-move-constructor-init): both need one
  ZoHashDict& operator=(const ZoHashDict& other) {
    zo::assertCopyable<K, T>();
    hash_ = other.hash_;
    policy_ = other.policy_;
    return *this;
  }
  ZoHashDict& operator=(ZoHashDict&& other) noexcept {
    hash_ = std::move(other.hash_);
    policy_ = other.policy_;
    return *this;
  }
  ZoHashDict& operator=(const ZoDict<T, K>& other) {
    if (this != &other) *this = ZoHashDict(other);
    return *this;
  }
  ~ZoHashDict() override = default;

  [[nodiscard]] unsigned entries() const noexcept final { return hash_.entries_; }
  [[nodiscard]] unsigned buckets() const noexcept {
    return hash_.buckets_ ? hash_.buckets_ : ZoVHash::kDefaultBuckets;
  }
  [[nodiscard]] double loadFactor() const noexcept { return hash_.loadFactor(); }
  [[nodiscard]] double collisionRatio() const { return hash_.collisionRatio(); }
  [[nodiscard]] ZoHashStats stats() const { return hash_.stats(); }

  [[nodiscard]] auto begin() noexcept { return zo::HashRangeIterator<T, K>(hash_); }
  [[nodiscard]] auto end() noexcept { return zo::HashRangeIterator<T, K>(); }
  [[nodiscard]] auto begin() const noexcept { return zo::HashRangeIterator<const T, K>(hash_); }
  [[nodiscard]] auto end() const noexcept { return zo::HashRangeIterator<const T, K>(); }

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
    return hash_.contains(&key, &adapter);
  }

  [[nodiscard]] int findKey(const K& key, K& outKey) const final {
    const zo::HashNode<T, K>* const node = find(formOf(key));
    return node ? zo::assignElement<K>(&outKey, &node->key) : ZoResult::refused;
  }
  // The first key that compares equal; every key is looked at.
  [[nodiscard]] int findKey(const K& key, K& outKey, const ZoCompare<K>& compare) const {
    const ZoHashCompare<K> adapter(compare);
    return hash_.findKey(&key, &outKey, &adapter);
  }

  [[nodiscard]] int insertAt(const K& key, const T& value) final {
    if constexpr (zo::isCopyable<K> && zo::isCopyable<T>) {
      return insertNew(key, value);
    } else {
      return ZoResult::refused;
    }
  }
  [[nodiscard]] int insertAt(K&& key, T&& value) final {
    return insertNew(std::move(key), std::move(value));
  }

  using ZoContainer<T>::removeAll;
  int removeAll(bool freeMemory = false) final {
    hash_.removeAll();
    if (freeMemory) hash_ = ZoVHash(nullptr, 0, loadFactor());
    return ZoResult::ok;
  }
  // Refuses 0 buckets and a load factor that is not above 0. Buckets that are too few for the load
  // factor double.
  [[nodiscard]] int setCapacity(unsigned buckets, double loadFactor) {
    const ZoHashKey<K> adapter(policy_);
    if (!hash_.table_ && buckets > 0 && loadFactor > 0) {
      hash_.buckets_ = buckets;
      hash_.loadFactor_ = loadFactor;
      return ZoResult::ok;
    }
    return hash_.setCapacity(buckets, loadFactor, &adapter);
  }
  int apply(ZoHashApply<T>& applyFn) { return hash_.apply(&applyFn); }

  void walk(zo::DictCursor& cursor) const final {
    const auto* const table = hash_.table_;
    const unsigned end = table ? table->buckets() : 0;
    auto* node = static_cast<ZoVHashNode*>(cursor.node);
    unsigned bucket = node ? table->bucketOf(node->hash) + 1 : 0;
    node = node ? node->next : nullptr;
    for (; !node && bucket < end; ++bucket) {
      // Nodes lie anywhere: ask in time for those that come soon.
      if (bucket + kAhead < end) zo::prefetch(*table->chain(bucket + kAhead));
      node = *table->chain(bucket);
    }
    cursor.node = node;
    if (node) {
      cursor.key = &static_cast<zo::HashNode<T, K>*>(node)->key;
      cursor.value = &static_cast<zo::HashNode<T, K>*>(node)->value;
    }
  }
  [[nodiscard]] const ZoVHash& engine() const noexcept { return hash_; }
  [[nodiscard]] const H& policy() const noexcept { return policy_; }

 protected:
  [[nodiscard]] T* locate(const K& key) const final { return valueOf(find(formOf(key))); }
  int take(const K& key, T* out) final {
    Node* const node = find(formOf(key));
    if (!node) return ZoResult::refused;
    if (out) {
      if (const int status = zo::moveElement<T>(out, &node->value)) return status;
    }
    hash_.removeNode(node);
    return ZoResult::ok;
  }

 private:
  template <class V, class Key, class Policy>
  friend class ZoHashDictIterator;
  template <class V, class Key, class Policy>
  friend class ZoHashDictCIterator;

  using Node = zo::HashNode<T, K>;
  static constexpr unsigned kAhead = 12;  // buckets

  [[nodiscard]] static T* valueOf(Node* node) noexcept { return node ? &node->value : nullptr; }

  // The policy's own functions, not those of a class derived from it.
  [[nodiscard]] static decltype(auto) formOf(const K& key) {
    if constexpr (zo::LookUpForm<H, K>) {
      return H::lookUpForm(key);
    } else {
      return static_cast<const K&>(key);  // NOLINT(readability-redundant-casting): a reference
    }
  }
  template <class Form>
  [[nodiscard]] zo::HashedKey hashOf(const Form& key) const {
    if constexpr (requires { H::hashKey(key); }) {
      return H::hashKey(key);
    } else {
      return {policy_.H::hash(key), true};
    }
  }
  template <class Form>
  [[nodiscard]] bool matches(ZoVHashNode* node, const Form& key, zo::HashedKey hashed) const {
    if (node->hash != hashed.hash()) return false;
    const bool plain = node->plain && hashed.plain();
    const K& mine = static_cast<Node*>(node)->key;
    if constexpr (requires { H::isEqual(mine, key, plain); }) {
      return H::isEqual(mine, key, plain);
    } else {
      return policy_.H::compare(mine, key) == 0;
    }
  }

  template <class Form>
  [[nodiscard]] Node* find(const Form& key) const {
    const ZoVHashTable* const table = hash_.table_;
    if (!table) return nullptr;
    const zo::HashedKey hashed = hashOf(key);
    ZoVHashNode* node = *table->chain(table->bucketOf(hashed.hash()));
    if (!node || matches(node, key, hashed)) return static_cast<Node*>(node);
    if (table->isIndexed()) return findIndexed(key, hashed, fingerprintOf(key));
    do {
      node = node->next;
    } while (node && !matches(node, key, hashed));
    return static_cast<Node*>(node);
  }

  template <class Form>
  [[nodiscard]] unsigned fingerprintOf(const Form& key) const {
    if constexpr (requires { H::fingerprintKey(key); }) {
      return H::fingerprintKey(key);
    } else if constexpr (requires { policy_.H::fingerprint(key); }) {
      return policy_.H::fingerprint(key);
    } else {
      return 0;
    }
  }
  template <class Form>
  [[nodiscard]] Node* findIndexed(const Form& key, zo::HashedKey hashed,
                                  unsigned fingerprint) const {
    ZoVHashNode* node = nullptr;
    std::size_t from = 0;
    do {
      node = hash_.table_->indexed(hashed.hash(), fingerprint, from);
    } while (node && !matches(node, key, hashed));
    return static_cast<Node*>(node);
  }

  template <class Key, class Value>
  int insertNew(Key&& key, Value&& value) {
    if (const int status = makeTable()) return status;
    if (hash_.isOverloaded() && hash_.grow() != ZoResult::ok) return ZoResult::refused;
    if (entries() == zo::npos - 1) return ZoResult::refused;
    auto* const table = static_cast<ZoHashTable<T, K>*>(hash_.table_);
    const zo::HashedKey hashed = hashOf(formOf(key));
    const unsigned bucket = table->bucketOf(hashed.hash());
    ZoVHashNode** link = table->chain(bucket);
    const bool collides = *link != nullptr;
    if (!table->isIndexed()) {
      unsigned length = 0;
      for (; *link; link = &(*link)->next, ++length) {
        if (matches(*link, formOf(key), hashed)) return ZoResult::refused;
      }
      if (length >= ZoVHashTable::kLongChain) hash_.makeIndex(ZoHashKey<K>(policy_));
    }
    unsigned fingerprint = 0;
    if (table->isIndexed()) {
      fingerprint = fingerprintOf(formOf(key));
      if (findIndexed(formOf(key), hashed, fingerprint)) return ZoResult::refused;
    }
    ZoVHashNode* node = nullptr;
    if (const int status =
            table->makeNode(node, std::forward<Key>(key), std::forward<Value>(value)))
      return status;
    node->hash = hashed.hash();
    node->plain = hashed.plain();
    node->fingerprint = fingerprint & ZoVHashNode::kFingerprintBits;
    if (table->isIndexed()) {
      table->append(bucket, node);
    } else {
      *link = node;
    }
    ++hash_.entries_;
    if (collides) ++hash_.collisions_;
    return ZoResult::ok;
  }

  int makeTable() {
    if (hash_.table_) return ZoResult::ok;
    hash_.table_ = ZoHashTable<T, K>::make(buckets());
    if (!hash_.table_) return ZoResult::outOfMemory;
    hash_.buckets_ = hash_.table_->buckets();
    return ZoResult::ok;
  }

  ZoVHash hash_;
  H policy_;
};

template <class T, class K, class H>
inline constexpr bool zo::isCopyable<ZoHashDict<T, K, H>> = zo::isCopyable<K> && zo::isCopyable<T>;
