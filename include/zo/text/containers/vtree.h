// The tree engine: a height-balanced (AVL) binary search tree over elements of unknown type, its
// node storage and its iterator.
//
// An element is a key alone or a key with a value: the storage object tells. The order is that of
// the compare object passed to every operation, and must always be the same for one tree. ZoTree<T,
// K> supplies both and is what programs use. An element keeps its address until it is removed.
//
// Errors:  0 success; 1 refused (key present, key absent, null key, value or object, no storage, an
//          element that cannot be copied); 2 out of memory. Nothing has changed then, nor after an
//          exception of an element's copy or of the compare object. The copying constructor, which
//          has no status, throws std::bad_alloc.
// Threads: any number of readers, or one writer.
// Cost:    O(log n) for a key; at most 1.44 log2(n + 2) levels. first and last O(log n), getIndex
//          O(n).
#pragma once

#include <zo/config.h>
#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/position.h>
#include <zo/text/containers/vcallbacks.h>

#include <cstddef>
#include <cstdint>

template <class T, class K, class C>
class ZoTree;

struct ZoVTreeNode {
  void* element = nullptr;
  ZoVTreeNode* left = nullptr;
  ZoVTreeNode* right = nullptr;
  int balance = 0;          // height of the right subtree minus that of the left: -1, 0 or +1
  std::uint32_t front = 0;  // what the key begins with (zo::orderOfFronts); 0 when that is unknown
};

static_assert(offsetof(ZoVTreeNode, element) == 0 && offsetof(ZoVTreeNode, left) == 8 &&
              offsetof(ZoVTreeNode, right) == 16 && offsetof(ZoVTreeNode, balance) == 24);

class ZO_COM_API ZoVTreeMem {
 public:
  virtual ~ZoVTreeMem();  // the nodes have been deleted before
  ZoVTreeMem(const ZoVTreeMem&) = delete;
  ZoVTreeMem& operator=(const ZoVTreeMem&) = delete;

  [[nodiscard]] virtual ZoVTreeMem* makeNew() const = 0;  // null when there is no memory
  // A node with copies of key and value (null: an element without one). `node` is null unless the
  // status is 0.
  [[nodiscard]] virtual int newNode(const void* key, const void* value, ZoVTreeNode*& node) = 0;
  virtual void deleteNode(ZoVTreeNode* node) = 0;
  [[nodiscard]] virtual const void* key(const void* element) const = 0;
  // The value, or the element itself when it is a key alone.
  [[nodiscard]] virtual void* value(void* element) const = 0;
  virtual int assignKey(void* to, const void* from) = 0;
  virtual int assignValue(void* to, const void* from) = 0;
  virtual int moveValue(void* to, void* from) = 0;

  void freeMemory() noexcept { pool_.clear(); }  // no node is left

 protected:
  ZoVTreeMem(std::size_t nodeSize, std::size_t alignment) noexcept : pool_(nodeSize, alignment) {}

  zo::NodePool pool_;
};

namespace zo {

// What a key begins with, in a few bits that order as the keys do: a walk down the tree then needs
// to look at few keys, which lie elsewhere in memory. The lowest bits are the kind, from 1: fronts
// of different kinds (keys of which nothing is known, a locale that the user has left) do not tell.
inline constexpr unsigned kFrontKindBits = 4;

// -1 or 1 when the fronts of two keys decide their order, else 0.
[[nodiscard]] constexpr int orderOfFronts(std::uint32_t a, std::uint32_t b) noexcept {
  constexpr std::uint32_t kKind = (1u << kFrontKindBits) - 1;
  if (a == b || ((a ^ b) & kKind) != 0 || (a & kKind) == 0) return 0;
  return a < b ? -1 : 1;
}

// Makes the node of a new element once the tree knows that its key is not present.
class ZO_COM_API TreeNodeMaker {
 public:
  explicit TreeNodeMaker(std::uint32_t front = 0) noexcept : front_(front) {}
  [[nodiscard]] virtual int make(ZoVTreeNode*& node) = 0;
  [[nodiscard]] std::uint32_t front() const noexcept { return front_; }  // of the key

 protected:
  ~TreeNodeMaker() = default;

 private:
  std::uint32_t front_;
};

// The way from the root to a node: an AVL tree of 2^32 nodes has at most 46 levels.
class TreePath {
 public:
  void clear() noexcept { depth_ = 0; }
  [[nodiscard]] ZoVTreeNode* current() const noexcept {
    return depth_ > 0 ? nodes_[depth_ - 1] : nullptr;
  }
  // Down to the first node in order of the subtree; null is allowed.
  void descendLeft(ZoVTreeNode* node) noexcept {
    for (; node; node = node->left) nodes_[depth_++] = node;
  }
  // To the next node in order. Nodes whose right side is being walked are not kept.
  void advance() noexcept { descendLeft(nodes_[--depth_]->right); }

 private:
  ZoVTreeNode* nodes_[48];
  unsigned depth_ = 0;
};

}  // namespace zo

class ZO_COM_API ZoVTree {
 public:
  explicit ZoVTree(ZoVTreeMem* mem) noexcept : mem_(mem) {}  // takes it over
  // Copies the elements of another tree of the same types, in the order of the compare object.
  ZoVTree(ZoVTreeMem* mem, const ZoVTree& other, const ZoVTreeCompare* compare);
  ZoVTree(ZoVTree&& other) noexcept;  // the other is left without storage
  ZoVTree& operator=(ZoVTree&& other) noexcept;
  ~ZoVTree();

  [[nodiscard]] unsigned count() const noexcept { return count_; }
  [[nodiscard]] void* first() const noexcept;  // the smallest element, or null
  [[nodiscard]] void* last() const noexcept;
  // The value of a key, or null.
  [[nodiscard]] void* at(const void* key, const ZoVTreeCompare* compare) const;
  // Copies the value.
  [[nodiscard]] int getAt(const void* key, void* out, const ZoVTreeCompare* compare) const;
  // The position of a key in order.
  [[nodiscard]] int getIndex(const void* key, unsigned* out, const ZoVTreeCompare* compare) const;
  // Refuses an absent key.
  [[nodiscard]] int setAt(const void* key, const void* value, const ZoVTreeCompare* compare);

  // An element that is a key alone.
  [[nodiscard]] int insert(const void* element, const ZoVTreeCompare* compare);
  [[nodiscard]] int insertAt(const void* key, const void* value, const ZoVTreeCompare* compare);

  int remove(const void* key, const ZoVTreeCompare* compare) {
    return removeAt(key, nullptr, compare);
  }
  // The value of the removed element is moved to *out unless out is null.
  int removeAt(const void* key, void* out, const ZoVTreeCompare* compare);
  int removeFirst(const ZoVTreeCompare* compare, void* out);
  int removeLast(const ZoVTreeCompare* compare, void* out);
  int removeAll();

  int apply(ZoVTreeApply* applyFn) const;  // to the elements, in order
  // Each node before its children when `parentsFirst`, else in order.
  int dump(ZoVTreeDump* dumpFn, bool parentsFirst) const;

  // True when order, balances, heights and count agree.
  [[nodiscard]] bool validate(const ZoVTreeCompare* compare) const;

 protected:
  static unsigned countNodes(const ZoVTreeNode* node) noexcept;
  static ZoVTreeNode* firstNode(ZoVTreeNode* node) noexcept;
  static ZoVTreeNode* lastNode(ZoVTreeNode* node) noexcept;
  [[nodiscard]] ZoVTreeNode* getNode(unsigned i) const noexcept;  // by position in order
  ZoVTreeNode* getKeyNode(const void* key, const ZoVTreeCompare* compare) const;

  // Both work on the subtree at `node`, which they change, and tell whether its height has changed.
  int insertNode(ZoVTreeNode*& node, const void* key, zo::TreeNodeMaker& maker,
                 const ZoVTreeCompare& compare, bool& taller);
  // Takes the node of a key out of the tree, and before that moves its value to *out unless that is
  // null.
  int removeNode(ZoVTreeNode*& node, const void* key, void* out, const ZoVTreeCompare& compare,
                 bool& shorter, ZoVTreeNode*& removed);

  static void rotationToLeft(ZoVTreeNode*& node) noexcept;
  static void rotationToRight(ZoVTreeNode*& node) noexcept;
  static void rotationLeftRight(ZoVTreeNode*& node) noexcept;
  static void rotationRightLeft(ZoVTreeNode*& node) noexcept;
  // Gives a node the place, the children and the balance of the one that is there.
  static void changeChild(ZoVTreeNode*& place, ZoVTreeNode* node) noexcept;
  void deleteNodes(ZoVTreeNode* node) noexcept;
  static void applyNodes(const ZoVTreeNode* node, ZoVTreeApply& applyFn);
  static void dumpNodes(const ZoVTreeNode* node, unsigned depth, ZoVTreeDump& dumpFn,
                        bool parentsFirst);

 private:
  template <class T, class K, class C>
  friend class ZoTree;
  friend class ZoVTreeIterator;

  int insertMade(const void* key, zo::TreeNodeMaker& maker, const ZoVTreeCompare* compare);
  static bool leanLeft(ZoVTreeNode*& node) noexcept;
  static bool leanRight(ZoVTreeNode*& node) noexcept;
  static ZoVTreeNode* takeFirst(ZoVTreeNode*& node, bool& shorter) noexcept;
  void swap(ZoVTree& other) noexcept;

  ZoVTreeMem* mem_ = nullptr;
  ZoVTreeNode* root_ = nullptr;
  unsigned count_ = 0;
  unsigned changes_ = 0;  // insertions and removals; lets an iterator see that its way is gone
};

// Walks the elements in order. After an insertion or removal it is not valid until it is sent to
// the first element again. The tree must outlive it.
class ZO_COM_API ZoVTreeIterator {
 public:
  explicit ZoVTreeIterator(const ZoVTree& tree) noexcept : tree_(&tree) { reset(); }

  void reset() noexcept { toFirst(); }
  bool toFirst() noexcept;
  bool next() noexcept;
  [[nodiscard]] bool isValid() const noexcept {
    return changes_ == tree_->changes_ && path_.current();
  }
  [[nodiscard]] void* current() const noexcept;  // the element; null when not valid

 private:
  const ZoVTree* tree_;
  zo::TreePath path_;
  unsigned changes_ = 0;
};
