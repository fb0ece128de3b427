// ZoArray<T>: a sequence in one contiguous table.
//
// Elements lie side by side, and are reached inline. The default array starts without memory, with
// a grow size of kFirstGrowSize; when it is full it raises its grow size to its capacity first, so
// that n appends cost O(n). A grow size set by setGrowSize is raised likewise, except 0: then a
// full array refuses to grow (status 1).
//
// Elements that can only be moved are fine; operations that copy refuse them with 1.
//
// Errors, Threads, Cost: as in varray.h. Pointers, references and range-for iterators hold until
//          the array grows or elements in front of them come or go; ZoArrayIterator goes by
//          position and holds always.
#pragma once

#include <zo/text/containers/apply.h>
#include <zo/text/containers/array_table.h>
#include <zo/text/containers/sequence.h>

#include <initializer_list>

template <class T, class Table = ZoArrayTable<T>>
class ZoArray : public ZoSequence<T> {
 public:
  static constexpr unsigned kFirstGrowSize = 8;

  ZoArray() noexcept : array_(nullptr, 0, kFirstGrowSize) {}
  template <class Number>
    requires(std::is_floating_point_v<Number> || std::is_same_v<Number, bool>)
  explicit ZoArray(Number, unsigned = 0) = delete;  // the capacity comes first
  explicit ZoArray(unsigned capacity, unsigned growSize = kFirstGrowSize)
      : array_(nullptr, 0, growSize) {
    static_cast<void>(resize(capacity));  // without memory the array grows when it is used
  }
  ZoArray(std::initializer_list<T> values) : ZoArray() {
    zo::assertCopyable<T>();
    zo::throwIfNoMemory(resize(static_cast<unsigned>(values.size())));
    for (const T& value : values) zo::throwIfNoMemory(append(value));
  }
  explicit ZoArray(const ZoSequence<T>& other) : ZoArray() {
    zo::assertCopyable<T>();
    zo::throwIfNoMemory(append(other));
  }
  // Copies throw std::bad_alloc when there is no memory; moves leave the other array empty and
  // usable.
  ZoArray(const ZoArray& other) : ZoSequence<T>(other), array_(other.array_) {
    zo::assertCopyable<T>();
  }
  ZoArray(ZoArray&& other) noexcept : ZoSequence<T>(), array_(std::move(other.array_)) {}
  ZoArray& operator=(const ZoArray& other) {
    zo::assertCopyable<T>();
    array_ = other.array_;
    return *this;
  }
  ZoArray& operator=(ZoArray&& other) noexcept {
    array_ = std::move(other.array_);
    return *this;
  }
  ZoArray& operator=(const ZoSequence<T>& other) {
    zo::assertCopyable<T>();
    zo::throwIfNoMemory(copyFrom(other));
    return *this;
  }
  ~ZoArray() override = default;

  [[nodiscard]] unsigned entries() const noexcept final { return array_.entries_; }
  [[nodiscard]] unsigned capacity() const noexcept { return array_.capacity(); }
  [[nodiscard]] unsigned growSize() const noexcept { return array_.growSize(); }
  void setGrowSize(unsigned n) noexcept { array_.setGrowSize(n); }

  [[nodiscard]] T* data() noexcept { return cells(); }
  [[nodiscard]] const T* data() const noexcept { return cells(); }
  [[nodiscard]] T* begin() noexcept { return cells(); }
  [[nodiscard]] T* end() noexcept { return cells() + entries(); }
  [[nodiscard]] const T* begin() const noexcept { return cells(); }
  [[nodiscard]] const T* end() const noexcept { return cells() + entries(); }
  [[nodiscard]] T& operator[](unsigned i) noexcept { return cells()[i]; }
  [[nodiscard]] const T& operator[](unsigned i) const noexcept { return cells()[i]; }
  [[nodiscard]] T* at(unsigned i) noexcept { return locate(i); }
  [[nodiscard]] const T* at(unsigned i) const noexcept { return locate(i); }

  [[nodiscard]] int append(const T& value) final {
    if constexpr (zo::isCopyable<T>) {
      return appendMade([&](T* place) { ::new (static_cast<void*>(place)) T(value); });
    } else {
      return ZoResult::refused;
    }
  }
  [[nodiscard]] int append(T&& value) final {
    return appendMade([&](T* place) { ::new (static_cast<void*>(place)) T(std::move(value)); });
  }
  [[nodiscard]] int append(const ZoSequence<T>& other) final {
    const unsigned n = other.entries();
    if (const int status = makeRoom(n)) return status;
    if (const auto* array = dynamic_cast<const ZoArray*>(&other))
      return array_.append(array->array_);
    ZoArray copies;
    if (const int status = copies.resize(n)) return status;
    for (const T& element : other) {
      if (const int status = copies.append(element)) return status;
    }
    if constexpr (!std::is_nothrow_move_constructible_v<T>) return array_.append(copies.array_);
    for (T& element : copies) {
      if (const int status = append(std::move(element))) return status;
    }
    return ZoResult::ok;
  }
  // Makes the element in its place; std::bad_alloc of its constructor gives 2. What it is made from
  // may be an element of this array, or a part of one.
  template <class... Arguments>
  [[nodiscard]] int emplace(Arguments&&... arguments) {
    return appendMade([&](T* place) {
      ::new (static_cast<void*>(place)) T(std::forward<Arguments>(arguments)...);
    });
  }
  [[nodiscard]] int insertAt(unsigned i, const T& value) final {
    if (i > entries()) return ZoResult::refused;
    if (const int status = raiseGrowSize()) return status;
    return array_.insertAt(i, &value);
  }
  [[nodiscard]] int insertAt(unsigned i, T&& value) final {
    if (i > entries()) return ZoResult::refused;
    if (const int status = raiseGrowSize()) return status;
    const void* source = &value;
    if (const int status = array_.makeRoomFor(1, source)) return status;
    T& moved = *const_cast<T*>(static_cast<const T*>(source));  // where the value lies now
    const int status = table()->insertMoved(i, moved, entries());
    if (status == ZoResult::ok) ++array_.entries_;
    return status;
  }

  [[nodiscard]] int fillAt(unsigned i, unsigned n, const T& value) final {
    if (i > entries()) return ZoResult::refused;
    if (const int status = raiseGrowSize()) return status;
    return array_.fillAt(i, n, &value);
  }
  [[nodiscard]] int copyFrom(const ZoSequence<T>& other) final {
    if (this == &other) return ZoResult::ok;
    ZoArray copy(0, growSize());
    if (const int status = copy.resize(capacity() < other.entries() ? other.entries() : capacity()))
      return status;
    if (const int status = copy.append(other)) return status;
    *this = std::move(copy);
    return ZoResult::ok;
  }

  using ZoSequence<T>::index;
  [[nodiscard]] unsigned index(const T& value, const ZoCompare<T>& compare) const final {
    const ZoArrayCompare<T> adapter(compare);
    return array_.index(&value, &adapter);
  }
  using ZoSequence<T>::remove;
  int remove(const T& value, const ZoCompare<T>& compare, bool all = false) final {
    const ZoArrayCompare<T> adapter(compare);
    return array_.remove(&value, &adapter, all);
  }
  using ZoContainer<T>::removeAll;
  int removeAll(bool freeMemory = false) final { return array_.removeAll(freeMemory); }
  using ZoSequence<T>::sort;
  [[nodiscard]] int sort(const ZoCompare<T>& compare, bool ascending = true) final {
    const ZoArrayCompare<T> adapter(compare);
    return array_.sort(&adapter, ascending);
  }
  [[nodiscard]] int reverse() final { return array_.reverse(); }
  int apply(ZoArrayApply<T>& applyFn) { return array_.apply(&applyFn); }

  // Sets the capacity, whatever the grow size; elements past it are removed.
  [[nodiscard]] int resize(unsigned capacity) {
    if (capacity == array_.capacity()) return ZoResult::ok;
    if (const int status = makeTable()) return status;
    return array_.resize(capacity);
  }
  [[nodiscard]] int shiftLeft(unsigned n) {
    return array_.shiftLeft(n);
  }  // removes the first n elements
  [[nodiscard]] int shiftRight(unsigned n) {  // puts n elements made without a value in front
    if (const int status = raiseGrowSize()) return status;
    return array_.shiftRight(n);
  }

  void walk(zo::SequenceCursor& cursor) const final {
    if (cursor.element) ++cursor.position;
    cursor.element = locate(cursor.position);
  }
  [[nodiscard]] const ZoVArray& engine() const noexcept { return array_; }

 protected:
  [[nodiscard]] T* locate(unsigned i) const noexcept final {
    return i < array_.entries_ ? cells() + i : nullptr;
  }
  int take(unsigned i, T* out) final { return array_.removeAt(i, out); }

 private:
  [[nodiscard]] Table* table() const noexcept { return static_cast<Table*>(array_.table_); }
  [[nodiscard]] T* cells() const noexcept { return array_.table_ ? table()->data() : nullptr; }

  int makeTable() {
    if (!array_.table_) array_.table_ = new (std::nothrow) Table;
    return array_.table_ ? ZoResult::ok : ZoResult::outOfMemory;
  }
  // Before any growth; makes the storage of an array that has none yet.
  int raiseGrowSize() {
    if (const int status = makeTable()) return status;
    if (growSize() != 0 && growSize() < capacity() && entries() == capacity())
      setGrowSize(capacity());
    return ZoResult::ok;
  }
  int makeRoom(unsigned n) {
    if (const int status = raiseGrowSize()) return status;
    return array_.makeRoom(n);
  }
  // make(place) makes the new element; in a larger block while the present elements are still where
  // they were, since it may be made from one of them.
  template <class Make>
  int appendMade(Make make) {
    if (array_.entries_ == array_.capacity_) return appendGrowing(make);
    const auto action = [&, n = array_.entries_] {
      make(cells() + n);
      array_.entries_ = n + 1;
    };
    if constexpr (noexcept(make(nullptr))) {
      action();
      return ZoResult::ok;
    } else {
      return zo::asStatus(action);
    }
  }
  template <class Make>
  int appendGrowing(Make make) {
    if (const int status = raiseGrowSize()) return status;
    unsigned capacity = 0;
    if (const int status = array_.capacityFor(1, capacity)) return status;
    const int status = table()->reallocateWithOneMore(capacity, entries(), make);
    if (status != ZoResult::ok) return status;
    array_.capacity_ = capacity;
    ++array_.entries_;
    return ZoResult::ok;
  }

  ZoVArray array_;
};

template <class T, class Table>
inline constexpr bool zo::isCopyable<ZoArray<T, Table>> = zo::isCopyable<T>;
