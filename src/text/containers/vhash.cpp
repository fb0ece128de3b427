#include <zo/results.h>
#include <zo/text/containers/vhash.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace {
constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position
constexpr unsigned kMostBuckets = 1u << 31;
}  // namespace

ZoVHashTable::~ZoVHashTable() { zo::freeBlock(static_cast<void*>(chains_), alignof(ZoVHashNode*)); }

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
  while (*link) link = &(*link)->next;
  node->next = nullptr;
  *link = node;
}

void ZoVHashTable::unlink(unsigned bucket, ZoVHashNode* node) {
  ZoVHashNode** link = chain(bucket);
  while (*link != node) link = &(*link)->next;
  *link = node->next;
  ++removals_;
}

void ZoVHashTable::removeAll() {
  for (unsigned b = 0; b < bucketCount_; ++b) {
    while (ZoVHashNode* const node = chains_[b]) {
      chains_[b] = node->next;
      deleteNode(node);
    }
  }
  pool_.clear();
  ++removals_;
}

void ZoVHashTable::absorb(ZoVHashTable& other) noexcept {
  pool_.absorb(other.pool_);
  removals_ = std::max(removals_, other.removals_) + 1;
}

ZoVHash::ZoVHash(ZoVHashTable* table, unsigned, double loadFactor)
    : buckets_(table ? table->buckets() : 0),
      loadFactor_(loadFactor > 0 ? loadFactor : kDefaultLoadFactor),
      table_(table) {}

ZoVHash::ZoVHash(const ZoVHash& other) : ZoVHash(nullptr, 0, other.loadFactor_) {
  if (!other.table_) return;
  ZoVHash copy(other.table_->makeNew(other.buckets_), other.buckets_, other.loadFactor_);
  if (!copy.table_) throw std::bad_alloc();
  for (unsigned b = 0; b < other.buckets_; ++b) {
    for (ZoVHashNode* node = other.table_->first(b); node; other.table_->next(node)) {
      ZoVHashNode* made = nullptr;
      const int status =
          copy.table_->newNode(other.table_->key(node), other.table_->value(node), made);
      if (status == ZoResult::outOfMemory) throw std::bad_alloc();
      if (status != ZoResult::ok) return;  // elements that cannot be copied: an empty table
      made->hash = node->hash;
      made->plain = node->plain;
      copy.table_->append(b, made);
      ++copy.entries_;
    }
  }
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
  ZoVHashTable* const table = table_->makeNew(buckets);
  if (!table) return ZoResult::outOfMemory;
  loadFactor_ = loadFactor;
  moveInto(table);
  return ZoResult::ok;
}

int ZoVHash::apply(ZoVHashApply* applyFn) {
  if (!applyFn) return ZoResult::refused;
  for (unsigned b = 0; b < buckets_; ++b) {
    for (ZoVHashNode* node = table_->first(b); node; table_->next(node)) {
      applyFn->applyTo(table_->value(node));
    }
  }
  return ZoResult::ok;
}

void* ZoVHash::at(const void* key, const ZoVHashKey* hashKey) const {
  ZoVHashNode* const node = find(key, hashKey);
  return node ? table_->value(node) : nullptr;
}

int ZoVHash::insertAt(const void* key, const void* value, const ZoVHashKey* hashKey) {
  if (!table_ || !key || !value || !hashKey || entries_ == kMostEntries) return ZoResult::refused;
  if (isOverloaded() && grow() != ZoResult::ok) return ZoResult::refused;
  if (find(key, hashKey)) return ZoResult::refused;
  const unsigned hash = hashKey->hash(key);
  ZoVHashNode* node = nullptr;
  if (const int status = table_->newNode(key, value, node)) return status;
  node->hash = hash;
  insertNode(node);
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
  return ZoResult::ok;
}

int ZoVHash::removeAt(const void* key, void* outValue, const ZoVHashKey* hashKey) {
  ZoVHashNode* const node = find(key, hashKey);
  if (!node) return ZoResult::refused;
  if (outValue) {
    if (const int status = table_->moveValue(outValue, table_->value(node))) return status;
  }
  removeNode(table_->bucketOf(node->hash), node);
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
  return ZoResult::outOfMemory;
}

int ZoVHash::grow() {
  if (buckets_ >= kMostBuckets) return ZoResult::outOfMemory;
  ZoVHashTable* const table = table_->makeNew(buckets_ * 2);
  if (!table) return ZoResult::outOfMemory;
  moveInto(table);
  return ZoResult::ok;
}

// As if each element were inserted anew, with the test of the load (which may grow the table once
// more on the way).
void ZoVHash::moveInto(ZoVHashTable* table) {
  const std::unique_ptr<ZoVHashTable> old(std::exchange(table_, table));
  buckets_ = table->buckets();
  entries_ = 0;
  collisions_ = 0;
  for (unsigned b = 0; b < old->buckets(); ++b) {
    ZoVHashNode* node = old->first(b);
    *old->chain(b) = nullptr;
    while (node) {
      ZoVHashNode* const following = node->next;
      if (isOverloaded())
        static_cast<void>(grow());  // without memory the table stays as dense as it is
      insertNode(node);
      node = following;
    }
  }
  table_->absorb(*old);
}

void ZoVHash::insertNode(ZoVHashNode* node) {
  const unsigned bucket = table_->bucketOf(node->hash);
  if (!table_->isBucketEmpty(bucket)) ++collisions_;
  table_->append(bucket, node);
  ++entries_;
}

void ZoVHash::removeNode(unsigned bucket, ZoVHashNode* node) {
  table_->unlink(bucket, node);
  table_->deleteNode(node);
  --entries_;
}

ZoVHashNode* ZoVHash::find(const void* key, const ZoVHashKey* hashKey) const {
  if (!key || !hashKey || entries_ == 0) return nullptr;
  const unsigned hash = hashKey->hash(key);
  ZoVHashNode* node = table_->first(table_->bucketOf(hash));
  // Keys whose hash values differ are compared too: a policy may hash some equal keys differently.
  while (node && hashKey->compare(table_->key(node), key) != 0) table_->next(node);
  return node;
}

ZoVHashNode* ZoVHash::scan(const void* key, const zo::ElementCompare* compare) const {
  if (!key || !compare) return nullptr;
  for (unsigned b = 0; b < buckets_; ++b) {
    for (ZoVHashNode* node = table_->first(b); node; table_->next(node)) {
      if (compare->compare(table_->key(node), key) == 0) return node;
    }
  }
  return nullptr;
}

ZoHashStats ZoVHash::stats() const {
  ZoHashStats stats{.buckets = buckets_, .entries = entries_, .collisions = collisions_};
  for (unsigned b = 0; b < buckets_; ++b) {
    unsigned length = 0;
    for (ZoVHashNode* node = table_->first(b); node; table_->next(node)) ++length;
    if (length > 0) ++stats.usedBuckets;
    stats.longestChain = std::max(stats.longestChain, length);
  }
  return stats;
}

bool ZoVHash::validate(const ZoVHashKey* hashKey) const {
  if (!table_) return entries_ == 0 && buckets_ == 0;
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
  table_ = hash_->table_;
  removals_ = table_ ? table_->removals() : 0;
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
  table_ = hash_->table_;
  removals_ = table_ ? table_->removals() : 0;
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
  return here ? table_->value(here) : nullptr;
}

const void* ZoVHashIterator::key() const noexcept {
  const ZoVHashNode* const here = node();
  return here ? table_->key(here) : nullptr;
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
  hash_->removeNode(hash_->table_->bucketOf(gone->hash), gone);
  stand(after);
  return ZoResult::ok;
}
