#include <zo/results.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/vtree.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr unsigned kMostEntries = zo::npos - 1;  // npos itself is no position

class CopyMaker final : public zo::TreeNodeMaker {
 public:
  CopyMaker(ZoVTreeMem& mem, const void* key, const void* value)
      : mem_(mem), key_(key), value_(value) {}
  int make(ZoVTreeNode*& node) override { return mem_.newNode(key_, value_, node); }

 private:
  ZoVTreeMem& mem_;
  const void* key_;
  const void* value_;
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

ZoVTree::ZoVTree(ZoVTreeMem* mem, const ZoVTree& other, const ZoVTreeCompare* compare)
    : ZoVTree(mem) {
  if (!mem || !compare) return;
  zo::TreePath path;
  for (path.descendLeft(other.root_); ZoVTreeNode* const node = path.current(); path.advance()) {
    const void* const key = other.mem_->key(node->element);
    const void* const value = other.mem_->value(node->element);
    // The constructor delegated, so the destructor runs and nothing leaks.
    const int status = insertAt(key, value == node->element ? nullptr : value, compare);
    zo::throwIfNoMemory(status);
  }
}

ZoVTree::ZoVTree(ZoVTree&& other) noexcept { swap(other); }

ZoVTree& ZoVTree::operator=(ZoVTree&& other) noexcept {
  if (this != &other) {
    ZoVTree taken(std::move(other));
    swap(taken);
  }
  return *this;
}

ZoVTree::~ZoVTree() {
  removeAll();
  delete mem_;
}

void ZoVTree::swap(ZoVTree& other) noexcept {
  std::swap(mem_, other.mem_);
  std::swap(root_, other.root_);
  std::swap(count_, other.count_);
  changes_ = other.changes_ = std::max(changes_, other.changes_) + 1;
}

void* ZoVTree::first() const noexcept { return root_ ? firstNode(root_)->element : nullptr; }
void* ZoVTree::last() const noexcept { return root_ ? lastNode(root_)->element : nullptr; }

void* ZoVTree::at(const void* key, const ZoVTreeCompare* compare) const {
  const ZoVTreeNode* const node = getKeyNode(key, compare);
  return node ? mem_->value(node->element) : nullptr;
}

int ZoVTree::getAt(const void* key, void* out, const ZoVTreeCompare* compare) const {
  const void* const value = at(key, compare);
  return value && out ? mem_->assignValue(out, value) : ZoResult::refused;
}

int ZoVTree::getIndex(const void* key, unsigned* out, const ZoVTreeCompare* compare) const {
  const ZoVTreeNode* const found = getKeyNode(key, compare);
  if (!found || !out) return ZoResult::refused;
  unsigned i = 0;
  zo::TreePath path;
  for (path.descendLeft(root_); path.current() != found; path.advance()) ++i;
  *out = i;
  return ZoResult::ok;
}

int ZoVTree::setAt(const void* key, const void* value, const ZoVTreeCompare* compare) {
  void* const place = at(key, compare);
  return place && value ? mem_->assignValue(place, value) : ZoResult::refused;
}

int ZoVTree::insert(const void* element, const ZoVTreeCompare* compare) {
  return insertAt(element, nullptr, compare);
}

int ZoVTree::insertAt(const void* key, const void* value, const ZoVTreeCompare* compare) {
  if (!mem_ || !key) return ZoResult::refused;
  CopyMaker maker(*mem_, key, value);
  return insertMade(key, maker, compare);
}

int ZoVTree::insertMade(const void* key, zo::TreeNodeMaker& maker, const ZoVTreeCompare* compare) {
  if (!mem_ || !compare || count_ == kMostEntries) return ZoResult::refused;
  bool taller = false;
  const int status = insertNode(root_, key, maker, *compare, taller);
  if (status == ZoResult::ok) {
    ++count_;
    ++changes_;
  }
  return status;
}

int ZoVTree::removeAt(const void* key, void* out, const ZoVTreeCompare* compare) {
  if (!key || !compare) return ZoResult::refused;
  bool shorter = false;
  ZoVTreeNode* removed = nullptr;
  if (const int status = removeNode(root_, key, out, *compare, shorter, removed)) return status;
  mem_->deleteNode(removed);
  --count_;
  ++changes_;
  return ZoResult::ok;
}

int ZoVTree::removeFirst(const ZoVTreeCompare* compare, void* out) {
  return root_ ? removeAt(mem_->key(first()), out, compare) : ZoResult::refused;
}

int ZoVTree::removeLast(const ZoVTreeCompare* compare, void* out) {
  return root_ ? removeAt(mem_->key(last()), out, compare) : ZoResult::refused;
}

int ZoVTree::removeAll() {
  deleteNodes(std::exchange(root_, nullptr));
  count_ = 0;
  ++changes_;
  if (mem_) mem_->freeMemory();
  return ZoResult::ok;
}

int ZoVTree::apply(ZoVTreeApply* applyFn) const {
  if (!applyFn) return ZoResult::refused;
  applyNodes(root_, *applyFn);
  return ZoResult::ok;
}

int ZoVTree::dump(ZoVTreeDump* dumpFn, bool parentsFirst) const {
  if (!dumpFn) return ZoResult::refused;
  dumpNodes(root_, 0, *dumpFn, parentsFirst);
  return ZoResult::ok;
}

bool ZoVTree::validate(const ZoVTreeCompare* compare) const {
  if (checkedHeight(root_) < 0 || countNodes(root_) != count_) return false;
  const void* previous = nullptr;
  zo::TreePath path;
  for (path.descendLeft(root_); const ZoVTreeNode* const node = path.current(); path.advance()) {
    const void* const key = mem_->key(node->element);
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
  if (i >= count_) return nullptr;
  zo::TreePath path;
  for (path.descendLeft(root_); i > 0; --i) path.advance();
  return path.current();
}

ZoVTreeNode* ZoVTree::getKeyNode(const void* key, const ZoVTreeCompare* compare) const {
  if (!key || !compare) return nullptr;
  ZoVTreeNode* node = root_;
  while (node) {
    const int order = compare->compare(key, mem_->key(node->element));
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
    if (taller) node->front = maker.front();
    return status;
  }
  zo::prefetch(node->left);
  zo::prefetch(node->right);
  int order = zo::orderOfFronts(maker.front(), node->front);
  if (order == 0) order = compare.compare(key, mem_->key(node->element));
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

int ZoVTree::removeNode(ZoVTreeNode*& node, const void* key, void* out,
                        const ZoVTreeCompare& compare, bool& shorter, ZoVTreeNode*& removed) {
  if (!node) return ZoResult::refused;
  const int order = compare.compare(key, mem_->key(node->element));
  if (order != 0) {
    const int status =
        removeNode(order < 0 ? node->left : node->right, key, out, compare, shorter, removed);
    if (shorter) {
      order < 0 ? leanRight(node) : leanLeft(node);
      shorter = node->balance == 0;
    }
    return status;
  }
  if (out) {  // while nothing has changed
    if (const int status = mem_->moveValue(out, mem_->value(node->element))) return status;
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
  // The child is balanced only when a removal on the other side asked for the rotation; the height
  // stays then.
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
  mem_->deleteNode(node);
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
  changes_ = tree_->changes_;
  path_.clear();
  path_.descendLeft(tree_->root_);
  return isValid();
}

bool ZoVTreeIterator::next() noexcept {
  if (isValid()) path_.advance();
  return isValid();
}

void* ZoVTreeIterator::current() const noexcept {
  return isValid() ? path_.current()->element : nullptr;
}
