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

ZoVHashTable::~ZoVHashTable() { zo::freeBlock(m_chains, alignof(ZoVHashNode*)); }

bool ZoVHashTable::makeBuckets(unsigned n) noexcept {
  if (n == 0) return false;
  void* const block = zo::allocateBlock(n * sizeof(ZoVHashNode*), alignof(ZoVHashNode*));
  if (!block) return false;
  m_chains = static_cast<ZoVHashNode**>(block);
  std::uninitialized_fill_n(m_chains, n, nullptr);
  m_bucketCount = n;
  m_mask = (n & (n - 1)) == 0 ? n - 1 : 0;
  return true;
}

ZoVHashNode* ZoVHashTable::first(unsigned bucket) const { return m_chains[bucket]; }

bool ZoVHashTable::next(ZoVHashNode*& node) const {
  node = node->next;
  return node != nullptr;
}

bool ZoVHashTable::isBucketEmpty(unsigned bucket) const { return !m_chains[bucket]; }

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
  ++m_removals;
}

void ZoVHashTable::removeAll() {
  for (unsigned b = 0; b < m_bucketCount; ++b) {
    while (ZoVHashNode* const node = m_chains[b]) {
      m_chains[b] = node->next;
      deleteNode(node);
    }
  }
  m_pool.clear();
  ++m_removals;
}

void ZoVHashTable::absorb(ZoVHashTable& other) noexcept {
  m_pool.absorb(other.m_pool);
  m_removals = std::max(m_removals, other.m_removals) + 1;
}

ZoVHash::ZoVHash(ZoVHashTable* table, unsigned, double loadFactor)
    : m_buckets(table ? table->buckets() : 0),
      m_loadFactor(loadFactor > 0 ? loadFactor : kDefaultLoadFactor),
      m_table(table) {}

ZoVHash::ZoVHash(const ZoVHash& other) : ZoVHash(nullptr, 0, other.m_loadFactor) {
  if (!other.m_table) return;
  ZoVHash copy(other.m_table->makeNew(other.m_buckets), other.m_buckets, other.m_loadFactor);
  if (!copy.m_table) throw std::bad_alloc();
  for (unsigned b = 0; b < other.m_buckets; ++b) {
    for (ZoVHashNode* node = other.m_table->first(b); node; other.m_table->next(node)) {
      ZoVHashNode* made = nullptr;
      const int status =
          copy.m_table->newNode(other.m_table->key(node), other.m_table->value(node), made);
      if (status == ZoResult::outOfMemory) throw std::bad_alloc();
      if (status != ZoResult::ok) return;  // elements that cannot be copied: an empty table
      made->hash = node->hash;
      made->plain = node->plain;
      copy.m_table->append(b, made);
      ++copy.m_entries;
    }
  }
  copy.m_collisions = other.m_collisions;
  swap(copy);
}

ZoVHash::ZoVHash(ZoVHash&& other) noexcept : ZoVHash(nullptr, 0, other.m_loadFactor) {
  swap(other);
}

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

ZoVHash::~ZoVHash() { delete m_table; }

void ZoVHash::swap(ZoVHash& other) noexcept {
  std::swap(m_entries, other.m_entries);
  std::swap(m_buckets, other.m_buckets);
  std::swap(m_collisions, other.m_collisions);
  std::swap(m_loadFactor, other.m_loadFactor);
  std::swap(m_table, other.m_table);
}

bool ZoVHash::contains(const void* key, const ZoVHashCompare* compare) const {
  return scan(key, compare) != nullptr;
}

unsigned ZoVHash::entries() const { return m_entries; }

int ZoVHash::findKey(const void* key, void* outKey, const ZoVHashCompare* compare) const {
  ZoVHashNode* const node = scan(key, compare);
  return node && outKey ? m_table->assignKey(outKey, m_table->key(node)) : ZoResult::refused;
}

int ZoVHash::getAt(const void* key, void* outValue, const ZoVHashKey* hashKey) const {
  ZoVHashNode* const node = find(key, hashKey);
  return node && outValue ? m_table->assignValue(outValue, m_table->value(node))
                          : ZoResult::refused;
}

bool ZoVHash::isEmpty() const { return m_entries == 0; }

bool ZoVHash::isValid(const void* key, const ZoVHashKey* hashKey) const {
  return find(key, hashKey) != nullptr;
}

double ZoVHash::collisionRatio() const {
  return m_entries == 0 ? 0.0 : static_cast<double>(m_collisions) / static_cast<double>(m_entries);
}

int ZoVHash::setCapacity(unsigned buckets, double loadFactor, const ZoVHashKey* hashKey) {
  if (!m_table || !hashKey || buckets == 0 || !(loadFactor > 0)) return ZoResult::refused;
  ZoVHashTable* const table = m_table->makeNew(buckets);
  if (!table) return ZoResult::outOfMemory;
  m_loadFactor = loadFactor;
  moveInto(table);
  return ZoResult::ok;
}

int ZoVHash::apply(ZoVHashApply* applyFn) {
  if (!applyFn) return ZoResult::refused;
  for (unsigned b = 0; b < m_buckets; ++b) {
    for (ZoVHashNode* node = m_table->first(b); node; m_table->next(node)) {
      applyFn->applyTo(m_table->value(node));
    }
  }
  return ZoResult::ok;
}

void* ZoVHash::at(const void* key, const ZoVHashKey* hashKey) const {
  ZoVHashNode* const node = find(key, hashKey);
  return node ? m_table->value(node) : nullptr;
}

int ZoVHash::insertAt(const void* key, const void* value, const ZoVHashKey* hashKey) {
  if (!m_table || !key || !value || !hashKey || m_entries == kMostEntries) return ZoResult::refused;
  if (isOverloaded() && grow() != ZoResult::ok) return ZoResult::refused;
  if (find(key, hashKey)) return ZoResult::refused;
  const unsigned hash = hashKey->hash(key);
  ZoVHashNode* node = nullptr;
  if (const int status = m_table->newNode(key, value, node)) return status;
  node->hash = hash;
  insertNode(node);
  return ZoResult::ok;
}

int ZoVHash::setAt(const void* key, const void* value, const ZoVHashKey* hashKey) {
  ZoVHashNode* const node = find(key, hashKey);
  return node && value ? m_table->assignValue(m_table->value(node), value) : ZoResult::refused;
}

int ZoVHash::removeAll() {
  if (m_table) m_table->removeAll();
  m_entries = 0;
  m_collisions = 0;
  return ZoResult::ok;
}

int ZoVHash::removeAt(const void* key, void* outValue, const ZoVHashKey* hashKey) {
  ZoVHashNode* const node = find(key, hashKey);
  if (!node) return ZoResult::refused;
  if (outValue) {
    if (const int status = m_table->moveValue(outValue, m_table->value(node))) return status;
  }
  removeNode(m_table->bucketOf(node->hash), node);
  return ZoResult::ok;
}

unsigned ZoVHash::getPosition(const void* key, const ZoVHashKey* hashKey) const {
  const ZoVHashNode* const node = find(key, hashKey);
  return node ? m_table->bucketOf(node->hash) : zo::npos;
}

int ZoVHash::resize(const ZoVHashKey* hashKey) {
  if (!m_table || !hashKey) return ZoResult::refused;
  if (grow() == ZoResult::ok) return ZoResult::ok;
  delete std::exchange(m_table, nullptr);
  m_entries = m_buckets = m_collisions = 0;
  return ZoResult::outOfMemory;
}

int ZoVHash::grow() {
  if (m_buckets >= kMostBuckets) return ZoResult::outOfMemory;
  ZoVHashTable* const table = m_table->makeNew(m_buckets * 2);
  if (!table) return ZoResult::outOfMemory;
  moveInto(table);
  return ZoResult::ok;
}

// As if each element were inserted anew, with the test of the load (which may grow the table once more on the way).
void ZoVHash::moveInto(ZoVHashTable* table) {
  const std::unique_ptr<ZoVHashTable> old(std::exchange(m_table, table));
  m_buckets = table->buckets();
  m_entries = 0;
  m_collisions = 0;
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
  m_table->absorb(*old);
}

void ZoVHash::insertNode(ZoVHashNode* node) {
  const unsigned bucket = m_table->bucketOf(node->hash);
  if (!m_table->isBucketEmpty(bucket)) ++m_collisions;
  m_table->append(bucket, node);
  ++m_entries;
}

void ZoVHash::removeNode(unsigned bucket, ZoVHashNode* node) {
  m_table->unlink(bucket, node);
  m_table->deleteNode(node);
  --m_entries;
}

ZoVHashNode* ZoVHash::find(const void* key, const ZoVHashKey* hashKey) const {
  if (!key || !hashKey || m_entries == 0) return nullptr;
  const unsigned hash = hashKey->hash(key);
  ZoVHashNode* node = m_table->first(m_table->bucketOf(hash));
  // Keys whose hash values differ are compared too: a policy may hash some equal keys differently.
  while (node && hashKey->compare(m_table->key(node), key) != 0) m_table->next(node);
  return node;
}

ZoVHashNode* ZoVHash::scan(const void* key, const zo::ElementCompare* compare) const {
  if (!key || !compare) return nullptr;
  for (unsigned b = 0; b < m_buckets; ++b) {
    for (ZoVHashNode* node = m_table->first(b); node; m_table->next(node)) {
      if (compare->compare(m_table->key(node), key) == 0) return node;
    }
  }
  return nullptr;
}

ZoHashStats ZoVHash::stats() const {
  ZoHashStats stats{.buckets = m_buckets, .entries = m_entries, .collisions = m_collisions};
  for (unsigned b = 0; b < m_buckets; ++b) {
    unsigned length = 0;
    for (ZoVHashNode* node = m_table->first(b); node; m_table->next(node)) ++length;
    if (length > 0) ++stats.usedBuckets;
    stats.longestChain = std::max(stats.longestChain, length);
  }
  return stats;
}

bool ZoVHash::validate(const ZoVHashKey* hashKey) const {
  if (!m_table) return m_entries == 0 && m_buckets == 0;
  if (m_buckets != m_table->buckets()) return false;
  unsigned n = 0;
  for (unsigned b = 0; b < m_buckets; ++b) {
    for (ZoVHashNode* node = m_table->first(b); node; m_table->next(node)) {
      const void* const key = m_table->key(node);
      if (++n > m_entries || m_table->bucketOf(node->hash) != b) return false;
      if (hashKey && (hashKey->hash(key) != node->hash || find(key, hashKey) != node)) return false;
    }
  }
  return n == m_entries;
}

bool ZoVHashIterator::stand(ZoVHashNode* node) noexcept {
  m_node = node;
  m_table = m_hash->m_table;
  m_removals = m_table ? m_table->removals() : 0;
  return node != nullptr;
}

ZoVHashNode* ZoVHashIterator::firstFrom(unsigned bucket) const noexcept {
  for (; bucket < m_hash->m_buckets; ++bucket) {
    if (ZoVHashNode* const node = m_hash->m_table->first(bucket)) return node;
  }
  return nullptr;
}

ZoVHashNode* ZoVHashIterator::following(const ZoVHashNode* node) const noexcept {
  return node->next ? node->next : firstFrom(m_hash->m_table->bucketOf(node->hash) + 1);
}

// Is the node that it stood on still there?
void ZoVHashIterator::find() const noexcept {
  m_table = m_hash->m_table;
  m_removals = m_table ? m_table->removals() : 0;
  ZoVHashNode* node = m_node ? firstFrom(0) : nullptr;
  while (node && node != m_node) node = following(node);
  m_node = node;
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
  return here ? m_table->value(here) : nullptr;
}

const void* ZoVHashIterator::key() const noexcept {
  const ZoVHashNode* const here = node();
  return here ? m_table->key(here) : nullptr;
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
    if (const int status = m_hash->m_table->moveValue(outValue, m_hash->m_table->value(gone)))
      return status;
  }
  ZoVHashNode* const after = following(gone);
  m_hash->removeNode(m_hash->m_table->bucketOf(gone->hash), gone);
  stand(after);
  return ZoResult::ok;
}
