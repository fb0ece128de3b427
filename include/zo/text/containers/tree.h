// ZoTree<T, K, C>: a dictionary in a balanced tree, ordered by the comparison C of its keys.
//
// Entries are visited in the order of their keys. Keys and values keep their addresses until they
// are removed. Values and keys that can only be moved are fine; operations that copy refuse them
// with 1.
//
// Errors, Threads, Cost: as in vtree.h. Range-for iterators hold until the tree gains or loses an
// entry.
#pragma once

#include <zo/text/containers/dict.h>
#include <zo/text/containers/vtree.h>

#include <initializer_list>

namespace zo {

template <class T, class K>
struct TreeEntry {
  template <class Key, class Value>
  TreeEntry(Key&& k, Value&& v) : key(std::forward<Key>(k)), value(std::forward<Value>(v)) {}
  K key;
  T value;
};

template <class T, class K>
struct TreeNode : ZoVTreeNode {
  template <class Key, class Value>
  TreeNode(Key&& k, Value&& v) : entry(std::forward<Key>(k), std::forward<Value>(v)) {
    element = &entry;
  }
  TreeEntry<T, K> entry;
};

// Range-for iterator of a tree.
template <class T, class K>
class TreeRangeIterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using value_type = DictEntry<T, K>;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = DictEntry<T, K>;

  TreeRangeIterator() = default;
  explicit TreeRangeIterator(ZoVTreeNode* root) noexcept { path_.descendLeft(root); }

  reference operator*() const noexcept {
    auto* const entry =
        static_cast<TreeEntry<std::remove_const_t<T>, K>*>(path_.current()->element);
    return {entry->key, entry->value};
  }
  TreeRangeIterator& operator++() noexcept {
    path_.advance();
    return *this;
  }
  TreeRangeIterator operator++(int) noexcept {
    TreeRangeIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const TreeRangeIterator& other) const noexcept {
    return path_.current() == other.path_.current();
  }
  bool operator==(std::default_sentinel_t) const noexcept { return !path_.current(); }

 private:
  TreePath path_;
};

}  // namespace zo

// The storage of ZoTree.
template <class T, class K>
class ZoTreeMem final : public ZoVTreeMem {
 public:
  using Node = zo::TreeNode<T, K>;
  using Entry = zo::TreeEntry<T, K>;

  ZoTreeMem() noexcept : ZoVTreeMem(sizeof(Node), alignof(Node)) {}

  [[nodiscard]] ZoVTreeMem* makeNew() const override { return new (std::nothrow) ZoTreeMem; }
  [[nodiscard]] int newNode(const void* key, const void* value, ZoVTreeNode*& node) override {
    node = nullptr;
    if constexpr (zo::isCopyable<K> && zo::isCopyable<T>) {
      if (value) return makeNode(node, *static_cast<const K*>(key), *static_cast<const T*>(value));
    }
    return ZoResult::refused;
  }
  void deleteNode(ZoVTreeNode* node) override {
    zo::destroyElements(static_cast<Node*>(node), 1);
    pool_.release(node);
  }
  [[nodiscard]] const void* key(const void* element) const override {
    return &static_cast<const Entry*>(element)->key;
  }
  [[nodiscard]] void* value(void* element) const override {
    return &static_cast<Entry*>(element)->value;
  }
  int assignKey(void* to, const void* from) override { return zo::assignElement<K>(to, from); }
  int assignValue(void* to, const void* from) override { return zo::assignElement<T>(to, from); }
  int moveValue(void* to, void* from) override { return zo::moveElement<T>(to, from); }

  template <class Key, class Value>
  [[nodiscard]] int makeNode(ZoVTreeNode*& node, Key&& key, Value&& value) {
    return zo::makeNode<Node>(pool_, node, std::forward<Key>(key), std::forward<Value>(value));
  }
};

template <class T, class K, class C = ZoCICompare<K>>
class ZoTree : public ZoDict<T, K> {
 public:
  ZoTree() noexcept : tree_(nullptr) {}
  ZoTree(std::initializer_list<std::pair<K, T>> entries) : ZoTree() {
    zo::assertCopyable<K, T>();
    for (const auto& [key, value] : entries)
      zo::throwIfNoMemory(insertAt(key, value));  // the first of equal keys stays
  }
  explicit ZoTree(const ZoDict<T, K>& other) : ZoTree() {
    zo::assertCopyable<K, T>();
    zo::throwIfNoMemory(this->insertAll(other));
  }
  // Copies throw std::bad_alloc when there is no memory; moves leave the other tree empty and
  // usable.
  ZoTree(const ZoTree& other) : ZoDict<T, K>(other), tree_(nullptr), compare_(other.compare_) {
    zo::assertCopyable<K, T>();
    zo::throwIfNoMemory(this->insertAll(other));
  }
  ZoTree(ZoTree&& other) noexcept
      : ZoDict<T, K>(), tree_(std::move(other.tree_)), compare_(other.compare_) {}
  ZoTree& operator=(const ZoTree& other) { return *this = static_cast<const ZoDict<T, K>&>(other); }
  ZoTree& operator=(ZoTree&& other) noexcept {
    tree_ = std::move(other.tree_);
    return *this;
  }
  ZoTree& operator=(const ZoDict<T, K>& other) {
    if (this != &other) *this = ZoTree(other);
    return *this;
  }
  ~ZoTree() override = default;

  [[nodiscard]] unsigned entries() const noexcept final { return tree_.count(); }

  [[nodiscard]] auto begin() noexcept { return zo::TreeRangeIterator<T, K>(tree_.root_); }
  [[nodiscard]] auto begin() const noexcept {
    return zo::TreeRangeIterator<const T, K>(tree_.root_);
  }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

  // The smallest and the largest key; null when empty.
  [[nodiscard]] const K* firstKey() const noexcept { return keyOf(tree_.first()); }
  [[nodiscard]] const K* lastKey() const noexcept { return keyOf(tree_.last()); }
  // The position of a key in order, or npos. O(n).
  [[nodiscard]] unsigned index(const K& key) const {
    const ZoTreeCompare<K> adapter(compare_);
    unsigned i = zo::npos;
    static_cast<void>(tree_.getIndex(&key, &i, &adapter));  // leaves npos when absent
    return i;
  }
  [[nodiscard]] int findKey(const K& key, K& outKey) const final {
    const ZoVTreeNode* const node = find(key);
    return node ? zo::assignElement<K>(&outKey, keyOf(node->element)) : ZoResult::refused;
  }

  [[nodiscard]] int insertAt(const K& key, const T& value) final {
    if constexpr (zo::isCopyable<K> && zo::isCopyable<T>) {
      return insertNew(key, value);
    } else {
      return ZoResult::refused;
    }
  }
  [[nodiscard]] int insertAt(K&& key, T&& value) final {
    return insertNew(std::move(key), std::move(value));
  }

  using ZoContainer<T>::removeAll;
  int removeAll(bool = false) final { return tree_.removeAll(); }  // always gives the memory back

  void walk(zo::DictCursor& cursor) const final {
    ZoVTreeNode* const node = cursor.node ? following(*static_cast<const K*>(cursor.key))
                                          : ZoVTree::firstNode(tree_.root_);
    cursor.node = node;
    if (node) {
      cursor.key = keyOf(node->element);
      cursor.value = valueOf(node);
    }
  }
  [[nodiscard]] const ZoVTree& engine() const noexcept { return tree_; }

 protected:
  [[nodiscard]] T* locate(const K& key) const final {
    ZoVTreeNode* const node = find(key);
    return node ? valueOf(node) : nullptr;
  }
  int take(const K& key, T* out) final {
    const ZoTreeCompare<K> adapter(compare_);
    return tree_.removeAt(&key, out, &adapter);
  }

 private:
  using Entry = zo::TreeEntry<T, K>;

  template <class Make>
  class Maker final : public zo::TreeNodeMaker {
   public:
    Maker(std::uint32_t front, Make make) : TreeNodeMaker(front), make_(make) {}
    [[nodiscard]] int make(ZoVTreeNode*& node) override { return make_(node); }

   private:
    Make make_;
  };

  [[nodiscard]] static const K* keyOf(const void* element) noexcept {
    return element ? &static_cast<const Entry*>(element)->key : nullptr;
  }
  [[nodiscard]] static T* valueOf(ZoVTreeNode* node) noexcept {
    return &static_cast<Entry*>(node->element)->value;
  }

  [[nodiscard]] ZoVTreeNode* find(const K& key) const {
    const std::uint32_t front = zo::frontOf<K, C>(key);
    ZoVTreeNode* node = tree_.root_;
    while (node) {
      const int order = compare(key, front, *node);
      if (order == 0) break;
      node = order < 0 ? node->left : node->right;
    }
    return node;
  }
  [[nodiscard]] int compare(const K& key, std::uint32_t front, const ZoVTreeNode& node) const {
    zo::prefetch(node.left);
    zo::prefetch(node.right);
    const int order = zo::orderOfFronts(front, node.front);
    return order != 0 ? order : compare_.C::compare(key, *keyOf(node.element));
  }
  // The first node whose key is greater.
  [[nodiscard]] ZoVTreeNode* following(const K& key) const {
    const std::uint32_t front = zo::frontOf<K, C>(key);
    ZoVTreeNode* found = nullptr;
    for (ZoVTreeNode* node = tree_.root_; node;) {
      if (compare(key, front, *node) < 0) {
        found = node;
        node = node->left;
      } else {
        node = node->right;
      }
    }
    return found;
  }

  template <class Key, class Value>
  int insertNew(Key&& key, Value&& value) {
    if (!tree_.mem_) tree_.mem_ = new (std::nothrow) ZoTreeMem<T, K>;
    if (!tree_.mem_) return ZoResult::outOfMemory;
    Maker maker(zo::frontOf<K, C>(key), [&](ZoVTreeNode*& node) {
      return static_cast<ZoTreeMem<T, K>*>(tree_.mem_)
          ->makeNode(node, std::forward<Key>(key), std::forward<Value>(value));
    });
    const ZoTreeCompare<K> adapter(compare_);
    return tree_.insertMade(&key, maker, &adapter);
  }

  ZoVTree tree_;
  C compare_;
};

template <class T, class K, class C>
inline constexpr bool zo::isCopyable<ZoTree<T, K, C>> = zo::isCopyable<K> && zo::isCopyable<T>;
