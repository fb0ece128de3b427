// Iterators of ZoArray: they go by position, so they survive every change of the array and stand on
// whatever element has their position then.
//
// Errors, Threads: as iterator.h.
#pragma once

#include <zo/text/containers/array.h>
#include <zo/text/containers/iterator.h>

namespace zo {

// What both kinds share; Array is const for the constant one.
template <class T, class Array, class Base>
class ArrayWalker : public Base {
 public:
  explicit ArrayWalker(Array& array) noexcept : array_(&array) {}

  void reset() final { position_ = 0; }
  void reset(Array& array) noexcept {
    array_ = &array;
    position_ = 0;
  }
  bool toFirst() final { return to(0); }
  [[nodiscard]] bool atFirst() const final { return position_ == 0 && isValid(); }
  [[nodiscard]] bool isValid() const final { return position_ < array_->entries(); }
  bool next() final { return to(isValid() ? position_ + 1 : npos); }
  bool toLast() final { return to(array_->entries() - 1); }
  [[nodiscard]] bool atLast() const final {
    return isValid() && position_ + 1 == array_->entries();
  }
  bool to(unsigned i) final {
    position_ = i < array_->entries() ? i : npos;
    return isValid();
  }
  bool prev() final { return to(isValid() ? position_ - 1 : npos); }
  // As in the root class, without its virtual call.
  [[nodiscard]] auto* current() const noexcept { return array_->at(position_); }
  [[nodiscard]] auto* operator()() const noexcept { return current(); }
  [[nodiscard]] unsigned position() const noexcept { return isValid() ? position_ : npos; }

 protected:
  [[nodiscard]] const T* element() const final { return array_->at(position_); }

  Array* array_;
  unsigned position_ = 0;
};

}  // namespace zo

template <class T, class Table = ZoArrayTable<T>>
class ZoArrayIterator final : public zo::ArrayWalker<T, ZoArray<T, Table>, ZoSeqIterator<T>> {
 public:
  using zo::ArrayWalker<T, ZoArray<T, Table>, ZoSeqIterator<T>>::ArrayWalker;

  [[nodiscard]] int insert(const T& value) final {
    const unsigned i = this->isValid() ? this->position_ : this->array_->entries();
    const int status = this->array_->insertAt(i, value);
    if (status == ZoResult::ok) this->position_ = i;
    return status;
  }

 protected:
  int take(T* out) final {
    return out ? this->array_->removeAt(this->position_, *out)
               : this->array_->removeAt(this->position_);
  }
};

template <class T, class Table = ZoArrayTable<T>>
class ZoArrayCIterator final
    : public zo::ArrayWalker<T, const ZoArray<T, Table>, ZoSeqCIterator<T>> {
 public:
  using zo::ArrayWalker<T, const ZoArray<T, Table>, ZoSeqCIterator<T>>::ArrayWalker;
};
