#include <zo/results.h>
#include <zo/text/containers/varray.h>

#include <algorithm>
#include <functional>
#include <new>
#include <utility>

#include "text/containers/merge_sort.h"

namespace {
constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position
}

ZoVArrayTable::~ZoVArrayTable() = default;

ZoVArray::ZoVArray(ZoVArrayTable* table, unsigned capacity, unsigned growSize)
    : m_growSize(growSize), m_table(table) {
  if (capacity > 0)
    resize(capacity);  // without memory the array starts smaller, and grows when used
}

ZoVArray::ZoVArray(const ZoVArray& other) : m_growSize(other.m_growSize), m_table(nullptr) {
  if (!other.m_table) return;
  m_table = other.m_table->makeNew();
  if (!m_table) throw std::bad_alloc();
  try {
    if (copyFrom(other) == ZoResult::outOfMemory) throw std::bad_alloc();
  } catch (...) {
    delete m_table;
    throw;
  }
}

ZoVArray::ZoVArray(ZoVArray&& other) noexcept : m_growSize(other.m_growSize), m_table(nullptr) {
  swap(other);
}

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
  delete m_table;
}

void ZoVArray::swap(ZoVArray& other) noexcept {
  std::swap(m_entries, other.m_entries);
  std::swap(m_capacity, other.m_capacity);
  std::swap(m_growSize, other.m_growSize);
  std::swap(m_table, other.m_table);
}

int ZoVArray::getAt(unsigned i, void* out) const {
  if (i >= m_entries || !out) return ZoResult::refused;
  return m_table->assign(out, m_table->at(i));
}

int ZoVArray::setAt(unsigned i, const void* value) {
  if (i >= m_entries || !value) return ZoResult::refused;
  return m_table->assign(m_table->at(i), value);
}

unsigned ZoVArray::index(const void* value, const ZoVArrayCompare* compare) const {
  if (!value || !compare) return zo::npos;
  for (unsigned i = 0; i < m_entries; ++i) {
    if (compare->compare(m_table->at(i), value) == 0) return i;
  }
  return zo::npos;
}

bool ZoVArray::isEqualTo(const ZoVArray& other, const ZoVArrayCompare* compare) const {
  if (!compare || m_entries != other.m_entries) return false;
  for (unsigned i = 0; i < m_entries; ++i) {
    if (compare->compare(m_table->at(i), other.m_table->at(i)) != 0) return false;
  }
  return true;
}

int ZoVArray::append(const ZoVArray& other) {
  const unsigned n = other.m_entries;
  if (!m_table) return ZoResult::refused;
  if (n == 0) return ZoResult::ok;
  if (const int status = makeRoom(n)) return status;
  // Only now: making room moves the elements when `other` is this array.
  const int status = m_table->appendCopies(other.m_table->at(0), n, m_entries);
  if (status == ZoResult::ok) m_entries += n;
  return status;
}

int ZoVArray::insertAt(unsigned i, const void* value) {
  if (i > m_entries || !value || !m_table) return ZoResult::refused;
  if (const int status = makeRoomFor(1, value)) return status;
  const int status = m_table->insert(i, 1, value, m_entries);
  if (status == ZoResult::ok) ++m_entries;
  return status;
}

int ZoVArray::fillAt(unsigned i, unsigned n, const void* value) {
  if (i > m_entries || n > kMostEntries - i || !value || !m_table) return ZoResult::refused;
  const unsigned inside = std::min(n, m_entries - i);
  const unsigned behind = n - inside;
  if (const int status = makeRoomFor(behind, value)) return status;
  for (unsigned k = i; k < i + inside; ++k) {
    if (const int status = m_table->assign(m_table->at(k), value)) return status;
  }
  if (behind == 0) return ZoResult::ok;
  const int status = m_table->insert(m_entries, behind, value, m_entries);
  if (status == ZoResult::ok) m_entries += behind;
  return status;
}

int ZoVArray::apply(ZoVArrayApply* applyFn) const {
  if (!applyFn) return ZoResult::refused;
  for (unsigned i = 0; i < m_entries; ++i) applyFn->applyTo(m_table->at(i));
  return ZoResult::ok;
}

int ZoVArray::remove(const void* value, const ZoVArrayCompare* compare, bool all) {
  const unsigned found = index(value, compare);
  if (found == zo::npos) return ZoResult::refused;
  if (!all) return removeAt(found, nullptr);
  // All are compared before one goes: the value may be an element, and comparing may throw.
  zo::PointerBuffer kept(m_entries);
  if (!kept) return ZoResult::outOfMemory;
  unsigned n = 0;
  for (unsigned i = 0; i < m_entries; ++i) {
    void* const element = m_table->at(i);
    if (i < found || compare->compare(element, value) != 0) kept[n++] = element;
  }
  const int status = m_table->keep(kept.data(), n, m_entries);
  if (status == ZoResult::ok) m_entries = n;
  return status;
}

int ZoVArray::removeAt(unsigned i, void* out) {
  if (i >= m_entries) return ZoResult::refused;
  if (out) {
    if (const int status = m_table->moveOut(out, m_table->at(i))) return status;
  }
  const int status = m_table->erase(i, 1, m_entries);
  if (status == ZoResult::ok) --m_entries;
  return status;
}

int ZoVArray::removeAll(bool freeMemory) {
  if (!m_table) return ZoResult::ok;
  if (m_entries > 0) m_table->erase(0, m_entries, m_entries);
  m_entries = 0;
  return freeMemory ? resize(0) : ZoResult::ok;
}

int ZoVArray::sort(const ZoVArrayCompare* compare, bool ascending) {
  if (!compare) return ZoResult::refused;
  if (m_entries < 2) return ZoResult::ok;
  zo::PointerBuffer order(m_entries);
  if (!order) return ZoResult::outOfMemory;
  for (unsigned i = 0; i < m_entries; ++i) order[i] = m_table->at(i);
  bool changed = false;
  if (const int status = zo::mergeSort(order.data(), m_entries, *compare, ascending, changed))
    return status;
  return changed ? m_table->reorder(order.data(), m_entries) : ZoResult::ok;
}

int ZoVArray::reverse() {
  for (unsigned i = 0, j = m_entries; i + 1 < j; ++i) m_table->exchange(i, --j);
  return ZoResult::ok;
}

int ZoVArray::resize(unsigned capacity) {
  if (!m_table) return ZoResult::refused;
  if (capacity == m_capacity) return ZoResult::ok;
  const unsigned kept = std::min(m_entries, capacity);
  if (kept < m_entries) {
    m_table->erase(kept, m_entries - kept, m_entries);
    m_entries = kept;
  }
  const int status = m_table->reallocate(capacity, m_entries);
  if (status == ZoResult::ok) m_capacity = capacity;
  return status;
}

int ZoVArray::copyFrom(const ZoVArray& other) {
  if (!m_table) return ZoResult::refused;
  if (this == &other) return ZoResult::ok;
  ZoVArray copy(m_table->makeNew());
  if (!copy.m_table) return ZoResult::outOfMemory;
  if (const int status = copy.resize(std::max(other.m_entries, m_capacity))) return status;
  if (const int status = copy.append(other)) return status;
  copy.m_growSize = m_growSize;
  swap(copy);
  return ZoResult::ok;
}

int ZoVArray::shiftLeft(unsigned n) {
  if (n > m_entries) return ZoResult::refused;
  if (n == 0) return ZoResult::ok;
  const int status = m_table->erase(0, n, m_entries);
  if (status == ZoResult::ok) m_entries -= n;
  return status;
}

int ZoVArray::shiftRight(unsigned n) {
  if (!m_table) return ZoResult::refused;
  if (n == 0) return ZoResult::ok;
  if (const int status = makeRoom(n)) return status;
  const int status = m_table->insert(0, n, nullptr, m_entries);
  if (status == ZoResult::ok) m_entries += n;
  return status;
}

int ZoVArray::growArray() {
  if (m_growSize == 0 || !m_table) return ZoResult::refused;
  if (m_growSize > kMostEntries - m_capacity) return ZoResult::outOfMemory;
  return resize(m_capacity + m_growSize);
}

int ZoVArray::makeRoom(unsigned n) {
  const unsigned spare = m_capacity - m_entries;
  if (n <= spare) return ZoResult::ok;
  if (m_growSize == 0) return ZoResult::refused;
  const unsigned missing = n - spare;
  const unsigned long long steps = (missing + 0ull + m_growSize - 1) / m_growSize;
  const unsigned long long capacity = m_capacity + steps * m_growSize;
  if (capacity > kMostEntries) return ZoResult::outOfMemory;
  return resize(static_cast<unsigned>(capacity));
}

int ZoVArray::makeRoomFor(unsigned n, const void*& value) {
  const std::less<> before;
  const void* const begin = m_table->at(0);
  const bool own = m_entries > 0 && !before(value, begin) && before(value, m_table->at(m_entries));
  const std::ptrdiff_t offset =
      own ? static_cast<const char*>(value) - static_cast<const char*>(begin) : 0;
  const int status = makeRoom(n);
  if (own) value = static_cast<const char*>(m_table->at(0)) + offset;
  return status;
}

bool ZoVArray::validate() const noexcept {
  if (!m_table) return m_entries == 0 && m_capacity == 0;
  return m_entries <= m_capacity && (m_capacity == 0 || m_table->at(0));
}

ZoVArrayIterator::~ZoVArrayIterator() = default;

void ZoVArrayIterator::reset() { m_position = 0; }

void ZoVArrayIterator::reset(ZoVArray& array) {
  m_array = &array;
  m_position = 0;
}

bool ZoVArrayIterator::isValid() const { return m_array->isValid(m_position); }
void* ZoVArrayIterator::current() const { return m_array->at(m_position); }
bool ZoVArrayIterator::atFirst() const { return m_position == 0 && isValid(); }
bool ZoVArrayIterator::atLast() const { return isValid() && m_position + 1 == m_array->entries(); }
bool ZoVArrayIterator::toFirst() { return to(0); }
bool ZoVArrayIterator::toLast() { return to(m_array->entries() - 1); }

bool ZoVArrayIterator::to(unsigned i) {
  m_position = m_array->isValid(i) ? i : zo::npos;
  return isValid();
}

bool ZoVArrayIterator::next() { return to(isValid() ? m_position + 1 : zo::npos); }
bool ZoVArrayIterator::prev() { return to(isValid() ? m_position - 1 : zo::npos); }

int ZoVArrayIterator::insert(const void* value) {
  const unsigned i = isValid() ? m_position : m_array->entries();
  const int status = m_array->insertAt(i, value);
  if (status == ZoResult::ok) m_position = i;
  return status;
}

int ZoVArrayIterator::remove(void* out) { return m_array->removeAt(m_position, out); }

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
