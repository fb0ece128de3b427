// Any ordered collection with positions 0 ... entries - 1: ZoArray or ZoList behind one interface.
//
// Errors:  0 success; 1 refused (position out of range, an array that is full and may not grow, an
//          element that cannot be copied); 2 out of memory, and then nothing has changed. Other
//          exceptions of elements pass through.
// Threads: any number of readers, or one writer.
// Ranges:  `for (T& element : sequence)` walks in order, O(1) a step in arrays and lists alike.
//          Insertion and removal end such a walk.
#pragma once

#include <zo/text/containers/compare.h>
#include <zo/text/containers/container.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/text_keys.h>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <type_traits>

namespace zo {

// Where a walk over a sequence of unknown kind stands.
struct SequenceCursor {
  void* element = nullptr;  // null at the end
  void* node = nullptr;     // of a list
  unsigned position = 0;
};

template <class Sequence, class T>
class SequenceRangeIterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::forward_iterator_tag;
  using value_type = std::remove_const_t<T>;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;

  SequenceRangeIterator() = default;
  explicit SequenceRangeIterator(const Sequence& sequence) : sequence_(&sequence) {
    sequence.walk(cursor_);
  }

  T& operator*() const { return *static_cast<T*>(cursor_.element); }
  T* operator->() const { return static_cast<T*>(cursor_.element); }
  SequenceRangeIterator& operator++() {
    sequence_->walk(cursor_);
    return *this;
  }
  SequenceRangeIterator operator++(int) {
    SequenceRangeIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const SequenceRangeIterator& other) const {
    return cursor_.element == other.cursor_.element;
  }

 private:
  const Sequence* sequence_ = nullptr;
  SequenceCursor cursor_;
};

}  // namespace zo

template <class T>
class ZoSequence : public ZoContainer<T> {
 public:
  using value_type = T;

  [[nodiscard]] bool isValid(unsigned i) const { return i < this->entries(); }
  // The element, or null.
  [[nodiscard]] T* at(unsigned i) { return locate(i); }
  [[nodiscard]] const T* at(unsigned i) const { return locate(i); }
  [[nodiscard]] T* first() { return locate(0); }
  [[nodiscard]] const T* first() const { return locate(0); }
  [[nodiscard]] T* last() { return locate(this->entries() - 1); }
  [[nodiscard]] const T* last() const { return locate(this->entries() - 1); }
  // The position must be valid.
  [[nodiscard]] T& operator[](unsigned i) { return *locate(i); }
  [[nodiscard]] const T& operator[](unsigned i) const { return *locate(i); }

  [[nodiscard]] int getAt(unsigned i, T& out) const {
    const T* const element = locate(i);
    return element ? zo::assignElement<T>(&out, element) : ZoResult::refused;
  }
  [[nodiscard]] int setAt(unsigned i, const T& value) {
    T* const element = locate(i);
    return element ? zo::assignElement<T>(element, &value) : ZoResult::refused;
  }

  // Values may be elements of this sequence or parts of them, and `other` may be this sequence. A
  // value to be moved is left alone unless the result is 0; an element that was moved stays, as its
  // move has left it. insertAt: in front of position i; i == entries() appends.
  [[nodiscard]] virtual int insertAt(unsigned i, const T& value) = 0;
  [[nodiscard]] virtual int insertAt(unsigned i, T&& value) = 0;
  [[nodiscard]] virtual int append(const T& value) = 0;
  [[nodiscard]] virtual int append(T&& value) = 0;
  [[nodiscard]] virtual int append(const ZoSequence& other) = 0;
  [[nodiscard]] int prepend(const T& value) { return insertAt(0, value); }
  [[nodiscard]] int prepend(T&& value) { return insertAt(0, std::move(value)); }
  // Sets n elements from position i on, and appends those that lie past the end.
  [[nodiscard]] virtual int fillAt(unsigned i, unsigned n, const T& value) = 0;
  [[nodiscard]] virtual int copyFrom(const ZoSequence& other) = 0;  // replaces the elements

  // The first position whose element compares equal, or npos.
  [[nodiscard]] virtual unsigned index(const T& value, const ZoCompare<T>& compare) const = 0;
  [[nodiscard]] unsigned index(const T& value) const { return index(value, ZoCompare<T>()); }
  [[nodiscard]] bool contains(const T& value) const { return index(value) != zo::npos; }
  // Same number of elements, and all compare equal.
  [[nodiscard]] bool isEqualTo(const ZoSequence& other, const ZoCompare<T>& compare) const {
    if (this->entries() != other.entries()) return false;
    auto theirs = other.begin();
    for (const T& mine : *this) {
      if (compare.compare(mine, *theirs++) != 0) return false;
    }
    return true;
  }
  [[nodiscard]] bool isEqualTo(const ZoSequence& other) const {
    return isEqualTo(other, ZoCompare<T>());
  }

  // Removes the first element that compares equal, or all of them; 1 when there is none.
  virtual int remove(const T& value, const ZoCompare<T>& compare, bool all = false) = 0;
  template <class All>
    requires(!std::same_as<All, bool>)
  int remove(const T&, const ZoCompare<T>&, All) = delete;  // all is a bool
  int remove(const T& value) { return remove(value, ZoCompare<T>()); }
  int removeAt(unsigned i) { return take(i, nullptr); }
  [[nodiscard]] int removeAt(unsigned i, T& out) { return take(i, &out); }
  int removeFirst() { return take(0, nullptr); }
  [[nodiscard]] int removeFirst(T& out) { return take(0, &out); }
  int removeLast() { return take(this->entries() - 1, nullptr); }
  [[nodiscard]] int removeLast(T& out) { return take(this->entries() - 1, &out); }

  // Stable in both directions.
  [[nodiscard]] virtual int sort(const ZoCompare<T>& compare, bool ascending = true) = 0;
  template <class Ascending>
    requires(!std::same_as<Ascending, bool>)
  int sort(const ZoCompare<T>&, Ascending) = delete;  // ascending is a bool
  [[nodiscard]] int sort() { return sort(ZoCompare<T>()); }
  [[nodiscard]] virtual int reverse() = 0;

  [[nodiscard]] auto begin() { return zo::SequenceRangeIterator<ZoSequence, T>(*this); }
  [[nodiscard]] auto end() { return zo::SequenceRangeIterator<ZoSequence, T>(); }
  [[nodiscard]] auto begin() const { return zo::SequenceRangeIterator<ZoSequence, const T>(*this); }
  [[nodiscard]] auto end() const { return zo::SequenceRangeIterator<ZoSequence, const T>(); }

  // One step of a walk, for iterators: from a fresh cursor to the first element.
  virtual void walk(zo::SequenceCursor& cursor) const = 0;

 protected:
  ZoSequence() = default;
  ZoSequence(const ZoSequence&) = default;
  ZoSequence& operator=(const ZoSequence&) = default;

  [[nodiscard]] virtual T* locate(unsigned i) const = 0;  // null when out of range
  // Removes; moves the element to *out unless that is null.
  virtual int take(unsigned i, T* out) = 0;
};
