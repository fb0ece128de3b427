// ZoList<T>: a sequence as a doubly linked list.
//
// An element keeps its address until it is removed; sort and reverse only relink. Positions are
// walked to from the front, so walk with a range-for or an iterator instead of counting positions.
// Nodes come from a pool of the list.
//
// Elements that can only be moved are fine; operations that copy refuse them with 1.
//
// Errors, Threads, Cost: as in vlist.h. Range-for iterators and pointers hold until their element
// is removed.
#pragma once

#include <zo/text/containers/apply.h>
#include <zo/text/containers/sequence.h>
#include <zo/text/containers/vlist.h>

#include <initializer_list>

template <class T>
struct ZoListNode : ZoVListNode {
  template <class... Arguments>
  explicit ZoListNode(Arguments&&... arguments) noexcept(
      std::is_nothrow_constructible_v<T, Arguments...>)
      : element(std::forward<Arguments>(arguments)...) {}
  T element;
};

template <class T>
class ZoListMem final : public ZoVListMem {
 public:
  using Node = ZoListNode<T>;

  // An element follows the links at its alignment.
  static constexpr std::size_t kElementOffset =
      (sizeof(ZoVListNode) + alignof(T) - 1) / alignof(T) * alignof(T);

  ZoListMem() noexcept : ZoVListMem(sizeof(Node), alignof(Node), kElementOffset) {}

  [[nodiscard]] ZoVListMem* makeNew() const override { return new (std::nothrow) ZoListMem; }
  [[nodiscard]] int newNode(const void* value, ZoVListNode*& node) override {
    if constexpr (zo::isCopyable<T>) {
      return make(node, *static_cast<const T*>(value));
    } else {
      node = nullptr;
      return ZoResult::refused;
    }
  }
  void deleteNode(ZoVListNode* node) override {
    zo::destroyElements(static_cast<Node*>(node), 1);
    pool_.release(node);
  }
  int assign(void* to, const void* from) override { return zo::assignElement<T>(to, from); }
  int moveOut(void* to, void* from) override { return zo::moveElement<T>(to, from); }

  // A node whose element is made from the arguments.
  template <class... Arguments>
  [[nodiscard]] int make(ZoVListNode*& node, Arguments&&... arguments) {
    return zo::makeNode<Node>(pool_, node, std::forward<Arguments>(arguments)...);
  }
};

namespace zo {

// Range-for iterator of a list: holds until its element is removed.
template <class T>
class ListRangeIterator {
 public:
  using iterator_concept = std::bidirectional_iterator_tag;
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = std::remove_const_t<T>;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;

  ListRangeIterator() = default;
  ListRangeIterator(ZoVListNode* node, const ZoVList* list) noexcept : node_(node), list_(list) {}
  // Implicit, as with pointers. NOLINTNEXTLINE(google-explicit-constructor)
  operator ListRangeIterator<const T>() const noexcept
    requires(!std::is_const_v<T>)
  {
    return {node_, list_};
  }

  T& operator*() const noexcept { return static_cast<ZoListNode<value_type>*>(node_)->element; }
  T* operator->() const noexcept { return &**this; }
  ListRangeIterator& operator++() noexcept {
    node_ = node_->next;
    return *this;
  }
  ListRangeIterator operator++(int) noexcept {
    ListRangeIterator before = *this;
    ++*this;
    return before;
  }
  ListRangeIterator& operator--() noexcept {
    node_ = node_ ? node_->prev : list_->lastNode();
    return *this;
  }
  ListRangeIterator operator--(int) noexcept {
    ListRangeIterator before = *this;
    --*this;
    return before;
  }
  bool operator==(const ListRangeIterator& other) const noexcept { return node_ == other.node_; }

 private:
  ZoVListNode* node_ = nullptr;  // null at the end
  const ZoVList* list_ = nullptr;
};

}  // namespace zo

template <class T>
class ZoList : public ZoSequence<T> {
 public:
  ZoList() noexcept : list_(nullptr) {}
  ZoList(std::initializer_list<T> values) : ZoList() {
    zo::assertCopyable<T>();
    for (const T& value : values) zo::throwIfNoMemory(append(value));
  }
  explicit ZoList(const ZoSequence<T>& other) : ZoList() {
    zo::assertCopyable<T>();
    zo::throwIfNoMemory(append(other));
  }
  // Copies throw std::bad_alloc when there is no memory; moves leave the other list empty and
  // usable.
  ZoList(const ZoList& other) : ZoSequence<T>(other), list_(other.list_) {
    zo::assertCopyable<T>();
  }
  ZoList(ZoList&& other) noexcept : ZoSequence<T>(), list_(std::move(other.list_)) {}
  ZoList& operator=(const ZoList& other) {
    zo::assertCopyable<T>();
    list_ = other.list_;
    return *this;
  }
  ZoList& operator=(ZoList&& other) noexcept {
    list_ = std::move(other.list_);
    return *this;
  }
  ZoList& operator=(const ZoSequence<T>& other) {
    zo::assertCopyable<T>();
    zo::throwIfNoMemory(copyFrom(other));
    return *this;
  }
  ~ZoList() override = default;

  [[nodiscard]] unsigned entries() const noexcept final { return list_.entries_; }

  [[nodiscard]] auto begin() noexcept { return zo::ListRangeIterator<T>(list_.first_, &list_); }
  [[nodiscard]] auto end() noexcept { return zo::ListRangeIterator<T>(nullptr, &list_); }
  [[nodiscard]] auto begin() const noexcept {
    return zo::ListRangeIterator<const T>(list_.first_, &list_);
  }
  [[nodiscard]] auto end() const noexcept {
    return zo::ListRangeIterator<const T>(nullptr, &list_);
  }

  [[nodiscard]] int append(const T& value) final { return insertCopy(nullptr, value); }
  [[nodiscard]] int append(T&& value) final { return insertBefore(nullptr, std::move(value)); }
  [[nodiscard]] int append(const ZoSequence<T>& other) final {
    ZoList copies;
    if (const int status = copies.makeMem()) return status;
    for (const T& element : other) {
      if (const int status = copies.append(element)) return status;
    }
    if (const int status = makeMem()) return status;
    list_.appendAll(copies.list_);
    return ZoResult::ok;
  }
  // Makes the element in its place; std::bad_alloc of its constructor gives 2.
  template <class... Arguments>
  [[nodiscard]] int emplace(Arguments&&... arguments) {
    return insertBefore(nullptr, std::forward<Arguments>(arguments)...);
  }
  [[nodiscard]] int insertAt(unsigned i, const T& value) final {
    return i > entries() ? ZoResult::refused : insertCopy(list_.getNodeAtIndex(i), value);
  }
  [[nodiscard]] int insertAt(unsigned i, T&& value) final {
    return i > entries() ? ZoResult::refused
                         : insertBefore(list_.getNodeAtIndex(i), std::move(value));
  }
  [[nodiscard]] int fillAt(unsigned i, unsigned n, const T& value) final {
    if (const int status = makeMem()) return status;
    return list_.fillAt(i, n, &value);
  }
  [[nodiscard]] int copyFrom(const ZoSequence<T>& other) final {
    if (this == &other) return ZoResult::ok;
    ZoList copy;
    if (const int status = copy.append(other)) return status;
    *this = std::move(copy);
    return ZoResult::ok;
  }

  using ZoSequence<T>::index;
  [[nodiscard]] unsigned index(const T& value, const ZoCompare<T>& compare) const final {
    const ZoListCompare<T> adapter(compare);
    return list_.index(&value, &adapter);
  }
  using ZoSequence<T>::remove;
  int remove(const T& value, const ZoCompare<T>& compare, bool all = false) final {
    const ZoListCompare<T> adapter(compare);
    return list_.remove(&value, &adapter, all);
  }
  using ZoContainer<T>::removeAll;
  int removeAll(bool freeMemory = false) final { return list_.removeAll(freeMemory); }
  using ZoSequence<T>::sort;
  [[nodiscard]] int sort(const ZoCompare<T>& compare, bool ascending = true) final {
    const ZoListCompare<T> adapter(compare);
    return list_.sort(&adapter, ascending);
  }
  [[nodiscard]] int reverse() final { return list_.reverse(); }
  int apply(ZoListApply<T>& applyFn) { return list_.apply(&applyFn); }

  void walk(zo::SequenceCursor& cursor) const final {
    ZoVListNode* const node =
        cursor.node ? static_cast<ZoVListNode*>(cursor.node)->next : list_.first_;
    cursor.node = node;
    cursor.element = elementOf(node);
  }
  [[nodiscard]] const ZoVList& engine() const noexcept { return list_; }

 protected:
  [[nodiscard]] T* locate(unsigned i) const noexcept final {
    return elementOf(list_.getNodeAtIndex(i));
  }
  int take(unsigned i, T* out) final { return list_.removeAt(i, out); }

 private:
  template <class E>
  friend class ZoListIterator;
  template <class E>
  friend class ZoListCIterator;

  [[nodiscard]] static T* elementOf(ZoVListNode* node) noexcept {
    return node ? &static_cast<ZoListNode<T>*>(node)->element : nullptr;
  }
  int makeMem() {
    if (!list_.mem_) list_.mem_ = new (std::nothrow) ZoListMem<T>;
    return list_.mem_ ? ZoResult::ok : ZoResult::outOfMemory;
  }
  // In front of a node, or at the end when it is null.
  template <class... Arguments>
  int insertBefore(ZoVListNode* before, Arguments&&... arguments) {
    if (const int status = makeMem()) return status;
    ZoVListNode* node = nullptr;
    if (const int status = static_cast<ZoListMem<T>*>(list_.mem_)
                               ->make(node, std::forward<Arguments>(arguments)...)) {
      return status;
    }
    list_.link(node, before ? before->prev : list_.last_);
    return ZoResult::ok;
  }
  int insertCopy(ZoVListNode* before, const T& value) {
    if constexpr (zo::isCopyable<T>) {
      return insertBefore(before, value);
    } else {
      return ZoResult::refused;
    }
  }

  ZoVList list_;
};

template <class T>
inline constexpr bool zo::isCopyable<ZoList<T>> = zo::isCopyable<T>;
