// Iterators of ZoArray: they go by position, so they survive every change of the array and stand on whatever element
// has their position then.
#pragma once

#include <zo/text/containers/array.h>
#include <zo/text/containers/iterator.h>

namespace zo {

// What both kinds share; Array is const for the constant one.
template <class T, class Array, class Base>
class ArrayWalker : public Base {
 public:
  explicit ArrayWalker(Array& array) noexcept : m_array(&array) {}

  void reset() final { m_position = 0; }
  void reset(Array& array) noexcept {
    m_array = &array;
    m_position = 0;
  }
  bool toFirst() final { return to(0); }
  [[nodiscard]] bool atFirst() const final { return m_position == 0 && isValid(); }
  [[nodiscard]] bool isValid() const final { return m_position < m_array->entries(); }
  bool next() final {
    if (!isValid()) return false;
    ++m_position;
    return isValid();
  }
  bool toLast() final { return to(m_array->entries() - 1); }
  [[nodiscard]] bool atLast() const final {
    return isValid() && m_position + 1 == m_array->entries();
  }
  bool to(unsigned i) final {
    m_position = i < m_array->entries() ? i : npos;
    return isValid();
  }
  bool prev() final { return to(isValid() ? m_position - 1 : npos); }
  [[nodiscard]] unsigned position() const noexcept { return isValid() ? m_position : npos; }

 protected:
  [[nodiscard]] const T* element() const final { return m_array->at(m_position); }

  Array* m_array;
  unsigned m_position = 0;
};

}  // namespace zo

template <class T, class Table = ZoArrayTable<T>>
class ZoArrayIterator final : public zo::ArrayWalker<T, ZoArray<T, Table>, ZoSeqIterator<T>> {
 public:
  using zo::ArrayWalker<T, ZoArray<T, Table>, ZoSeqIterator<T>>::ArrayWalker;

  int insert(const T& value) final {
    const unsigned i = this->isValid() ? this->m_position : this->m_array->entries();
    const int status = this->m_array->insertAt(i, value);
    if (status == ZoResult::ok) this->m_position = i;
    return status;
  }

 protected:
  int take(T* out) final {
    return out ? this->m_array->removeAt(this->m_position, *out)
               : this->m_array->removeAt(this->m_position);
  }
};

template <class T, class Table = ZoArrayTable<T>>
class ZoArrayCIterator final
    : public zo::ArrayWalker<T, const ZoArray<T, Table>, ZoSeqCIterator<T>> {
 public:
  using zo::ArrayWalker<T, const ZoArray<T, Table>, ZoSeqCIterator<T>>::ArrayWalker;
};
