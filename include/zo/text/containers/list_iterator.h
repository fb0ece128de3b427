// Iterators of ZoList: they stand on an element, and survive insertions, sorting and the removal of other elements.
// When their own element is removed by someone else they are not valid; see vlist.h for what noticing that costs.
#pragma once

#include <zo/text/containers/iterator.h>
#include <zo/text/containers/list.h>

namespace zo {

// What both kinds share.
template <class T, class Base>
class ListWalker : public Base {
 public:
  void reset() final { m_walk.reset(); }
  bool toFirst() final { return m_walk.toFirst(); }
  [[nodiscard]] bool atFirst() const final { return m_walk.atFirst(); }
  [[nodiscard]] bool isValid() const final { return m_walk.isValid(); }
  bool next() final { return m_walk.next(); }
  bool toLast() final { return m_walk.toLast(); }
  [[nodiscard]] bool atLast() const final { return m_walk.atLast(); }
  bool to(unsigned i) final { return m_walk.to(i); }
  bool prev() final { return m_walk.prev(); }

 protected:
  explicit ListWalker(ZoVList& list) noexcept : m_walk(list) {}

  [[nodiscard]] const T* element() const final {
    ZoVListNode* const node = m_walk.node();
    return node ? &static_cast<ZoListNode<T>*>(node)->element : nullptr;
  }

  ZoVListIterator m_walk;
};

}  // namespace zo

template <class T>
class ZoListIterator final : public zo::ListWalker<T, ZoSeqIterator<T>> {
 public:
  explicit ZoListIterator(ZoList<T>& list) noexcept
      : zo::ListWalker<T, ZoSeqIterator<T>>(list.m_list), m_list(&list) {}

  using zo::ListWalker<T, ZoSeqIterator<T>>::reset;
  void reset(ZoList<T>& list) noexcept {
    m_list = &list;
    this->m_walk.reset(list.m_list);
  }

  int insert(const T& value) final {
    ZoVListNode* const before = this->m_walk.node();
    if (const int status = m_list->insertBefore(before, value)) return status;
    this->m_walk.stand(before ? before->prev : m_list->m_list.lastNode());
    return ZoResult::ok;
  }

 protected:
  int take(T* out) final { return this->m_walk.remove(out); }

 private:
  ZoList<T>* m_list;
};

template <class T>
class ZoListCIterator final : public zo::ListWalker<T, ZoSeqCIterator<T>> {
 public:
  // The engine's iterator can change its list; this class does not let it.
  explicit ZoListCIterator(const ZoList<T>& list) noexcept
      : zo::ListWalker<T, ZoSeqCIterator<T>>(const_cast<ZoVList&>(list.m_list)) {}

  using zo::ListWalker<T, ZoSeqCIterator<T>>::reset;
  void reset(const ZoList<T>& list) noexcept {
    this->m_walk.reset(const_cast<ZoVList&>(list.m_list));
  }
};
