#include <zo/results.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/vlist.h>

#include <algorithm>
#include <new>
#include <utility>

#include "text/containers/merge_sort.h"

namespace {
constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position
}

ZoVListMem::~ZoVListMem() = default;

ZoVList::ZoVList(const ZoVList& other) {
  if (!other.mem_) return;
  ZoVList copy(other.mem_->makeNew());
  if (!copy.mem_) throw std::bad_alloc();
  zo::throwIfNoMemory(copy.append(other));
  swap(copy);
}

ZoVList::ZoVList(ZoVList&& other) noexcept { swap(other); }

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
  delete mem_;
}

void ZoVList::swap(ZoVList& other) noexcept {
  std::swap(mem_, other.mem_);
  std::swap(first_, other.first_);
  std::swap(last_, other.last_);
  std::swap(entries_, other.entries_);
  // Every iterator over either list has to look for its node.
  removals_ = other.removals_ = std::max(removals_, other.removals_) + 1;
}

int ZoVList::getAt(unsigned i, void* out) const {
  void* const element = at(i);
  return element && out ? mem_->assign(out, element) : ZoResult::refused;
}

int ZoVList::setAt(unsigned i, const void* value) {
  void* const element = at(i);
  return element && value ? mem_->assign(element, value) : ZoResult::refused;
}

unsigned ZoVList::index(const void* value, const ZoVListCompare* compare) const {
  if (!value || !compare) return zo::npos;
  unsigned i = 0;
  for (ZoVListNode* node = first_; node; node = node->next, ++i) {
    if (compare->compare(mem_->element(node), value) == 0) return i;
  }
  return zo::npos;
}

bool ZoVList::isEqualTo(const ZoVList& other, const ZoVListCompare* compare) const {
  if (!compare || entries_ != other.entries_) return false;
  ZoVListNode* theirs = other.first_;
  for (ZoVListNode* node = first_; node; node = node->next, theirs = theirs->next) {
    if (compare->compare(mem_->element(node), other.mem_->element(theirs)) != 0) return false;
  }
  return true;
}

int ZoVList::append(const ZoVList& other) {
  if (!mem_ || other.entries_ > kMostEntries - entries_) return ZoResult::refused;
  ZoVList copies(mem_->makeNew());
  if (!copies.mem_) return ZoResult::outOfMemory;
  for (ZoVListNode* node = other.first_; node; node = node->next) {
    if (const int status = copies.append(other.mem_->element(node))) return status;
  }
  appendAll(copies);
  return ZoResult::ok;
}

// Moves the nodes of another list with the same type of storage to the end of this one.
void ZoVList::appendAll(ZoVList& other) noexcept {
  mem_->absorb(*other.mem_);
  while (ZoVListNode* const node = other.first_) {
    other.unlink(node);
    link(node, last_);
  }
}

int ZoVList::insertAt(unsigned i, const void* value) {
  if (i > entries_ || !value || !mem_ || entries_ == kMostEntries) return ZoResult::refused;
  ZoVListNode* const before = i == entries_ ? nullptr : getNodeAtIndex(i);
  ZoVListNode* node = nullptr;
  const int status = mem_->newNode(value, node);
  if (status == ZoResult::ok) link(node, before ? before->prev : last_);
  return status;
}

int ZoVList::fillAt(unsigned i, unsigned n, const void* value) {
  if (i > entries_ || n > kMostEntries - i || !value || !mem_) return ZoResult::refused;
  const unsigned inside = std::min(n, entries_ - i);
  ZoVList behind(mem_->makeNew());
  if (!behind.mem_) return ZoResult::outOfMemory;
  while (behind.entries_ < n - inside) {
    if (const int status = behind.append(value)) return status;
  }
  ZoVListNode* node = getNodeAtIndex(i);
  for (unsigned k = 0; k < inside; ++k, node = node->next) {
    if (const int status = mem_->assign(mem_->element(node), value)) return status;
  }
  appendAll(behind);
  return ZoResult::ok;
}

int ZoVList::apply(ZoVListApply* applyFn) const {
  if (!applyFn) return ZoResult::refused;
  for (ZoVListNode* node = first_; node; node = node->next) applyFn->applyTo(mem_->element(node));
  return ZoResult::ok;
}

int ZoVList::remove(const void* value, const ZoVListCompare* compare, bool all) {
  if (!value || !compare || !first_) return ZoResult::refused;
  // Matches go only when all have been compared: the value may be one of them, and comparing may
  // throw.
  const zo::PointerBuffer matches(all ? entries_ : 1);
  if (!matches) return ZoResult::outOfMemory;
  std::size_t n = 0;
  for (ZoVListNode* node = first_; node && (all || n == 0); node = node->next) {
    if (compare->compare(mem_->element(node), value) == 0) matches[n++] = node;
  }
  for (std::size_t i = 0; i < n; ++i) removeNode(static_cast<ZoVListNode*>(matches[i]), nullptr);
  return n > 0 ? ZoResult::ok : ZoResult::refused;
}

int ZoVList::removeNode(ZoVListNode* node, void* out) {
  if (!node) return ZoResult::refused;
  if (out) {
    if (const int status = mem_->moveOut(out, mem_->element(node))) return status;
  }
  unlink(node);
  mem_->deleteNode(node);
  return ZoResult::ok;
}

int ZoVList::removeAll(bool freeMemory) {
  while (first_) {
    ZoVListNode* const node = first_;
    first_ = node->next;
    mem_->deleteNode(node);
  }
  last_ = nullptr;
  entries_ = 0;
  ++removals_;
  if (freeMemory && mem_) mem_->freeMemory();
  return ZoResult::ok;
}

int ZoVList::sort(const ZoVListCompare* compare, bool ascending) {
  if (!compare) return ZoResult::refused;
  if (entries_ < 2) return ZoResult::ok;
  const zo::PointerBuffer order(entries_);
  if (!order) return ZoResult::outOfMemory;
  std::size_t n = 0;
  for (ZoVListNode* node = first_; node; node = node->next) order[n++] = mem_->element(node);
  bool changed = false;
  if (const int status =
          zo::mergeSort(order.data(), n, zo::Words::kPointers, *compare, ascending, changed))
    return status;
  if (changed) relink(order.data());
  return ZoResult::ok;
}

// Links the nodes anew in the order of the pointers to their elements.
void ZoVList::relink(void* const* order) noexcept {
  ZoVListNode* prev = nullptr;
  for (unsigned i = 0; i < entries_; ++i) {
    ZoVListNode* const node = mem_->node(order[i]);
    node->prev = prev;
    (prev ? prev->next : first_) = node;
    prev = node;
  }
  prev->next = nullptr;
  last_ = prev;
}

int ZoVList::reverse() {
  for (ZoVListNode* node = first_; node; node = node->prev) std::swap(node->next, node->prev);
  std::swap(first_, last_);
  return ZoResult::ok;
}

int ZoVList::copyFrom(const ZoVList& other) {
  if (!mem_) return ZoResult::refused;
  if (this == &other) return ZoResult::ok;
  ZoVList copy(mem_->makeNew());
  if (!copy.mem_) return ZoResult::outOfMemory;
  if (const int status = copy.append(other)) return status;
  swap(copy);
  return ZoResult::ok;
}

ZoVListNode* ZoVList::getNodeAtIndex(unsigned i) const noexcept {
  if (i >= entries_) return nullptr;
  if (i == entries_ - 1) return last_;
  ZoVListNode* node = first_;
  while (i-- > 0) node = node->next;
  return node;
}

bool ZoVList::validate() const noexcept {
  unsigned n = 0;
  const ZoVListNode* prev = nullptr;
  for (const ZoVListNode* node = first_; node; prev = node, node = node->next) {
    if (node->prev != prev || ++n > entries_) return false;
  }
  return prev == last_ && n == entries_ && (mem_ || n == 0);
}

void ZoVListIterator::find() const noexcept {
  removals_ = list_->removals_;
  const ZoVListNode* node = node_ ? list_->first_ : nullptr;
  while (node && node != node_) node = node->next;
  if (!node) node_ = nullptr;
}

int ZoVListIterator::insert(const void* value) {
  ZoVListNode* const before = node();
  if (!value || !list_->mem_ || list_->entries_ == kMostEntries) return ZoResult::refused;
  ZoVListNode* inserted = nullptr;
  if (const int status = list_->mem_->newNode(value, inserted)) return status;
  list_->link(inserted, before ? before->prev : list_->last_);
  stand(inserted);
  return ZoResult::ok;
}

int ZoVListIterator::remove(void* out) {
  ZoVListNode* const gone = node();
  ZoVListNode* const following = gone ? gone->next : nullptr;
  const int status = list_->removeNode(gone, out);
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
