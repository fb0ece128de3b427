#include <zo/results.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/vhash.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "text/containers/chain_index.h"

namespace {
constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position
constexpr unsigned kMostBuckets = 1u << 31;
}  // namespace

ZoVHashTable::~ZoVHashTable() {
  delete index_;
  zo::freeBlock(static_cast<void*>(chains_), alignof(ZoVHashNode*));
}

bool ZoVHashTable::makeBuckets(unsigned n) noexcept {
  if (n == 0) return false;
  void* const block = zo::allocateBlock(n * sizeof(ZoVHashNode*), alignof(ZoVHashNode*));
  if (!block) return false;
  chains_ = static_cast<ZoVHashNode**>(block);
  std::uninitialized_fill_n(chains_, n, nullptr);
  bucketCount_ = n;
  mask_ = (n & (n - 1)) == 0 ? n - 1 : 0;
  return true;
}

ZoVHashNode* ZoVHashTable::first(unsigned bucket) const { return chains_[bucket]; }

bool ZoVHashTable::next(ZoVHashNode*& node) const {
  node = node->next;
  return node != nullptr;
}

bool ZoVHashTable::isBucketEmpty(unsigned bucket) const { return !chains_[bucket]; }

void ZoVHashTable::append(unsigned bucket, ZoVHashNode* node) {
  ZoVHashNode** link = chain(bucket);
  if (index_ && *link) link = &index_->last(bucket)->next;
  while (*link) link = &(*link)->next;
  node->next = nullptr;
  *link = node;
  if (index_ && !index_->append(bucket, node)) delete std::exchange(index_, nullptr);
}

void ZoVHashTable::unlink(unsigned bucket, ZoVHashNode* node) {
  ZoVHashNode** link = chain(bucket);
  if (index_) {
    if (ZoVHashNode* const before = index_->remove(bucket, node)) link = &before->next;
  }
  while (*link != node) link = &(*link)->next;
  *link = node->next;
}

void ZoVHashTable::removeAll() {
  for (unsigned b = 0; b < bucketCount_; ++b) {
    while (ZoVHashNode* const node = chains_[b]) {
      chains_[b] = node->next;
      deleteNode(node);
    }
  }
  pool_.clear();
  delete std::exchange(index_, nullptr);
}

void ZoVHashTable::makeIndex(unsigned entries) noexcept {
  delete std::exchange(index_, nullptr);
  std::unique_ptr<zo::ChainIndex> index = zo::ChainIndex::make(bucketCount_, entries);
  if (!index) return;
  for (unsigned b = 0; b < bucketCount_; ++b) {
    for (ZoVHashNode* node = chains_[b]; node; node = node->next) {
      if (!index->append(b, node)) return;
    }
  }
  index_ = index.release();
}

ZoVHashNode* ZoVHashTable::indexed(unsigned hash, unsigned fingerprint,
                                   std::size_t& from) const noexcept {
  return index_->find(hash, fingerprint & ZoVHashNode::kFingerprintBits, from);
}

ZoVHash::ZoVHash(ZoVHashTable* table, unsigned, double loadFactor)
    : buckets_(table ? table->buckets() : 0),
      loadFactor_(loadFactor > 0 ? loadFactor : kDefaultLoadFactor),
      table_(table) {}

ZoVHash::ZoVHash(const ZoVHash& other) : ZoVHash(nullptr, 0, other.loadFactor_) {
  buckets_ = other.buckets_;
  if (!other.table_) return;
  ZoVHash copy(other.table_->makeNew(other.buckets_), other.buckets_, other.loadFactor_);
  if (!copy.table_) throw std::bad_alloc();
  for (unsigned b = 0; b < other.buckets_; ++b) {
    ZoVHashNode** link = copy.table_->chain(b);
    for (ZoVHashNode* node = other.table_->first(b); node; other.table_->next(node)) {
      const int status =
          copy.table_->newNode(other.table_->key(node), other.table_->value(node), *link);
      zo::throwIfNoMemory(status);
      if (status != ZoResult::ok) return;  // elements that cannot be copied: an empty table
      ZoVHashNode* const made = *link;
      made->hash = node->hash;
      made->plain = node->plain;
      made->fingerprint = node->fingerprint;
      link = &made->next;
      ++copy.entries_;
    }
  }
  if (other.table_->isIndexed()) copy.table_->makeIndex(copy.entries_);
  copy.collisions_ = other.collisions_;
  swap(copy);
}

ZoVHash::ZoVHash(ZoVHash&& other) noexcept : ZoVHash(nullptr, 0, other.loadFactor_) { swap(other); }

ZoVHash& ZoVHash::operator=(const ZoVHash& other) {
  if (this != &other) {
    ZoVHash copy(other);
    swap(copy);
  }
  return *this;
}

ZoVHash& ZoVHash::operator=(ZoVHash&& other) noexcept {
  if (this != &other) {
    ZoVHash taken(std::move(other));
    swap(taken);
  }
  return *this;
}

ZoVHash::~ZoVHash() { delete table_; }

void ZoVHash::swap(ZoVHash& other) noexcept {
  std::swap(entries_, other.entries_);
  std::swap(buckets_, other.buckets_);
  std::swap(collisions_, other.collisions_);
  std::swap(loadFactor_, other.loadFactor_);
  std::swap(table_, other.table_);
  // Every iterator over either table has to look for its node.
  removals_ = other.removals_ = std::max(removals_, other.removals_) + 1;
}

bool ZoVHash::contains(const void* key, const ZoVHashCompare* compare) const {
  return scan(key, compare) != nullptr;
}

unsigned ZoVHash::entries() const { return entries_; }

int ZoVHash::findKey(const void* key, void* outKey, const ZoVHashCompare* compare) const {
  ZoVHashNode* const node = scan(key, compare);
  return node && outKey ? table_->assignKey(outKey, table_->key(node)) : ZoResult::refused;
}

int ZoVHash::getAt(const void* key, void* outValue, const ZoVHashKey* hashKey) const {
  ZoVHashNode* const node = find(key, hashKey);
  return node && outValue ? table_->assignValue(outValue, table_->value(node)) : ZoResult::refused;
}

bool ZoVHash::isEmpty() const { return entries_ == 0; }

bool ZoVHash::isValid(const void* key, const ZoVHashKey* hashKey) const {
  return find(key, hashKey) != nullptr;
}

double ZoVHash::collisionRatio() const {
  return entries_ == 0 ? 0.0 : static_cast<double>(collisions_) / static_cast<double>(entries_);
}

int ZoVHash::setCapacity(unsigned buckets, double loadFactor, const ZoVHashKey* hashKey) {
  if (!table_ || !hashKey || buckets == 0 || !(loadFactor > 0)) return ZoResult::refused;
  const double before = std::exchange(loadFactor_, loadFactor);
  if (const int status = rehash(buckets)) {
    loadFactor_ = before;
    return status;
  }
  if (!table_->isIndexed() && stats().longestChain > ZoVHashTable::kLongChain) makeIndex(*hashKey);
  return ZoResult::ok;
}

int ZoVHash::apply(ZoVHashApply* applyFn) {
  if (!applyFn) return ZoResult::refused;
  findWhere([&](ZoVHashNode* node) {
    applyFn->applyTo(table_->value(node));
    return false;
  });
  return ZoResult::ok;
}

void* ZoVHash::at(const void* key, const ZoVHashKey* hashKey) const {
  ZoVHashNode* const node = find(key, hashKey);
  return node ? table_->value(node) : nullptr;
}

int ZoVHash::insertAt(const void* key, const void* value, const ZoVHashKey* hashKey) {
  if (!table_ || !key || !value || !hashKey || entries_ == kMostEntries) return ZoResult::refused;
  if (isOverloaded() && grow() != ZoResult::ok) return ZoResult::refused;
  const unsigned hash = hashKey->hash(key);
  unsigned walked = 0;
  if (lookUp(key, hash, *hashKey, walked)) return ZoResult::refused;
  if (walked >= ZoVHashTable::kLongChain) makeIndex(*hashKey);
  const unsigned fingerprint = table_->isIndexed() ? hashKey->fingerprint(key) : 0;
  ZoVHashNode* node = nullptr;
  if (const int status = table_->newNode(key, value, node)) return status;
  node->hash = hash;
  node->fingerprint = fingerprint & ZoVHashNode::kFingerprintBits;
  const unsigned bucket = table_->bucketOf(hash);
  if (!table_->isBucketEmpty(bucket)) ++collisions_;
  table_->append(bucket, node);
  ++entries_;
  return ZoResult::ok;
}

int ZoVHash::setAt(const void* key, const void* value, const ZoVHashKey* hashKey) {
  ZoVHashNode* const node = find(key, hashKey);
  return node && value ? table_->assignValue(table_->value(node), value) : ZoResult::refused;
}

int ZoVHash::removeAll() {
  if (table_) table_->removeAll();
  entries_ = 0;
  collisions_ = 0;
  ++removals_;
  return ZoResult::ok;
}

int ZoVHash::removeAt(const void* key, void* outValue, const ZoVHashKey* hashKey) {
  ZoVHashNode* const node = find(key, hashKey);
  if (!node) return ZoResult::refused;
  if (outValue) {
    if (const int status = table_->moveValue(outValue, table_->value(node))) return status;
  }
  removeNode(node);
  return ZoResult::ok;
}

unsigned ZoVHash::getPosition(const void* key, const ZoVHashKey* hashKey) const {
  const ZoVHashNode* const node = find(key, hashKey);
  return node ? table_->bucketOf(node->hash) : zo::npos;
}

int ZoVHash::resize(const ZoVHashKey* hashKey) {
  if (!table_ || !hashKey) return ZoResult::refused;
  if (grow() == ZoResult::ok) return ZoResult::ok;
  delete std::exchange(table_, nullptr);
  entries_ = buckets_ = collisions_ = 0;
  ++removals_;
  return ZoResult::outOfMemory;
}

int ZoVHash::grow() {
  return buckets_ < kMostBuckets ? rehash(buckets_ * 2) : ZoResult::outOfMemory;
}

int ZoVHash::rehash(unsigned buckets) {
  // Each element but the first is inserted after a test of the load.
  const double elements = entries_ == 0 ? 0 : static_cast<double>(entries_ - 1);
  while (elements / buckets > loadFactor_ && buckets <= kMostBuckets / 2) buckets *= 2;
  ZoVHashTable* const table = table_->makeNew(buckets);
  if (!table) return ZoResult::outOfMemory;
  moveInto(table);
  return ZoResult::ok;
}

// From the last node back to the first, each to the front of its chain: that keeps their order and
// walks no chain.
void ZoVHash::moveInto(ZoVHashTable* table) {
  const std::unique_ptr<ZoVHashTable> old(std::exchange(table_, table));
  buckets_ = table->buckets();
  collisions_ = 0;
  for (unsigned b = old->buckets(); b-- > 0;) {
    ZoVHashNode* reversed = nullptr;
    for (ZoVHashNode* node = std::exchange(*old->chain(b), nullptr); node;) {
      ZoVHashNode* const following = std::exchange(node->next, reversed);
      reversed = std::exchange(node, following);
    }
    while (reversed) {
      ZoVHashNode** const chain = table->chain(table->bucketOf(reversed->hash));
      if (*chain) ++collisions_;
      ZoVHashNode* const before = std::exchange(reversed->next, *chain);
      *chain = std::exchange(reversed, before);
    }
  }
  table->absorb(*old);
  if (old->isIndexed()) table->makeIndex(entries_);
  ++removals_;
}

// May throw what the policy throws; nothing has changed then.
void ZoVHash::makeIndex(const ZoVHashKey& hashKey) {
  findWhere([&](ZoVHashNode* node) {
    node->fingerprint = hashKey.fingerprint(table_->key(node)) & ZoVHashNode::kFingerprintBits;
    return false;
  });
  table_->makeIndex(entries_);
}

void ZoVHash::removeNode(ZoVHashNode* node) {
  table_->unlink(table_->bucketOf(node->hash), node);
  table_->deleteNode(node);
  --entries_;
  ++removals_;
}

ZoVHashNode* ZoVHash::find(const void* key, const ZoVHashKey* hashKey) const {
  if (!key || !hashKey || entries_ == 0) return nullptr;
  unsigned walked = 0;
  return lookUp(key, hashKey->hash(key), *hashKey, walked);
}

// Adds up the nodes of a chain that it walked over.
ZoVHashNode* ZoVHash::lookUp(const void* key, unsigned hash, const ZoVHashKey& hashKey,
                             unsigned& walked) const {
  const auto matches = [&](const ZoVHashNode* node) {
    return node->hash == hash && hashKey.compare(table_->key(node), key) == 0;
  };
  if (table_->isIndexed()) {
    const unsigned fingerprint = hashKey.fingerprint(key);
    std::size_t from = 0;
    ZoVHashNode* node = table_->indexed(hash, fingerprint, from);
    while (node && !matches(node)) node = table_->indexed(hash, fingerprint, from);
    return node;
  }
  ZoVHashNode* node = table_->first(table_->bucketOf(hash));
  for (; node && !matches(node); ++walked) table_->next(node);
  return node;
}

// The first node for which visit(node) is true.
template <class Visit>
ZoVHashNode* ZoVHash::findWhere(Visit visit) const {
  for (unsigned b = 0; table_ && b < buckets_; ++b) {
    for (ZoVHashNode* node = table_->first(b); node; table_->next(node)) {
      if (visit(node)) return node;
    }
  }
  return nullptr;
}

ZoVHashNode* ZoVHash::scan(const void* key, const zo::ElementCompare* compare) const {
  if (!key || !compare) return nullptr;
  return findWhere(
      [&](ZoVHashNode* node) { return compare->compare(table_->key(node), key) == 0; });
}

ZoHashStats ZoVHash::stats() const {
  ZoHashStats stats{.buckets = buckets_, .entries = entries_, .collisions = collisions_};
  for (unsigned b = 0; table_ && b < buckets_; ++b) {
    unsigned length = 0;
    for (ZoVHashNode* node = table_->first(b); node; table_->next(node)) ++length;
    if (length > 0) ++stats.usedBuckets;
    stats.longestChain = std::max(stats.longestChain, length);
  }
  return stats;
}

bool ZoVHash::validate(const ZoVHashKey* hashKey) const {
  if (!table_) return entries_ == 0;
  if (buckets_ != table_->buckets()) return false;
  unsigned n = 0;
  for (unsigned b = 0; b < buckets_; ++b) {
    for (ZoVHashNode* node = table_->first(b); node; table_->next(node)) {
      const void* const key = table_->key(node);
      if (++n > entries_ || table_->bucketOf(node->hash) != b) return false;
      if (hashKey && (hashKey->hash(key) != node->hash || find(key, hashKey) != node)) return false;
    }
  }
  return n == entries_;
}

bool ZoVHashIterator::stand(ZoVHashNode* node) noexcept {
  node_ = node;
  removals_ = hash_->removals_;
  return node != nullptr;
}

ZoVHashNode* ZoVHashIterator::firstFrom(unsigned bucket) const noexcept {
  if (!hash_->table_) return nullptr;
  for (; bucket < hash_->buckets_; ++bucket) {
    if (ZoVHashNode* const node = hash_->table_->first(bucket)) return node;
  }
  return nullptr;
}

ZoVHashNode* ZoVHashIterator::following(const ZoVHashNode* node) const noexcept {
  return node->next ? node->next : firstFrom(hash_->table_->bucketOf(node->hash) + 1);
}

// Is the node that it stood on still there?
void ZoVHashIterator::find() const noexcept {
  removals_ = hash_->removals_;
  ZoVHashNode* node = node_ ? firstFrom(0) : nullptr;
  while (node && node != node_) node = following(node);
  node_ = node;
}

bool ZoVHashIterator::toFirst() noexcept { return stand(firstFrom(0)); }

bool ZoVHashIterator::atFirst() const noexcept {
  const ZoVHashNode* const here = node();
  return here && here == firstFrom(0);
}

bool ZoVHashIterator::next() noexcept {
  const ZoVHashNode* const here = node();
  return stand(here ? following(here) : nullptr);
}

void* ZoVHashIterator::current() const noexcept {
  ZoVHashNode* const here = node();
  return here ? hash_->table_->value(here) : nullptr;
}

const void* ZoVHashIterator::key() const noexcept {
  const ZoVHashNode* const here = node();
  return here ? hash_->table_->key(here) : nullptr;
}

bool ZoVHashIterator::findNext(const void* key, const zo::ElementCompare* compare) {
  if (!key || !compare) return stand(nullptr);
  while (next()) {
    if (compare->compare(this->key(), key) == 0) return true;
  }
  return false;
}

int ZoVHashIterator::remove(void* outValue) {
  ZoVHashNode* const gone = node();
  if (!gone) return ZoResult::refused;
  if (outValue) {
    if (const int status = hash_->table_->moveValue(outValue, hash_->table_->value(gone)))
      return status;
  }
  ZoVHashNode* const after = following(gone);
  hash_->removeNode(gone);
  stand(after);
  return ZoResult::ok;
}
