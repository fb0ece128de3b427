// The list engine: a doubly linked list of elements of unknown type, its node storage and its
// iterator.
//
// Everything that depends on the element type goes through the storage object; ZoList<T> supplies
// it and is what programs use. An element keeps its address until it is removed, also through sort
// and reverse.
//
// Errors:  0 success; 1 refused (position out of range, null value or object, no storage, an
//          element that cannot be copied); 2 out of memory, and then nothing has changed. An
//          exception of an element's copy leaves the list as it was; fillAt over existing elements
//          and setAt keep what the element's assignment keeps. Constructors and assignment, which
//          have no status, throw std::bad_alloc.
// Threads: any number of readers, or one writer.
// Cost:    both ends O(1); a position is walked to from the front, O(position); sort O(n log n),
//          stable, by relinking.
#pragma once

#include <zo/config.h>
#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/position.h>
#include <zo/text/containers/vcallbacks.h>

#include <cstddef>

template <class T>
class ZoList;

struct ZoVListNode {
  ZoVListNode* next = nullptr;
  ZoVListNode* prev = nullptr;
};

// Makes and destroys the nodes of one list; each holds its element at a fixed distance.
class ZO_COM_API ZoVListMem {
 public:
  virtual ~ZoVListMem();  // the nodes have been deleted before
  ZoVListMem(const ZoVListMem&) = delete;
  ZoVListMem& operator=(const ZoVListMem&) = delete;

  [[nodiscard]] virtual ZoVListMem* makeNew() const = 0;  // null when there is no memory
  // A node that is not linked, with a copy of the value. `node` is null unless the status is 0.
  [[nodiscard]] virtual int newNode(const void* value, ZoVListNode*& node) = 0;
  virtual void deleteNode(ZoVListNode* node) = 0;
  virtual int assign(void* to, const void* from) = 0;
  virtual int moveOut(void* to, void* from) = 0;

  [[nodiscard]] void* element(ZoVListNode* node) const noexcept {
    return reinterpret_cast<char*>(node) + elementOffset_;
  }
  [[nodiscard]] ZoVListNode* node(void* element) const noexcept {
    return reinterpret_cast<ZoVListNode*>(static_cast<char*>(element) - elementOffset_);
  }
  void freeMemory() noexcept { pool_.clear(); }  // no node is left
  // Takes over the nodes' memory of a storage of the same type.
  void absorb(ZoVListMem& other) noexcept { pool_.absorb(other.pool_); }

 protected:
  ZoVListMem(std::size_t nodeSize, std::size_t alignment, std::size_t elementOffset) noexcept
      : pool_(nodeSize, alignment), elementOffset_(elementOffset) {}

  zo::NodePool pool_;
  std::size_t elementOffset_;
};

class ZO_COM_API ZoVList {
 public:
  explicit ZoVList(ZoVListMem* mem) noexcept : mem_(mem) {}  // takes it over
  ZoVList(const ZoVList& other);
  ZoVList(ZoVList&& other) noexcept;  // the other is left without storage
  ZoVList& operator=(const ZoVList& other);
  ZoVList& operator=(ZoVList&& other) noexcept;
  ~ZoVList();

  [[nodiscard]] unsigned entries() const noexcept { return entries_; }
  [[nodiscard]] bool isEmpty() const noexcept { return entries_ == 0; }
  [[nodiscard]] bool isValid(unsigned i) const noexcept { return i < entries_; }

  // The element, or null.
  [[nodiscard]] void* at(unsigned i) const noexcept { return elementOf(getNodeAtIndex(i)); }
  [[nodiscard]] void* first() const noexcept { return elementOf(first_); }
  [[nodiscard]] void* last() const noexcept { return elementOf(last_); }
  [[nodiscard]] int getAt(unsigned i, void* out) const;  // copies to *out
  [[nodiscard]] int setAt(unsigned i, const void* value);

  // The first position whose element compares equal to *value, or npos.
  [[nodiscard]] unsigned index(const void* value, const ZoVListCompare* compare) const;
  // Same number of elements, and all compare equal.
  [[nodiscard]] bool isEqualTo(const ZoVList& other, const ZoVListCompare* compare) const;

  // Values may be elements of this list, and `other` may be this list.
  [[nodiscard]] int append(const void* value) { return insertAt(entries_, value); }
  [[nodiscard]] int append(const ZoVList& other);
  [[nodiscard]] int prepend(const void* value) { return insertAt(0, value); }
  // In front of position i; i == entries() appends.
  [[nodiscard]] int insertAt(unsigned i, const void* value);
  // Sets n elements from position i on, and appends those that lie past the end.
  [[nodiscard]] int fillAt(unsigned i, unsigned n, const void* value);
  int apply(ZoVListApply* applyFn) const;

  // Removes the first element that compares equal, or all of them; 1 when there is none.
  int remove(const void* value, const ZoVListCompare* compare, bool all);
  // The removed element is moved to *out unless out is null.
  int removeFirst(void* out) { return removeNode(first_, out); }
  int removeLast(void* out) { return removeNode(last_, out); }
  int removeAt(unsigned i, void* out) { return removeNode(getNodeAtIndex(i), out); }
  int removeAll(bool freeMemory);  // true gives the memory kept for new nodes back too

  // Stable in both directions.
  [[nodiscard]] int sort(const ZoVListCompare* compare, bool ascending);
  [[nodiscard]] int reverse();
  [[nodiscard]] int copyFrom(const ZoVList& other);  // replaces the elements

  // Nodes, for iterators and typed lists. A node that is linked belongs to the list.
  void link(ZoVListNode* node, ZoVListNode* after) noexcept {  // null: to the front
    ZoVListNode* const next = after ? after->next : first_;
    node->prev = after;
    node->next = next;
    (after ? after->next : first_) = node;
    (next ? next->prev : last_) = node;
    ++entries_;
  }
  void unlink(ZoVListNode* node) noexcept {
    (node->prev ? node->prev->next : first_) = node->next;
    (node->next ? node->next->prev : last_) = node->prev;
    --entries_;
    ++removals_;
  }
  [[nodiscard]] ZoVListNode* lastNode() const noexcept { return last_; }
  [[nodiscard]] ZoVListNode* getNodeAtIndex(unsigned i) const noexcept;  // null when out of range
  // Moves the element to *out unless that is null, and deletes the node. Null is refused.
  int removeNode(ZoVListNode* node, void* out);

  // True when links and number of entries agree.
  [[nodiscard]] bool validate() const noexcept;

 private:
  template <class T>
  friend class ZoList;
  friend class ZoVListIterator;

  [[nodiscard]] void* elementOf(ZoVListNode* node) const noexcept {
    return node ? mem_->element(node) : nullptr;
  }
  void appendAll(ZoVList& other) noexcept;
  void swap(ZoVList& other) noexcept;
  void relink(void* const* order) noexcept;

  ZoVListMem* mem_ = nullptr;
  ZoVListNode* first_ = nullptr;
  ZoVListNode* last_ = nullptr;
  unsigned entries_ = 0;
  unsigned removals_ = 0;  // lets an iterator see that its node may be gone
};

// Stands on a node, so it survives every insertion, sort and removal of other elements. When the
// element it stands on is removed by someone else it is not valid. It notices that by the list's
// count of removals: after one, its next use looks for its node in the list, O(n). (An element that
// has been inserted meanwhile in the same memory passes for its own.) The list must outlive it.
class ZO_COM_API ZoVListIterator {
 public:
  explicit ZoVListIterator(ZoVList& list) noexcept : list_(&list) { reset(); }

  void reset() noexcept { stand(list_->first_); }  // to the first element
  void reset(ZoVList& list) noexcept {
    list_ = &list;
    reset();
  }
  [[nodiscard]] bool isValid() const noexcept { return node() != nullptr; }
  // Null when not valid.
  [[nodiscard]] void* current() const noexcept { return list_->elementOf(node()); }
  [[nodiscard]] bool atFirst() const noexcept { return node() && node() == list_->first_; }
  [[nodiscard]] bool atLast() const noexcept { return node() && node() == list_->last_; }

  // Movements tell whether the iterator is valid afterwards.
  bool toFirst() noexcept { return stand(list_->first_); }
  bool toLast() noexcept { return stand(list_->last_); }
  bool to(unsigned i) noexcept { return stand(list_->getNodeAtIndex(i)); }
  bool next() noexcept { return stand(node() ? node_->next : nullptr); }
  bool prev() noexcept { return stand(node() ? node_->prev : nullptr); }

  // In front of the current element, or at the end; stands on the new one then.
  [[nodiscard]] int insert(const void* value);
  int remove(void* out);  // stands on the following element then
  // To the next (previous) element behind (before) the current one that compares equal: the one it
  // stands on is not looked at, nor is the first by a fresh iterator.
  bool findNext(const void* value, const zo::ElementCompare* compare);
  bool findPrev(const void* value, const zo::ElementCompare* compare);

  // For typed iterators.
  [[nodiscard]] ZoVListNode* node() const noexcept {
    if (removals_ != list_->removals_) find();
    return node_;
  }
  bool stand(ZoVListNode* node) noexcept {
    node_ = node;
    removals_ = list_->removals_;
    return node != nullptr;
  }
  [[nodiscard]] ZoVList& list() const noexcept { return *list_; }

 private:
  void find() const noexcept;

  ZoVList* list_;
  mutable ZoVListNode* node_ = nullptr;
  mutable unsigned removals_ = 0;
};
