// Iterators of ZoList: they stand on an element, and survive insertions, sorting and the removal of
// other elements. When their own element is removed by someone else they are not valid; see vlist.h
// for what noticing that costs.
//
// Errors, Threads: as iterator.h.
#pragma once

#include <zo/text/containers/iterator.h>
#include <zo/text/containers/list.h>

#include <utility>

namespace zo {

// What both kinds share.
template <class T, class Base>
class ListIteratorBase : public Base {
 public:
  void reset() final { walk_.reset(); }
  bool toFirst() final { return walk_.toFirst(); }
  [[nodiscard]] bool atFirst() const final { return walk_.atFirst(); }
  [[nodiscard]] bool isValid() const final { return walk_.isValid(); }
  bool next() final { return walk_.next(); }
  bool toLast() final { return walk_.toLast(); }
  [[nodiscard]] bool atLast() const final { return walk_.atLast(); }
  bool to(unsigned i) final { return walk_.to(i); }
  bool prev() final { return walk_.prev(); }

  // As in the root class, without its virtual call.
  [[nodiscard]] auto current() const noexcept {
    return static_cast<decltype(std::declval<const Base&>().current())>(place());
  }
  [[nodiscard]] auto operator()() const noexcept { return current(); }

 protected:
  explicit ListIteratorBase(ZoVList& list) noexcept : walk_(list) {}

  [[nodiscard]] const T* element() const final { return place(); }
  [[nodiscard]] T* place() const noexcept {
    ZoVListNode* const node = walk_.node();
    return node ? &static_cast<ZoListNode<T>*>(node)->element : nullptr;
  }

  ZoVListIterator walk_;
};

}  // namespace zo

template <class T>
class ZoListIterator final : public zo::ListIteratorBase<T, ZoSeqIterator<T>> {
 public:
  explicit ZoListIterator(ZoList<T>& list) noexcept
      : zo::ListIteratorBase<T, ZoSeqIterator<T>>(list.list_), list_(&list) {}

  using zo::ListIteratorBase<T, ZoSeqIterator<T>>::reset;
  void reset(ZoList<T>& list) noexcept {
    list_ = &list;
    this->walk_.reset(list.list_);
  }

  [[nodiscard]] int insert(const T& value) final {
    ZoVListNode* const before = this->walk_.node();
    if (const int status = list_->insertCopy(before, value)) return status;
    this->walk_.stand(before ? before->prev : list_->list_.lastNode());
    return ZoResult::ok;
  }

 protected:
  int take(T* out) final { return this->walk_.remove(out); }

 private:
  ZoList<T>* list_;
};

template <class T>
class ZoListCIterator final : public zo::ListIteratorBase<T, ZoSeqCIterator<T>> {
 public:
  // The engine's iterator can change its list; this class does not let it.
  explicit ZoListCIterator(const ZoList<T>& list) noexcept
      : zo::ListIteratorBase<T, ZoSeqCIterator<T>>(const_cast<ZoVList&>(list.list_)) {}

  using zo::ListIteratorBase<T, ZoSeqCIterator<T>>::reset;
  void reset(const ZoList<T>& list) noexcept {
    this->walk_.reset(const_cast<ZoVList&>(list.list_));
  }
};
