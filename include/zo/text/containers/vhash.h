// The hash table engine: unique keys and their values, of unknown types, in chains; its storage and
// its iterator.
//
// Everything that depends on the types goes through the storage object and the key policy;
// ZoHashDict<T, K, H> supplies both and is what programs use. Elements are visited bucket by
// bucket, and within a bucket in the order of their insertion. Keys and values keep their addresses
// until they are removed, also while the table grows.
//
// The hash value of a key is kept beside it, so every call on one table must bring a policy that
// hashes alike.
//
// Errors:  0 success; 1 refused (key present, key absent, null key, value or object, no storage, an
//          element that cannot be copied, and an insertion that finds no memory to grow the table);
//          2 out of memory. Nothing has changed then, with one exception: resize(). An exception of
//          an element's copy or of the policy leaves the elements as they were. Constructors and
//          assignment, which have no status, throw std::bad_alloc.
// Threads: any number of readers, or one writer.
// Cost:    O(1) on average for a key; O(entries + buckets) for contains and findKey with a compare
//          object. Whatever the keys, also when all hash alike: a chain that has come to kLongChain
//          nodes makes the table index its nodes by hash value and fingerprint, and then insertion,
//          look-up and removal take O(1) on average for keys whose fingerprints differ (text:
//          always). The index takes 32 to 64 bytes for a node and 8 for a bucket; without memory
//          for it chains are walked. Order and numbers are the same with and without it.
#pragma once

#include <zo/config.h>
#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/position.h>
#include <zo/text/containers/vcallbacks.h>

#include <cstddef>

template <class T, class K, class H>
class ZoHashDict;
namespace zo {
class ChainIndex;
}

struct ZoVHashNode {
  ZoVHashNode* next = nullptr;
  unsigned hash = 0;
  // As its policy said (zo/text/hashed_key.h); set by typed dictionaries.
  unsigned plain : 1 = 0;
  unsigned fingerprint : 31 = 0;  // set while the table is indexed

  static constexpr unsigned kFingerprintBits = 0x7FFFFFFF;
};

// How well a table spreads its keys.
struct ZoHashStats {
  unsigned buckets = 0;
  unsigned entries = 0;
  unsigned usedBuckets = 0;
  unsigned longestChain = 0;
  unsigned collisions = 0;  // insertions into a chain that held an element, since the last resize
};

// The chains of a table. Links are the same for all types and stand here; what touches a key or a
// value is left to the typed storage.
class ZO_COM_API ZoVHashTable {
 public:
  virtual ~ZoVHashTable();  // the typed storage has called removeAll()
  ZoVHashTable(const ZoVHashTable&) = delete;
  ZoVHashTable& operator=(const ZoVHashTable&) = delete;

  // An empty storage of the same type with n buckets; null when there is no memory or n is 0.
  [[nodiscard]] virtual ZoVHashTable* makeNew(unsigned buckets) const = 0;
  // A node with copies of key and value, not in a chain yet. `node` is null unless the status is 0.
  [[nodiscard]] virtual int newNode(const void* key, const void* value, ZoVHashNode*& node) = 0;
  virtual void deleteNode(ZoVHashNode* node) = 0;
  [[nodiscard]] virtual const void* key(const ZoVHashNode* node) const = 0;
  [[nodiscard]] virtual void* value(ZoVHashNode* node) const = 0;
  virtual int assignKey(void* to, const void* from) = 0;
  virtual int assignValue(void* to, const void* from) = 0;
  virtual int moveValue(void* to, void* from) = 0;

  // The first node of a chain, or null.
  [[nodiscard]] virtual ZoVHashNode* first(unsigned bucket) const;
  // Steps to the next node of the chain; null and false at its end.
  virtual bool next(ZoVHashNode*& node) const;
  [[nodiscard]] virtual bool isBucketEmpty(unsigned bucket) const;
  virtual void append(unsigned bucket, ZoVHashNode* node);  // at the end of the chain
  virtual void unlink(unsigned bucket, ZoVHashNode* node);
  virtual void removeAll();  // deletes every node; the buckets stay

  [[nodiscard]] unsigned buckets() const noexcept { return bucketCount_; }
  [[nodiscard]] unsigned bucketOf(unsigned hash) const noexcept {
    return mask_ ? hash & mask_ : hash % bucketCount_;
  }
  [[nodiscard]] ZoVHashNode** chain(unsigned bucket) const noexcept { return chains_ + bucket; }
  // Takes over the nodes' memory of a storage of the same type.
  void absorb(ZoVHashTable& other) noexcept { pool_.absorb(other.pool_); }

  // Nodes in a chain from which on the table is indexed.
  static constexpr unsigned kLongChain = 64;
  [[nodiscard]] bool isIndexed() const noexcept { return index_ != nullptr; }
  // Indexes all nodes, by the fingerprints that they have. Without memory there is no index.
  void makeIndex(unsigned entries) noexcept;
  // Of an indexed table: the nodes with this hash value and fingerprint, one after the other; null
  // at the end. `from` is 0 at first.
  [[nodiscard]] ZoVHashNode* indexed(unsigned hash, unsigned fingerprint,
                                     std::size_t& from) const noexcept;

 protected:
  ZoVHashTable(std::size_t nodeSize, std::size_t alignment) noexcept : pool_(nodeSize, alignment) {}

  bool makeBuckets(unsigned n) noexcept;  // once, before anything else

  zo::NodePool pool_;

 private:
  ZoVHashNode** chains_ = nullptr;
  unsigned bucketCount_ = 0;
  unsigned mask_ = 0;  // the number of buckets - 1 when that is a power of two
  zo::ChainIndex* index_ = nullptr;
};

class ZO_COM_API ZoVHash {
 public:
  static constexpr unsigned kDefaultBuckets = 128;
  static constexpr double kDefaultLoadFactor = 0.7;

  // Takes the storage over; with null the table has 0 buckets and refuses every insertion.
  // `buckets` is the number the storage was made with (its own number counts). A load factor that
  // is not above 0 gives the default.
  explicit ZoVHash(ZoVHashTable* table, unsigned buckets = kDefaultBuckets,
                   double loadFactor = kDefaultLoadFactor);
  ZoVHash(const ZoVHash& other);
  ZoVHash(ZoVHash&& other) noexcept;  // the other is left without storage
  ZoVHash& operator=(const ZoVHash& other);
  ZoVHash& operator=(ZoVHash&& other) noexcept;

  // The order of the virtual operations is part of the interface.
  virtual ~ZoVHash();
  // Any key that compares equal, looked for in all buckets.
  virtual bool contains(const void* key, const ZoVHashCompare* compare) const;
  [[nodiscard]] virtual unsigned entries() const;
  // Copies the first such key, as it is stored, to *outKey.
  [[nodiscard]] virtual int findKey(const void* key, void* outKey,
                                    const ZoVHashCompare* compare) const;
  [[nodiscard]] virtual int getAt(const void* key, void* outValue, const ZoVHashKey* hashKey) const;
  [[nodiscard]] virtual bool isEmpty() const;
  virtual bool isValid(const void* key, const ZoVHashKey* hashKey) const;  // the key is present
  [[nodiscard]] virtual double collisionRatio() const;  // collisions / entries; 0 when empty
  // Rehashes into the given number of buckets, doubled while the load factor asks for more. Refuses
  // 0 buckets and a load factor that is not above 0.
  [[nodiscard]] virtual int setCapacity(unsigned buckets, double loadFactor,
                                        const ZoVHashKey* hashKey);
  virtual int apply(ZoVHashApply* applyFn);                            // to the values
  virtual void* at(const void* key, const ZoVHashKey* hashKey) const;  // the value, or null
  // Refuses a key that is present. The load is tested before the key is looked up, so a refused
  // insertion may still have grown the table; that is deliberate.
  [[nodiscard]] virtual int insertAt(const void* key, const void* value, const ZoVHashKey* hashKey);
  // Refuses an absent key.
  [[nodiscard]] virtual int setAt(const void* key, const void* value, const ZoVHashKey* hashKey);
  virtual int removeAll();  // the number of buckets stays
  virtual int removeAt(const void* key, void* outValue, const ZoVHashKey* hashKey);

  // The bucket of a key that is present, or npos.
  [[nodiscard]] unsigned getPosition(const void* key, const ZoVHashKey* hashKey) const;
  // Doubles the number of buckets and inserts everything anew, in bucket and chain order;
  // collisions are counted anew. 1 without storage. 2 when there is no memory: then the storage is
  // gone, with all elements. That is deliberate; insertAt and setCapacity ask for the memory first
  // and lose nothing.
  [[nodiscard]] int resize(const ZoVHashKey* hashKey);

  [[nodiscard]] unsigned buckets() const noexcept { return buckets_; }
  [[nodiscard]] double loadFactor() const noexcept { return loadFactor_; }
  [[nodiscard]] const ZoVHashTable* table() const noexcept { return table_; }  // or null
  [[nodiscard]] ZoHashStats stats() const;
  // True when fields, chains and kept hash values agree, and no key is there twice.
  [[nodiscard]] bool validate(const ZoVHashKey* hashKey) const;

 private:
  template <class T, class K, class H>
  friend class ZoHashDict;
  friend class ZoVHashIterator;

  [[nodiscard]] bool isOverloaded() const noexcept {
    return static_cast<double>(entries_) / static_cast<double>(buckets_) > loadFactor_;
  }
  int grow();                          // like resize, but loses nothing
  int rehash(unsigned buckets);        // into so many, doubled while they are too few
  void moveInto(ZoVHashTable* table);  // every element, to a new storage
  void makeIndex(const ZoVHashKey& hashKey);
  void removeNode(ZoVHashNode* node);
  ZoVHashNode* find(const void* key, const ZoVHashKey* hashKey) const;
  ZoVHashNode* lookUp(const void* key, unsigned hash, const ZoVHashKey& hashKey,
                      unsigned& walked) const;
  template <class Visit>
  ZoVHashNode* findWhere(Visit visit) const;
  ZoVHashNode* scan(const void* key, const zo::ElementCompare* compare) const;
  void swap(ZoVHash& other) noexcept;

  unsigned entries_ = 0;
  unsigned buckets_;  // also of a typed dictionary that has no storage yet
  unsigned collisions_ = 0;
  unsigned removals_ = 0;  // lets an iterator see that its node may be gone
  double loadFactor_;
  ZoVHashTable* table_;
};

static_assert(sizeof(ZoVHash) == 8 + 4 * 4 + 8 + 8,
              "virtual operations, entries, buckets, collisions, removals, load factor, storage");

// Stands on an element, so it survives every insertion and the removal of other elements; growing
// the table changes what comes next. When its element is removed by someone else it is not valid:
// after any removal its next use looks for its node, O(entries). (An element that has been inserted
// meanwhile in the same memory passes for its own.) The table must outlive it.
class ZO_COM_API ZoVHashIterator {
 public:
  explicit ZoVHashIterator(ZoVHash& hash) noexcept : hash_(&hash) { reset(); }

  void reset() noexcept { toFirst(); }  // to the first element
  void reset(ZoVHash& hash) noexcept {
    hash_ = &hash;
    reset();
  }
  // Movements tell whether the iterator is valid afterwards.
  bool toFirst() noexcept;
  [[nodiscard]] bool atFirst() const noexcept;
  bool next() noexcept;
  [[nodiscard]] bool isValid() const noexcept { return node() != nullptr; }
  [[nodiscard]] void* current() const noexcept;    // the value; null when not valid
  [[nodiscard]] const void* key() const noexcept;  // null when not valid
  // To the next element behind the current one whose key compares equal: the one it stands on is
  // not looked at, nor is the first by a fresh iterator.
  bool findNext(const void* key, const zo::ElementCompare* compare);
  int remove(void* outValue);  // stands on the following element then

  [[nodiscard]] ZoVHashNode* node() const noexcept {
    if (removals_ != hash_->removals_) find();
    return node_;
  }

 private:
  bool stand(ZoVHashNode* node) noexcept;
  ZoVHashNode* firstFrom(unsigned bucket) const noexcept;
  ZoVHashNode* following(const ZoVHashNode* node) const noexcept;
  void find() const noexcept;

  ZoVHash* hash_;
  mutable ZoVHashNode* node_ = nullptr;
  mutable unsigned removals_ = 0;
};
