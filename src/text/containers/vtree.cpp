#include <zo/results.h>
#include <zo/text/containers/vtree.h>

#include <algorithm>
#include <new>
#include <utility>

namespace {

constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position

class CopyMaker final : public zo::TreeNodeMaker {
 public:
  CopyMaker(ZoVTreeMem& mem, const void* key, const void* value)
      : m_mem(mem), m_key(key), m_value(value) {}
  int make(ZoVTreeNode*& node) override { return m_mem.newNode(m_key, m_value, node); }

 private:
  ZoVTreeMem& m_mem;
  const void* m_key;
  const void* m_value;
};

// The height of a subtree whose balances are right, or -1.
int checkedHeight(const ZoVTreeNode* node) {
  if (!node) return 0;
  const int left = checkedHeight(node->left);
  const int right = checkedHeight(node->right);
  if (left < 0 || right < 0 || right - left != node->balance || std::abs(node->balance) > 1)
    return -1;
  return 1 + std::max(left, right);
}

}  // namespace

ZoVTreeMem::~ZoVTreeMem() = default;

// Puts a node that was taken out back into the tree unless it is dismissed.
class ZoVTree::PutBack final : public zo::TreeNodeMaker {
 public:
  PutBack(ZoVTree& tree, ZoVTreeNode* node, const ZoVTreeCompare& compare)
      : m_tree(tree), m_node(node), m_compare(compare) {}
  ~PutBack() {
    bool taller = false;
    if (m_node) {
      m_tree.insertNode(m_tree.m_root, m_tree.m_mem->key(m_node->element), *this, m_compare,
                        taller);
    }
  }
  void dismiss() { m_node = nullptr; }

  int make(ZoVTreeNode*& node) override {
    m_node->left = m_node->right = nullptr;
    m_node->balance = 0;
    node = m_node;
    return ZoResult::ok;
  }

 private:
  ZoVTree& m_tree;
  ZoVTreeNode* m_node;
  const ZoVTreeCompare& m_compare;
};

ZoVTree::ZoVTree(ZoVTreeMem* mem, const ZoVTree& other, const ZoVTreeCompare* compare)
    : ZoVTree(mem) {
  if (!mem || !compare) return;
  zo::TreePath path;
  for (path.descendLeft(other.m_root); ZoVTreeNode* const node = path.current(); path.advance()) {
    const void* const key = other.m_mem->key(node->element);
    const void* const value = other.m_mem->value(node->element);
    // The constructor delegated, so the destructor runs and nothing leaks.
    const int status = insertAt(key, value == node->element ? nullptr : value, compare);
    if (status == ZoResult::outOfMemory) throw std::bad_alloc();
  }
}

ZoVTree::ZoVTree(ZoVTree&& other) noexcept : m_mem(nullptr) { swap(other); }

ZoVTree& ZoVTree::operator=(ZoVTree&& other) noexcept {
  if (this != &other) {
    ZoVTree taken(std::move(other));
    swap(taken);
  }
  return *this;
}

ZoVTree::~ZoVTree() {
  removeAll();
  delete m_mem;
}

void ZoVTree::swap(ZoVTree& other) noexcept {
  std::swap(m_mem, other.m_mem);
  std::swap(m_root, other.m_root);
  std::swap(m_count, other.m_count);
  m_changes = other.m_changes = std::max(m_changes, other.m_changes) + 1;
}

void* ZoVTree::first() const noexcept { return m_root ? firstNode(m_root)->element : nullptr; }
void* ZoVTree::last() const noexcept { return m_root ? lastNode(m_root)->element : nullptr; }

void* ZoVTree::at(const void* key, const ZoVTreeCompare* compare) const {
  const ZoVTreeNode* const node = getKeyNode(key, compare);
  return node ? m_mem->value(node->element) : nullptr;
}

int ZoVTree::getAt(const void* key, void* out, const ZoVTreeCompare* compare) const {
  const void* const value = at(key, compare);
  return value && out ? m_mem->assignValue(out, value) : ZoResult::refused;
}

int ZoVTree::getIndex(const void* key, unsigned* out, const ZoVTreeCompare* compare) const {
  const ZoVTreeNode* const found = getKeyNode(key, compare);
  if (!found || !out) return ZoResult::refused;
  unsigned i = 0;
  zo::TreePath path;
  for (path.descendLeft(m_root); path.current() != found; path.advance()) ++i;
  *out = i;
  return ZoResult::ok;
}

int ZoVTree::setAt(const void* key, const void* value, const ZoVTreeCompare* compare) {
  void* const place = at(key, compare);
  return place && value ? m_mem->assignValue(place, value) : ZoResult::refused;
}

int ZoVTree::insert(const void* element, const ZoVTreeCompare* compare) {
  return insertAt(element, nullptr, compare);
}

int ZoVTree::insertAt(const void* key, const void* value, const ZoVTreeCompare* compare) {
  if (!m_mem || !key) return ZoResult::refused;
  CopyMaker maker(*m_mem, key, value);
  return insertMade(key, maker, compare);
}

int ZoVTree::insertMade(const void* key, zo::TreeNodeMaker& maker, const ZoVTreeCompare* compare) {
  if (!m_mem || !compare || m_count == kMostEntries) return ZoResult::refused;
  bool taller = false;
  const int status = insertNode(m_root, key, maker, *compare, taller);
  if (status == ZoResult::ok) {
    ++m_count;
    ++m_changes;
  }
  return status;
}

int ZoVTree::removeAt(const void* key, void* out, const ZoVTreeCompare* compare) {
  if (!key || !compare) return ZoResult::refused;
  bool shorter = false;
  ZoVTreeNode* removed = nullptr;
  if (const int status = removeNode(m_root, key, *compare, shorter, removed)) return status;
  if (out) {
    PutBack putBack(*this, removed, *compare);
    if (const int status = m_mem->moveValue(out, m_mem->value(removed->element))) return status;
    putBack.dismiss();
  }
  m_mem->deleteNode(removed);
  --m_count;
  ++m_changes;
  return ZoResult::ok;
}

int ZoVTree::removeFirst(const ZoVTreeCompare* compare, void* out) {
  return m_root ? removeAt(m_mem->key(first()), out, compare) : ZoResult::refused;
}

int ZoVTree::removeLast(const ZoVTreeCompare* compare, void* out) {
  return m_root ? removeAt(m_mem->key(last()), out, compare) : ZoResult::refused;
}

int ZoVTree::removeAll() {
  deleteNodes(std::exchange(m_root, nullptr));
  m_count = 0;
  ++m_changes;
  if (m_mem) m_mem->freeMemory();
  return ZoResult::ok;
}

int ZoVTree::apply(ZoVTreeApply* applyFn) const {
  if (!applyFn) return ZoResult::refused;
  applyNodes(m_root, *applyFn);
  return ZoResult::ok;
}

int ZoVTree::dump(ZoVTreeDump* dumpFn, bool parentsFirst) const {
  if (!dumpFn) return ZoResult::refused;
  dumpNodes(m_root, 0, *dumpFn, parentsFirst);
  return ZoResult::ok;
}

bool ZoVTree::validate(const ZoVTreeCompare* compare) const {
  if (checkedHeight(m_root) < 0 || countNodes(m_root) != m_count) return false;
  const void* previous = nullptr;
  zo::TreePath path;
  for (path.descendLeft(m_root); const ZoVTreeNode* const node = path.current(); path.advance()) {
    const void* const key = m_mem->key(node->element);
    if (previous && compare && compare->compare(previous, key) >= 0) return false;
    previous = key;
  }
  return true;
}

unsigned ZoVTree::countNodes(const ZoVTreeNode* node) noexcept {
  return node ? 1 + countNodes(node->left) + countNodes(node->right) : 0;
}

ZoVTreeNode* ZoVTree::firstNode(ZoVTreeNode* node) noexcept {
  while (node && node->left) node = node->left;
  return node;
}

ZoVTreeNode* ZoVTree::lastNode(ZoVTreeNode* node) noexcept {
  while (node && node->right) node = node->right;
  return node;
}

ZoVTreeNode* ZoVTree::getNode(unsigned i) const noexcept {
  if (i >= m_count) return nullptr;
  zo::TreePath path;
  for (path.descendLeft(m_root); i > 0; --i) path.advance();
  return path.current();
}

ZoVTreeNode* ZoVTree::getKeyNode(const void* key, const ZoVTreeCompare* compare) const {
  if (!key || !compare) return nullptr;
  ZoVTreeNode* node = m_root;
  while (node) {
    const int order = compare->compare(key, m_mem->key(node->element));
    if (order == 0) break;
    node = order < 0 ? node->left : node->right;
  }
  return node;
}

int ZoVTree::insertNode(ZoVTreeNode*& node, const void* key, zo::TreeNodeMaker& maker,
                        const ZoVTreeCompare& compare, bool& taller) {
  if (!node) {
    const int status = maker.make(node);
    taller = status == ZoResult::ok;
    return status;
  }
  const int order = compare.compare(key, m_mem->key(node->element));
  if (order == 0) return ZoResult::refused;
  const int status = insertNode(order < 0 ? node->left : node->right, key, maker, compare, taller);
  if (taller) {
    // A rotation gives the subtree its old height back, so that the walk upward stops.
    taller = !(order < 0 ? leanLeft(node) : leanRight(node)) && node->balance != 0;
  }
  return status;
}

// The left subtree has become one higher against the right. True when that took a rotation.
bool ZoVTree::leanLeft(ZoVTreeNode*& node) noexcept {
  if (node->balance >= 0) {
    --node->balance;
    return false;
  }
  node->left->balance > 0 ? rotationLeftRight(node) : rotationToRight(node);
  return true;
}

bool ZoVTree::leanRight(ZoVTreeNode*& node) noexcept {
  if (node->balance <= 0) {
    ++node->balance;
    return false;
  }
  node->right->balance < 0 ? rotationRightLeft(node) : rotationToLeft(node);
  return true;
}

int ZoVTree::removeNode(ZoVTreeNode*& node, const void* key, const ZoVTreeCompare& compare,
                        bool& shorter, ZoVTreeNode*& removed) {
  if (!node) return ZoResult::refused;
  const int order = compare.compare(key, m_mem->key(node->element));
  if (order != 0) {
    const int status =
        removeNode(order < 0 ? node->left : node->right, key, compare, shorter, removed);
    if (shorter) {
      order < 0 ? leanRight(node) : leanLeft(node);
      shorter = node->balance == 0;
    }
    return status;
  }
  removed = node;
  if (!node->left || !node->right) {
    node = node->left ? node->left : node->right;
    shorter = true;
    return ZoResult::ok;
  }
  // Two children: the next node in order takes the place.
  changeChild(node, takeFirst(node->right, shorter));
  if (shorter) {
    leanLeft(node);
    shorter = node->balance == 0;
  }
  return ZoResult::ok;
}

// Takes the first node out of a subtree.
ZoVTreeNode* ZoVTree::takeFirst(ZoVTreeNode*& node, bool& shorter) noexcept {
  if (!node->left) {
    ZoVTreeNode* const taken = node;
    node = node->right;
    shorter = true;
    return taken;
  }
  ZoVTreeNode* const taken = takeFirst(node->left, shorter);
  if (shorter) {
    leanRight(node);
    shorter = node->balance == 0;
  }
  return taken;
}

void ZoVTree::rotationToLeft(ZoVTreeNode*& node) noexcept {
  ZoVTreeNode* const child = node->right;
  node->right = child->left;
  child->left = node;
  // The child is balanced only when a removal on the other side asked for the rotation; the height stays then.
  node->balance = child->balance == 0 ? 1 : 0;
  child->balance = child->balance == 0 ? -1 : 0;
  node = child;
}

void ZoVTree::rotationToRight(ZoVTreeNode*& node) noexcept {
  ZoVTreeNode* const child = node->left;
  node->left = child->right;
  child->right = node;
  node->balance = child->balance == 0 ? -1 : 0;
  child->balance = child->balance == 0 ? 1 : 0;
  node = child;
}

// The middle node, the inner child of the heavy child, comes to the top.
void ZoVTree::rotationLeftRight(ZoVTreeNode*& node) noexcept {
  ZoVTreeNode* const child = node->left;
  ZoVTreeNode* const middle = child->right;
  child->right = middle->left;
  node->left = middle->right;
  middle->left = child;
  middle->right = node;
  child->balance = middle->balance > 0 ? -1 : 0;
  node->balance = middle->balance < 0 ? 1 : 0;
  middle->balance = 0;
  node = middle;
}

void ZoVTree::rotationRightLeft(ZoVTreeNode*& node) noexcept {
  ZoVTreeNode* const child = node->right;
  ZoVTreeNode* const middle = child->left;
  child->left = middle->right;
  node->right = middle->left;
  middle->right = child;
  middle->left = node;
  child->balance = middle->balance < 0 ? 1 : 0;
  node->balance = middle->balance > 0 ? -1 : 0;
  middle->balance = 0;
  node = middle;
}

void ZoVTree::changeChild(ZoVTreeNode*& place, ZoVTreeNode* node) noexcept {
  node->left = place->left;
  node->right = place->right;
  node->balance = place->balance;
  place = node;
}

void ZoVTree::deleteNodes(ZoVTreeNode* node) noexcept {
  if (!node) return;
  deleteNodes(node->left);
  deleteNodes(node->right);
  m_mem->deleteNode(node);
}

void ZoVTree::applyNodes(const ZoVTreeNode* node, ZoVTreeApply& applyFn) {
  if (!node) return;
  applyNodes(node->left, applyFn);
  applyFn.applyTo(node->element);
  applyNodes(node->right, applyFn);
}

void ZoVTree::dumpNodes(const ZoVTreeNode* node, unsigned depth, ZoVTreeDump& dumpFn,
                        bool parentsFirst) {
  if (!node) return;
  if (parentsFirst) dumpFn.dump(node->element, depth, node->balance);
  dumpNodes(node->left, depth + 1, dumpFn, parentsFirst);
  if (!parentsFirst) dumpFn.dump(node->element, depth, node->balance);
  dumpNodes(node->right, depth + 1, dumpFn, parentsFirst);
}

bool ZoVTreeIterator::toFirst() noexcept {
  m_changes = m_tree->m_changes;
  m_path.clear();
  m_path.descendLeft(m_tree->m_root);
  return isValid();
}

bool ZoVTreeIterator::next() noexcept {
  if (isValid()) m_path.advance();
  return isValid();
}

void* ZoVTreeIterator::current() const noexcept {
  return isValid() ? m_path.current()->element : nullptr;
}
