#include <zo/results.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/varray.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

#include "text/containers/merge_sort.h"

namespace {
constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position
}

ZoVArrayTable::~ZoVArrayTable() = default;

ZoVArray::ZoVArray(ZoVArrayTable* table, unsigned capacity, unsigned growSize)
    : growSize_(growSize), table_(table) {
  // Without memory the array starts smaller, and grows when used.
  if (capacity > 0) static_cast<void>(resize(capacity));
}

ZoVArray::ZoVArray(const ZoVArray& other) : growSize_(other.growSize_) {
  if (!other.table_) return;
  table_ = other.table_->makeNew();
  if (!table_) throw std::bad_alloc();
  try {
    zo::throwIfNoMemory(copyFrom(other));
  } catch (...) {
    delete table_;
    throw;
  }
}

ZoVArray::ZoVArray(ZoVArray&& other) noexcept : growSize_(other.growSize_) { swap(other); }

ZoVArray& ZoVArray::operator=(const ZoVArray& other) {
  if (this != &other) {
    ZoVArray copy(other);
    swap(copy);
  }
  return *this;
}

ZoVArray& ZoVArray::operator=(ZoVArray&& other) noexcept {
  if (this != &other) {
    ZoVArray taken(std::move(other));
    swap(taken);
  }
  return *this;
}

ZoVArray::~ZoVArray() {
  removeAll(false);
  delete table_;
}

void ZoVArray::swap(ZoVArray& other) noexcept {
  std::swap(entries_, other.entries_);
  std::swap(capacity_, other.capacity_);
  std::swap(growSize_, other.growSize_);
  std::swap(table_, other.table_);
}

int ZoVArray::getAt(unsigned i, void* out) const {
  if (i >= entries_ || !out) return ZoResult::refused;
  return table_->assign(out, table_->at(i));
}

int ZoVArray::setAt(unsigned i, const void* value) {
  if (i >= entries_ || !value) return ZoResult::refused;
  return table_->assign(table_->at(i), value);
}

unsigned ZoVArray::index(const void* value, const ZoVArrayCompare* compare) const {
  if (!value || !compare) return zo::npos;
  for (unsigned i = 0; i < entries_; ++i) {
    if (compare->compare(table_->at(i), value) == 0) return i;
  }
  return zo::npos;
}

bool ZoVArray::isEqualTo(const ZoVArray& other, const ZoVArrayCompare* compare) const {
  if (!compare || entries_ != other.entries_) return false;
  for (unsigned i = 0; i < entries_; ++i) {
    if (compare->compare(table_->at(i), other.table_->at(i)) != 0) return false;
  }
  return true;
}

int ZoVArray::append(const ZoVArray& other) {
  const unsigned n = other.entries_;
  if (!table_) return ZoResult::refused;
  if (n == 0) return ZoResult::ok;
  if (const int status = makeRoom(n)) return status;
  // Only now: making room moves the elements when `other` is this array.
  const int status = table_->appendCopies(other.table_->at(0), n, entries_);
  if (status == ZoResult::ok) entries_ += n;
  return status;
}

int ZoVArray::insertAt(unsigned i, const void* value) {
  if (i > entries_ || !value || !table_) return ZoResult::refused;
  if (const int status = makeRoomFor(1, value)) return status;
  const int status = table_->insert(i, 1, value, entries_);
  if (status == ZoResult::ok) ++entries_;
  return status;
}

int ZoVArray::fillAt(unsigned i, unsigned n, const void* value) {
  if (i > entries_ || n > kMostEntries - i || !value || !table_) return ZoResult::refused;
  const unsigned inside = std::min(n, entries_ - i);
  const unsigned behind = n - inside;
  if (const int status = makeRoomFor(behind, value)) return status;
  for (unsigned k = i; k < i + inside; ++k) {
    if (const int status = table_->assign(table_->at(k), value)) return status;
  }
  if (behind == 0) return ZoResult::ok;
  const int status = table_->insert(entries_, behind, value, entries_);
  if (status == ZoResult::ok) entries_ += behind;
  return status;
}

int ZoVArray::apply(ZoVArrayApply* applyFn) const {
  if (!applyFn) return ZoResult::refused;
  for (unsigned i = 0; i < entries_; ++i) applyFn->applyTo(table_->at(i));
  return ZoResult::ok;
}

int ZoVArray::remove(const void* value, const ZoVArrayCompare* compare, bool all) {
  const unsigned found = index(value, compare);
  if (found == zo::npos) return ZoResult::refused;
  if (!all) return removeAt(found, nullptr);
  // All are compared before one goes: the value may be an element, and comparing may throw.
  const zo::PointerBuffer kept(entries_);
  if (!kept) return ZoResult::outOfMemory;
  unsigned n = 0;
  for (unsigned i = 0; i < entries_; ++i) {
    void* const element = table_->at(i);
    if (i < found || compare->compare(element, value) != 0) kept[n++] = element;
  }
  const int status = table_->keep(kept.data(), n, entries_);
  if (status == ZoResult::ok) entries_ = n;
  return status;
}

int ZoVArray::removeAt(unsigned i, void* out) {
  if (i >= entries_) return ZoResult::refused;
  if (out) {
    if (const int status = table_->moveOut(out, table_->at(i))) return status;
  }
  const int status = table_->erase(i, 1, entries_);
  if (status == ZoResult::ok) --entries_;
  return status;
}

int ZoVArray::removeAll(bool freeMemory) {
  if (!table_) return ZoResult::ok;
  if (entries_ > 0) table_->erase(0, entries_, entries_);
  entries_ = 0;
  return freeMemory ? resize(0) : ZoResult::ok;
}

int ZoVArray::sort(const ZoVArrayCompare* compare, bool ascending) {
  if (!compare) return ZoResult::refused;
  if (entries_ < 2) return ZoResult::ok;
  const zo::PointerBuffer order(entries_);
  if (!order) return ZoResult::outOfMemory;
  bool changed = false;
  if (table_
          ->holdsWords()) {  // sorting the elements themselves saves a step from pointer to element
    const std::size_t bytes = entries_ * sizeof(void*);
    std::memcpy(static_cast<void*>(order.data()), table_->at(0), bytes);
    const int status =
        zo::mergeSort(order.data(), entries_, zo::Words::kElements, *compare, ascending, changed);
    if (status == ZoResult::ok)
      std::memcpy(table_->at(0), static_cast<const void*>(order.data()), bytes);
    return status;
  }
  for (unsigned i = 0; i < entries_; ++i) order[i] = table_->at(i);
  const int status =
      zo::mergeSort(order.data(), entries_, zo::Words::kPointers, *compare, ascending, changed);
  return status == ZoResult::ok && changed ? table_->reorder(order.data(), entries_) : status;
}

int ZoVArray::reverse() { return entries_ > 1 ? table_->reverse(entries_) : ZoResult::ok; }

int ZoVArray::resize(unsigned capacity) {
  if (!table_) return ZoResult::refused;
  if (capacity == capacity_) return ZoResult::ok;
  const unsigned kept = std::min(entries_, capacity);
  if (kept < entries_) {
    table_->erase(kept, entries_ - kept, entries_);
    entries_ = kept;
  }
  const int status = table_->reallocate(capacity, entries_);
  if (status == ZoResult::ok) capacity_ = capacity;
  return status;
}

int ZoVArray::copyFrom(const ZoVArray& other) {
  if (!table_) return ZoResult::refused;
  if (this == &other) return ZoResult::ok;
  ZoVArray copy(table_->makeNew());
  if (!copy.table_) return ZoResult::outOfMemory;
  if (const int status = copy.resize(std::max(other.entries_, capacity_))) return status;
  if (const int status = copy.append(other)) return status;
  copy.growSize_ = growSize_;
  swap(copy);
  return ZoResult::ok;
}

int ZoVArray::shiftLeft(unsigned n) {
  if (n > entries_) return ZoResult::refused;
  if (n == 0) return ZoResult::ok;
  const int status = table_->erase(0, n, entries_);
  if (status == ZoResult::ok) entries_ -= n;
  return status;
}

int ZoVArray::shiftRight(unsigned n) {
  if (!table_) return ZoResult::refused;
  if (n == 0) return ZoResult::ok;
  if (const int status = makeRoom(n)) return status;
  const int status = table_->insert(0, n, nullptr, entries_);
  if (status == ZoResult::ok) entries_ += n;
  return status;
}

int ZoVArray::growArray() {
  if (growSize_ == 0 || !table_) return ZoResult::refused;
  if (growSize_ > kMostEntries - capacity_) return ZoResult::outOfMemory;
  return resize(capacity_ + growSize_);
}

int ZoVArray::capacityFor(unsigned n, unsigned& enough) const noexcept {
  const unsigned spare = capacity_ - entries_;
  enough = capacity_;
  if (n <= spare) return ZoResult::ok;
  if (growSize_ == 0) return ZoResult::refused;
  const unsigned missing = n - spare;
  const unsigned long long steps = (missing + 0ull + growSize_ - 1) / growSize_;
  const unsigned long long capacity = capacity_ + steps * growSize_;
  if (capacity > kMostEntries) return ZoResult::outOfMemory;
  enough = static_cast<unsigned>(capacity);
  return ZoResult::ok;
}

int ZoVArray::makeRoom(unsigned n) {
  unsigned enough = 0;
  const int status = capacityFor(n, enough);
  return status == ZoResult::ok ? resize(enough) : status;
}

int ZoVArray::makeRoomFor(unsigned n, const void*& value) {
  const std::less<> before;
  const void* const begin = table_->at(0);
  const bool own = entries_ > 0 && !before(value, begin) && before(value, table_->at(entries_));
  const std::ptrdiff_t offset =
      own ? static_cast<const char*>(value) - static_cast<const char*>(begin) : 0;
  const int status = makeRoom(n);
  if (own) value = static_cast<const char*>(table_->at(0)) + offset;
  return status;
}

bool ZoVArray::validate() const noexcept {
  if (!table_) return entries_ == 0 && capacity_ == 0;
  return entries_ <= capacity_ && (capacity_ == 0 || table_->at(0));
}

ZoVArrayIterator::~ZoVArrayIterator() = default;

void ZoVArrayIterator::reset() { position_ = 0; }

void ZoVArrayIterator::reset(ZoVArray& array) {
  array_ = &array;
  position_ = 0;
}

bool ZoVArrayIterator::isValid() const { return array_->isValid(position_); }
void* ZoVArrayIterator::current() const { return array_->at(position_); }
bool ZoVArrayIterator::atFirst() const { return position_ == 0 && isValid(); }
bool ZoVArrayIterator::atLast() const { return isValid() && position_ + 1 == array_->entries(); }
bool ZoVArrayIterator::toFirst() { return to(0); }
bool ZoVArrayIterator::toLast() { return to(array_->entries() - 1); }

bool ZoVArrayIterator::to(unsigned i) {
  position_ = array_->isValid(i) ? i : zo::npos;
  return isValid();
}

bool ZoVArrayIterator::next() { return to(isValid() ? position_ + 1 : zo::npos); }
bool ZoVArrayIterator::prev() { return to(isValid() ? position_ - 1 : zo::npos); }

int ZoVArrayIterator::insert(const void* value) {
  const unsigned i = isValid() ? position_ : array_->entries();
  const int status = array_->insertAt(i, value);
  if (status == ZoResult::ok) position_ = i;
  return status;
}

int ZoVArrayIterator::remove(void* out) { return array_->removeAt(position_, out); }

bool ZoVArrayIterator::findNext(const void* value, const ZoVArrayCompare* compare) {
  if (!value || !compare) return to(zo::npos);
  while (next()) {
    if (compare->compare(current(), value) == 0) return true;
  }
  return false;
}

bool ZoVArrayIterator::findPrev(const void* value, const ZoVArrayCompare* compare) {
  if (!value || !compare) return to(zo::npos);
  while (prev()) {
    if (compare->compare(current(), value) == 0) return true;
  }
  return false;
}
