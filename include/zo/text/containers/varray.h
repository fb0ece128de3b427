// The array engine: a growable table of elements of unknown type, its storage and its iterator.
//
// Everything that depends on the element type goes through the storage object; ZoArray<T> supplies
// it and is what programs use. Pointers to elements stay valid until the array grows, shrinks or
// moves elements.
//
// Errors:  0 success; 1 refused (position out of range, null value or object, full with grow size
//          0, no storage, an element that cannot be copied); 2 out of memory, and then nothing has
//          changed. An exception of an element's copy leaves the elements as they were; only
//          reverse, setAt and fillAt over present elements keep just what the element's own
//          assignment keeps. Constructors and assignment, which have no status, throw
//          std::bad_alloc.
// Threads: any number of readers, or one writer.
// Cost:    access O(1); growing by a fixed step makes n appends O(n * n / step); insertion and
//          removal O(elements behind); sort O(n log n), stable.
#pragma once

#include <zo/config.h>
#include <zo/text/containers/position.h>
#include <zo/text/containers/vcallbacks.h>

#include <cstddef>

template <class T, class Table>
class ZoArray;

// The block of an array: elements side by side. It does not know how many of its cells hold
// elements; each call is told.
class ZO_COM_API ZoVArrayTable {
 public:
  virtual ~ZoVArrayTable();  // the elements have been erased before
  ZoVArrayTable(const ZoVArrayTable&) = delete;
  ZoVArrayTable& operator=(const ZoVArrayTable&) = delete;

  // An empty storage of the same type; null when there is no memory.
  [[nodiscard]] virtual ZoVArrayTable* makeNew() const = 0;
  // Moves the elements to a block of the given number of cells (at least `entries`).
  [[nodiscard]] virtual int reallocate(unsigned capacity, unsigned entries) = 0;
  // Opens a gap of n cells in front of position i and fills it with copies of *value, or with
  // elements made without a value when it is null. There is room. *value may be one of the
  // elements.
  [[nodiscard]] virtual int insert(unsigned i, unsigned n, const void* value, unsigned entries) = 0;
  // Copies n elements that lie side by side to the end. There is room.
  [[nodiscard]] virtual int appendCopies(const void* from, unsigned n, unsigned entries) = 0;
  virtual int assign(void* to, const void* from) = 0;
  virtual int moveOut(void* to, void* from) = 0;
  // Destroys n elements from position i on and closes the gap. Cannot fail at the end.
  virtual int erase(unsigned i, unsigned n, unsigned entries) = 0;
  // Destroys all elements but n, to which it is given pointers in the order of the elements.
  [[nodiscard]] virtual int keep(void* const* kept, unsigned n, unsigned entries) = 0;
  [[nodiscard]] virtual int reverse(unsigned entries) = 0;
  // Arranges the elements in the order of the pointers to them.
  [[nodiscard]] virtual int reorder(void* const* order, unsigned entries) = 0;

  [[nodiscard]] void* at(unsigned i) const noexcept {
    return static_cast<char*>(data_) + std::size_t{i} * elementSize_;
  }
  // True when elements have the size of a pointer and may be moved as bytes.
  [[nodiscard]] bool holdsWords() const noexcept {
    return relocatable_ && elementSize_ == sizeof(void*);
  }

 protected:
  ZoVArrayTable(unsigned elementSize, bool relocatable) noexcept
      : elementSize_(elementSize), relocatable_(relocatable) {}

  void* data_ = nullptr;
  unsigned elementSize_;
  unsigned cells_ = 0;
  bool relocatable_;
};

class ZO_COM_API ZoVArray {
 public:
  // Takes the storage over; null means no storage, and then every change is refused.
  explicit ZoVArray(ZoVArrayTable* table, unsigned capacity = 0, unsigned growSize = 0);
  ZoVArray(const ZoVArray& other);
  ZoVArray(ZoVArray&& other) noexcept;  // the other is left without storage
  ZoVArray& operator=(const ZoVArray& other);
  ZoVArray& operator=(ZoVArray&& other) noexcept;
  ~ZoVArray();

  [[nodiscard]] unsigned entries() const noexcept { return entries_; }
  [[nodiscard]] bool isEmpty() const noexcept { return entries_ == 0; }
  [[nodiscard]] unsigned capacity() const noexcept { return capacity_; }
  [[nodiscard]] unsigned growSize() const noexcept { return growSize_; }
  [[nodiscard]] bool isValid(unsigned i) const noexcept { return i < entries_; }

  // The element, or null.
  [[nodiscard]] void* at(unsigned i) const noexcept {
    return i < entries_ ? table_->at(i) : nullptr;
  }
  [[nodiscard]] void* first() const noexcept { return at(0); }
  [[nodiscard]] void* last() const noexcept { return at(entries_ - 1); }
  [[nodiscard]] int getAt(unsigned i, void* out) const;  // copies to *out
  [[nodiscard]] int setAt(unsigned i, const void* value);

  // The first position whose element compares equal to *value, or npos.
  [[nodiscard]] unsigned index(const void* value, const ZoVArrayCompare* compare) const;
  // Same number of elements, and all compare equal.
  [[nodiscard]] bool isEqualTo(const ZoVArray& other, const ZoVArrayCompare* compare) const;

  // Values may be elements of this array, and `other` may be this array.
  [[nodiscard]] int append(const void* value) { return insertAt(entries_, value); }
  [[nodiscard]] int append(const ZoVArray& other);
  [[nodiscard]] int prepend(const void* value) { return insertAt(0, value); }
  // In front of position i; i == entries() appends.
  [[nodiscard]] int insertAt(unsigned i, const void* value);
  // Sets n elements from position i on, and appends those that lie past the end.
  [[nodiscard]] int fillAt(unsigned i, unsigned n, const void* value);
  int apply(ZoVArrayApply* applyFn) const;

  // Removes the first element that compares equal, or all of them; 1 when there is none.
  int remove(const void* value, const ZoVArrayCompare* compare, bool all);
  // The removed element is moved to *out unless out is null.
  int removeFirst(void* out) { return removeAt(0, out); }
  int removeLast(void* out) { return removeAt(entries_ - 1, out); }
  int removeAt(unsigned i, void* out);
  int removeAll(bool freeMemory);  // true gives the block back too: the capacity is then 0

  // Stable in both directions.
  [[nodiscard]] int sort(const ZoVArrayCompare* compare, bool ascending);
  [[nodiscard]] int reverse();

  // Sets the capacity, whatever the grow size; elements past it are removed.
  [[nodiscard]] int resize(unsigned capacity);
  // Replaces the elements; the capacity may grow, the grow size stays.
  [[nodiscard]] int copyFrom(const ZoVArray& other);
  [[nodiscard]] int shiftLeft(unsigned n);   // removes the first n elements; 1 when there are fewer
  [[nodiscard]] int shiftRight(unsigned n);  // puts n elements made without a value in front
  [[nodiscard]] int growArray();             // by one grow size; 1 when that is 0
  void setGrowSize(unsigned n) noexcept { growSize_ = n; }

  // True when the fields agree with each other.
  [[nodiscard]] bool validate() const noexcept;

 private:
  template <class T, class Table>
  friend class ZoArray;

  // The capacity that n more elements take, in whole grow steps.
  int capacityFor(unsigned n, unsigned& enough) const noexcept;
  int makeRoom(unsigned n);
  int makeRoomFor(unsigned n, const void*& value);  // follows a value that is an element
  void swap(ZoVArray& other) noexcept;

  unsigned entries_ = 0;
  unsigned capacity_ = 0;
  unsigned growSize_ = 0;
  ZoVArrayTable* table_ = nullptr;
};

static_assert(sizeof(ZoVArray) == 24, "entries, capacity, grow size, storage");

// Walks an array by position, so it survives every change of the array: it stands on whatever
// element has its position now, and is not valid when there is none. The array itself must outlive
// it.
class ZO_COM_API ZoVArrayIterator {
 public:
  explicit ZoVArrayIterator(ZoVArray& array) noexcept : array_(&array) {}
  ZoVArrayIterator(const ZoVArrayIterator&) = default;
  ZoVArrayIterator& operator=(const ZoVArrayIterator&) = default;
  virtual ~ZoVArrayIterator();

  // The order of these is part of the interface. Movements tell whether the iterator is valid
  // afterwards.
  // To the first element, of another array.
#ifndef ZO_OVERLOADS_BACKWARDS
  virtual void reset();
  virtual void reset(ZoVArray& array);
#else
  virtual void reset(ZoVArray& array);
  virtual void reset();
#endif
  [[nodiscard]] virtual bool isValid() const;
  [[nodiscard]] virtual void* current() const;  // null when not valid
  [[nodiscard]] virtual bool atFirst() const;
  [[nodiscard]] virtual bool atLast() const;
  virtual bool toFirst();
  virtual bool toLast();
  virtual bool to(unsigned i);
  virtual bool next();
  virtual bool prev();  // not valid in front of the first element
  // In front of the current element, or at the end; stands on the new one then.
  [[nodiscard]] virtual int insert(const void* value);
  virtual int remove(void* out);  // stands on the following element then
  // To the next (previous) element behind (before) the current one that compares equal: the one it
  // stands on is not looked at, nor is the first by a fresh iterator.
  virtual bool findNext(const void* value, const ZoVArrayCompare* compare);
  virtual bool findPrev(const void* value, const ZoVArrayCompare* compare);

 private:
  ZoVArray* array_;
  unsigned position_ = 0;
};
