// The storage of ZoHashDict<T, K, H>: nodes that hold key and value.
//
// Errors, Threads: as in vhash.h.
#pragma once

#include <zo/text/containers/elements.h>
#include <zo/text/containers/vhash.h>

namespace zo {

template <class T, class K>
struct HashNode : ZoVHashNode {
  template <class Key, class Value>
  HashNode(Key&& k, Value&& v) : key(std::forward<Key>(k)), value(std::forward<Value>(v)) {}
  K key;
  T value;
};

}  // namespace zo

template <class T, class K>
class ZoHashTable final : public ZoVHashTable {
 public:
  using Node = zo::HashNode<T, K>;

  // Null when there is no memory, or n is 0.
  [[nodiscard]] static ZoHashTable* make(unsigned buckets) noexcept {
    auto* const table = new (std::nothrow) ZoHashTable;
    if (table && table->makeBuckets(buckets)) return table;
    delete table;
    return nullptr;
  }
  ~ZoHashTable() override { ZoVHashTable::removeAll(); }

  [[nodiscard]] ZoVHashTable* makeNew(unsigned buckets) const override { return make(buckets); }
  [[nodiscard]] int newNode(const void* key, const void* value, ZoVHashNode*& node) override {
    if constexpr (zo::isCopyable<K> && zo::isCopyable<T>) {
      return makeNode(node, *static_cast<const K*>(key), *static_cast<const T*>(value));
    } else {
      node = nullptr;
      return ZoResult::refused;
    }
  }
  void deleteNode(ZoVHashNode* node) override {
    zo::destroyElements(static_cast<Node*>(node), 1);
    pool_.release(node);
  }
  [[nodiscard]] const void* key(const ZoVHashNode* node) const override {
    return &static_cast<const Node*>(node)->key;
  }
  [[nodiscard]] void* value(ZoVHashNode* node) const override {
    return &static_cast<Node*>(node)->value;
  }
  int assignKey(void* to, const void* from) override { return zo::assignElement<K>(to, from); }
  int assignValue(void* to, const void* from) override { return zo::assignElement<T>(to, from); }
  int moveValue(void* to, void* from) override { return zo::moveElement<T>(to, from); }

  template <class Key, class Value>
  [[nodiscard]] int makeNode(ZoVHashNode*& node, Key&& key, Value&& value) {
    return zo::makeNode<Node>(pool_, node, std::forward<Key>(key), std::forward<Value>(value));
  }

 private:
  ZoHashTable() noexcept : ZoVHashTable(sizeof(Node), alignof(Node)) {}
};
