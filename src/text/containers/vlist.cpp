#include <zo/results.h>
#include <zo/text/containers/vlist.h>

#include <algorithm>
#include <new>
#include <utility>

#include "text/containers/merge_sort.h"

namespace {
constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position
}

ZoVListMem::~ZoVListMem() = default;

ZoVList::ZoVList(const ZoVList& other) : m_mem(nullptr) {
  if (!other.m_mem) return;
  ZoVList copy(other.m_mem->makeNew());
  if (!copy.m_mem || copy.append(other) == ZoResult::outOfMemory) throw std::bad_alloc();
  swap(copy);
}

ZoVList::ZoVList(ZoVList&& other) noexcept : m_mem(nullptr) { swap(other); }

ZoVList& ZoVList::operator=(const ZoVList& other) {
  if (this != &other) {
    ZoVList copy(other);
    swap(copy);
  }
  return *this;
}

ZoVList& ZoVList::operator=(ZoVList&& other) noexcept {
  if (this != &other) {
    ZoVList taken(std::move(other));
    swap(taken);
  }
  return *this;
}

ZoVList::~ZoVList() {
  removeAll(false);
  delete m_mem;
}

void ZoVList::swap(ZoVList& other) noexcept {
  std::swap(m_mem, other.m_mem);
  std::swap(m_first, other.m_first);
  std::swap(m_last, other.m_last);
  std::swap(m_entries, other.m_entries);
  // Every iterator over either list has to look for its node.
  m_removals = other.m_removals = std::max(m_removals, other.m_removals) + 1;
}

int ZoVList::getAt(unsigned i, void* out) const {
  void* const element = at(i);
  return element && out ? m_mem->assign(out, element) : ZoResult::refused;
}

int ZoVList::setAt(unsigned i, const void* value) {
  void* const element = at(i);
  return element && value ? m_mem->assign(element, value) : ZoResult::refused;
}

unsigned ZoVList::index(const void* value, const ZoVListCompare* compare) const {
  if (!value || !compare) return zo::npos;
  unsigned i = 0;
  for (ZoVListNode* node = m_first; node; node = node->next, ++i) {
    if (compare->compare(m_mem->element(node), value) == 0) return i;
  }
  return zo::npos;
}

bool ZoVList::isEqualTo(const ZoVList& other, const ZoVListCompare* compare) const {
  if (!compare || m_entries != other.m_entries) return false;
  ZoVListNode* theirs = other.m_first;
  for (ZoVListNode* node = m_first; node; node = node->next, theirs = theirs->next) {
    if (compare->compare(m_mem->element(node), other.m_mem->element(theirs)) != 0) return false;
  }
  return true;
}

int ZoVList::append(const ZoVList& other) {
  if (!m_mem || other.m_entries > kMostEntries - m_entries) return ZoResult::refused;
  ZoVList copies(m_mem->makeNew());
  if (!copies.m_mem) return ZoResult::outOfMemory;
  for (ZoVListNode* node = other.m_first; node; node = node->next) {
    if (const int status = copies.append(other.m_mem->element(node))) return status;
  }
  appendAll(copies);
  return ZoResult::ok;
}

// Moves the nodes of another list with the same type of storage to the end of this one.
void ZoVList::appendAll(ZoVList& other) noexcept {
  m_mem->absorb(*other.m_mem);
  while (ZoVListNode* const node = other.m_first) {
    other.unlink(node);
    link(node, m_last);
  }
}

int ZoVList::insertAt(unsigned i, const void* value) {
  if (i > m_entries || !value || !m_mem || m_entries == kMostEntries) return ZoResult::refused;
  ZoVListNode* const before = i == m_entries ? nullptr : getNodeAtIndex(i);
  ZoVListNode* node = nullptr;
  const int status = m_mem->newNode(value, node);
  if (status == ZoResult::ok) link(node, before ? before->prev : m_last);
  return status;
}

int ZoVList::fillAt(unsigned i, unsigned n, const void* value) {
  if (i > m_entries || n > kMostEntries - i || !value || !m_mem) return ZoResult::refused;
  const unsigned inside = std::min(n, m_entries - i);
  ZoVList behind(m_mem->makeNew());
  if (!behind.m_mem) return ZoResult::outOfMemory;
  while (behind.m_entries < n - inside) {
    if (const int status = behind.append(value)) return status;
  }
  ZoVListNode* node = getNodeAtIndex(i);
  for (unsigned k = 0; k < inside; ++k, node = node->next) {
    if (const int status = m_mem->assign(m_mem->element(node), value)) return status;
  }
  appendAll(behind);
  return ZoResult::ok;
}

int ZoVList::apply(ZoVListApply* applyFn) const {
  if (!applyFn) return ZoResult::refused;
  for (ZoVListNode* node = m_first; node; node = node->next) applyFn->applyTo(m_mem->element(node));
  return ZoResult::ok;
}

int ZoVList::remove(const void* value, const ZoVListCompare* compare, bool all) {
  if (!value || !compare || !m_first) return ZoResult::refused;
  // Matches go only when all have been compared: the value may be one of them, and comparing may throw.
  const zo::PointerBuffer matches(all ? m_entries : 1);
  if (!matches) return ZoResult::outOfMemory;
  std::size_t n = 0;
  for (ZoVListNode* node = m_first; node && (all || n == 0); node = node->next) {
    if (compare->compare(m_mem->element(node), value) == 0) matches[n++] = node;
  }
  for (std::size_t i = 0; i < n; ++i) removeNode(static_cast<ZoVListNode*>(matches[i]), nullptr);
  return n > 0 ? ZoResult::ok : ZoResult::refused;
}

int ZoVList::removeNode(ZoVListNode* node, void* out) {
  if (!node) return ZoResult::refused;
  if (out) {
    if (const int status = m_mem->moveOut(out, m_mem->element(node))) return status;
  }
  unlink(node);
  m_mem->deleteNode(node);
  return ZoResult::ok;
}

int ZoVList::removeAll(bool freeMemory) {
  while (m_first) {
    ZoVListNode* const node = m_first;
    m_first = node->next;
    m_mem->deleteNode(node);
  }
  m_last = nullptr;
  m_entries = 0;
  ++m_removals;
  if (freeMemory && m_mem) m_mem->freeMemory();
  return ZoResult::ok;
}

int ZoVList::sort(const ZoVListCompare* compare, bool ascending) {
  if (!compare) return ZoResult::refused;
  if (m_entries < 2) return ZoResult::ok;
  const zo::PointerBuffer order(m_entries);
  if (!order) return ZoResult::outOfMemory;
  std::size_t n = 0;
  for (ZoVListNode* node = m_first; node; node = node->next) order[n++] = m_mem->element(node);
  bool changed = false;
  if (const int status = zo::mergeSort(order.data(), n, *compare, ascending, changed))
    return status;
  if (changed) relink(order.data());
  return ZoResult::ok;
}

// Links the nodes anew in the order of the pointers to their elements.
void ZoVList::relink(void* const* order) noexcept {
  ZoVListNode* prev = nullptr;
  for (unsigned i = 0; i < m_entries; ++i) {
    ZoVListNode* const node = m_mem->node(order[i]);
    node->prev = prev;
    (prev ? prev->next : m_first) = node;
    prev = node;
  }
  prev->next = nullptr;
  m_last = prev;
}

int ZoVList::reverse() {
  for (ZoVListNode* node = m_first; node; node = node->prev) std::swap(node->next, node->prev);
  std::swap(m_first, m_last);
  return ZoResult::ok;
}

int ZoVList::copyFrom(const ZoVList& other) {
  if (!m_mem) return ZoResult::refused;
  if (this == &other) return ZoResult::ok;
  ZoVList copy(m_mem->makeNew());
  if (!copy.m_mem) return ZoResult::outOfMemory;
  if (const int status = copy.append(other)) return status;
  swap(copy);
  return ZoResult::ok;
}

ZoVListNode* ZoVList::getNodeAtIndex(unsigned i) const noexcept {
  if (i >= m_entries) return nullptr;
  if (i == m_entries - 1) return m_last;
  ZoVListNode* node = m_first;
  while (i-- > 0) node = node->next;
  return node;
}

bool ZoVList::validate() const noexcept {
  unsigned n = 0;
  const ZoVListNode* prev = nullptr;
  for (const ZoVListNode* node = m_first; node; prev = node, node = node->next) {
    if (node->prev != prev || ++n > m_entries) return false;
  }
  return prev == m_last && n == m_entries && (m_mem || n == 0);
}

void ZoVListIterator::find() const noexcept {
  m_removals = m_list->m_removals;
  const ZoVListNode* node = m_node ? m_list->m_first : nullptr;
  while (node && node != m_node) node = node->next;
  if (!node) m_node = nullptr;
}

int ZoVListIterator::insert(const void* value) {
  ZoVListNode* const before = node();
  if (!value || !m_list->m_mem || m_list->m_entries == kMostEntries) return ZoResult::refused;
  ZoVListNode* inserted = nullptr;
  if (const int status = m_list->m_mem->newNode(value, inserted)) return status;
  m_list->link(inserted, before ? before->prev : m_list->m_last);
  stand(inserted);
  return ZoResult::ok;
}

int ZoVListIterator::remove(void* out) {
  ZoVListNode* const gone = node();
  ZoVListNode* const following = gone ? gone->next : nullptr;
  const int status = m_list->removeNode(gone, out);
  if (status == ZoResult::ok) stand(following);
  return status;
}

bool ZoVListIterator::findNext(const void* value, const zo::ElementCompare* compare) {
  if (!value || !compare) return stand(nullptr);
  while (next()) {
    if (compare->compare(current(), value) == 0) return true;
  }
  return false;
}

bool ZoVListIterator::findPrev(const void* value, const zo::ElementCompare* compare) {
  if (!value || !compare) return stand(nullptr);
  while (prev()) {
    if (compare->compare(current(), value) == 0) return true;
  }
  return false;
}
