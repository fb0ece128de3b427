// Iterators of typed containers, whatever the container: the root classes.
//
// A fresh iterator stands on the first element. Movements tell whether it is valid afterwards; one
// that has left its container is not valid until it is sent somewhere, and current() is null then.
// Iterators never dangle as long as their container lives: what each survives is said beside its
// class.
//
// Errors:  remove gives 1 where the iterator is not valid, and else what its container gives, as
//          insert does; what comparing throws passes through.
// Threads: one at a time per iterator. Several may read one container, each with its own; removing
//          and inserting change the container.
// Ranges:  `for (T& element : iterator)` walks from where the iterator stands to the end, and moves
//          the iterator.
// Finding: find looks at the element it stands on and then at those behind it; findNext begins with
//          the one behind, and so never finds the first with a fresh iterator. All that are equal:
//            for (bool is = it.find(x); is; is = it.findNext(x)) use(*it.current());
#pragma once

#include <zo/text/containers/compare.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/position.h>

#include <cstddef>
#include <iterator>

namespace zo {

// The rest of an iterator's way as a range.
template <class Iterator, class T>
class Remaining {
 public:
  using iterator_concept = std::input_iterator_tag;
  using value_type = std::remove_const_t<T>;
  using difference_type = std::ptrdiff_t;

  Remaining() = default;
  explicit Remaining(Iterator& iterator) noexcept : iterator_(&iterator) {}
  T& operator*() const { return *iterator_->current(); }
  Remaining& operator++() {
    iterator_->next();
    return *this;
  }
  void operator++(int) { iterator_->next(); }
  bool operator==(std::default_sentinel_t) const { return !iterator_->isValid(); }

 private:
  Iterator* iterator_ = nullptr;
};

}  // namespace zo

template <class T>
class ZoCIterator {
 public:
  virtual ~ZoCIterator() = default;

  virtual void reset() = 0;  // to the first element
  virtual bool toFirst() = 0;
  [[nodiscard]] virtual bool atFirst() const = 0;
  [[nodiscard]] virtual bool isValid() const = 0;
  virtual bool next() = 0;

  // The element it stands on, or null.
  [[nodiscard]] const T* current() const { return element(); }
  [[nodiscard]] const T* operator()() const { return element(); }

  bool operator++() { return next(); }
  bool operator++(int) {  // tells whether it was valid before
    const bool was = isValid();
    next();
    return was;
  }
  // To the first element that compares equal: the one it stands on, or one behind it.
  bool find(const T& value, const ZoCompare<T>& compare = ZoCompare<T>()) {
    return isValid() && (compare.compare(*element(), value) == 0 || findNext(value, compare));
  }
  // To the next element behind the current one that compares equal.
  bool findNext(const T& value, const ZoCompare<T>& compare = ZoCompare<T>()) {
    while (next()) {
      if (compare.compare(*element(), value) == 0) return true;
    }
    return false;
  }

  [[nodiscard]] auto begin() { return zo::Remaining<ZoCIterator, const T>(*this); }
  [[nodiscard]] std::default_sentinel_t end() const { return {}; }

 protected:
  ZoCIterator() = default;
  ZoCIterator(const ZoCIterator&) = default;
  ZoCIterator& operator=(const ZoCIterator&) = default;

  [[nodiscard]] virtual const T* element() const = 0;
};

// An iterator over a container that may be changed.
template <class T>
class ZoIterator : public virtual ZoCIterator<T> {
 public:
  // The container is not const.
  [[nodiscard]] T* current() const { return const_cast<T*>(this->element()); }
  [[nodiscard]] T* operator()() const { return current(); }

  // Removes the current element and stands on the following one. 1 when not valid. The element is
  // moved to out.
  int remove() { return take(nullptr); }
  [[nodiscard]] int remove(T& out) { return take(&out); }

  [[nodiscard]] auto begin() { return zo::Remaining<ZoIterator, T>(*this); }

 protected:
  virtual int take(T* out) = 0;
};

template <class T>
class ZoSeqCIterator : public virtual ZoCIterator<T> {
 public:
  virtual bool toLast() = 0;
  [[nodiscard]] virtual bool atLast() const = 0;
  virtual bool to(unsigned i) = 0;
  virtual bool prev() = 0;  // not valid in front of the first element

  bool operator--() { return prev(); }
  // To the previous element before the current one that compares equal.
  bool findPrev(const T& value, const ZoCompare<T>& compare = ZoCompare<T>()) {
    while (prev()) {
      if (compare.compare(*this->element(), value) == 0) return true;
    }
    return false;
  }
};

template <class T>
class ZoSeqIterator : public ZoIterator<T>, public virtual ZoCIterator<T> {
 public:
  using ZoIterator<T>::current;
  using ZoIterator<T>::operator();
  using ZoIterator<T>::begin;

  virtual bool toLast() = 0;
  [[nodiscard]] virtual bool atLast() const = 0;
  virtual bool to(unsigned i) = 0;
  virtual bool prev() = 0;

  bool operator--() { return prev(); }
  // In front of the current element, or at the end; stands on the new element then.
  [[nodiscard]] virtual int insert(const T& value) = 0;
  bool findPrev(const T& value, const ZoCompare<T>& compare = ZoCompare<T>()) {
    while (prev()) {
      if (compare.compare(*this->element(), value) == 0) return true;
    }
    return false;
  }
};

template <class T, class K>
class ZoDictCIterator : public virtual ZoCIterator<T> {
 public:
  [[nodiscard]] virtual const K* key() const = 0;  // null when not valid

  // To the first entry whose key compares equal: the one it stands on, or one behind it.
  bool find(const K& key, const ZoCompare<K>& compare = ZoCICompare<K>()) {
    return this->isValid() && (compare.compare(*this->key(), key) == 0 || findNext(key, compare));
  }
  // To the next entry behind the current one whose key compares equal.
  bool findNext(const K& key, const ZoCompare<K>& compare = ZoCICompare<K>()) {
    while (this->next()) {
      if (compare.compare(*this->key(), key) == 0) return true;
    }
    return false;
  }
};

template <class T, class K>
class ZoDictIterator : public ZoIterator<T> {
 public:
  [[nodiscard]] virtual const K* key() const = 0;

  bool find(const K& key, const ZoCompare<K>& compare = ZoCICompare<K>()) {
    return this->isValid() && (compare.compare(*this->key(), key) == 0 || findNext(key, compare));
  }
  bool findNext(const K& key, const ZoCompare<K>& compare = ZoCICompare<K>()) {
    while (this->next()) {
      if (compare.compare(*this->key(), key) == 0) return true;
    }
    return false;
  }
};
