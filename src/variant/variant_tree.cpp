// ZoVariant: whole trees, destroyed, copied and compared without a level of the tree taking a level
// of the stack.
#include <zo/variant/variant.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "variant/containers.h"

using zo::OwnArray;
using zo::OwnDict;
using zo::OwnList;

struct ZoVariant::Tree {
  static bool isContainer(const ZoVariant& value) noexcept {
    return value.type() == kSequence || value.type() == kDict;
  }

  // Shows the elements of a container until `visit` answers true; whether it did.
  template <class Visit>
  static bool anyElement(const ZoVariant& container, Visit visit) {
    const auto anyOf = [&](auto& sequence) {
      return std::any_of(sequence.begin(), sequence.end(), visit);
    };
    if (container.type() == kSequence) {
      auto* const array = dynamic_cast<OwnArray*>(container.payload_.sequence);
      // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): a container has its block
      return array ? anyOf(*array) : anyOf(*container.payload_.sequence);
    }
    for (const auto [key, value] : static_cast<OwnDict&>(*container.payload_.dict)) {
      if (visit(value)) return true;
    }
    return false;
  }
  static bool holdsContainers(const ZoVariant& container) noexcept {
    return anyElement(container, isContainer);
  }

  // ---- Destroying ----
  static void deleteContainer(ZoVariant& value) noexcept {
    if (value.type() == kDict) {
      delete value.payload_.dict;
    } else {
      delete value.payload_.sequence;
    }
    value.word_ = kEmpty;
  }
  // Containers that wait for their end form a chain, each in the place of the first element of the
  // one in front of it: so waiting takes no memory, which might be missing.
  static ZoVariant& linkOf(ZoVariant& container) noexcept {
    ZoVariant* first = nullptr;
    anyElement(container, [&](ZoVariant& element) { return (first = &element) != nullptr; });
    return *first;  // NOLINT(clang-analyzer-core.uninitialized.UndefReturn): it has an element
  }
  // Destroys a value, or puts it in front of the chain, and with it what its own link had held.
  static void dispose(ZoVariant value, ZoVariant& chain) noexcept {
    while (isContainer(value) && holdsContainers(value)) {
      ZoVariant& link = linkOf(value);
      ZoVariant inner = std::move(link);
      link = std::move(chain);
      chain = std::move(value);
      value = std::move(inner);
    }
    if (isContainer(value)) deleteContainer(value);
  }
  static void disposeOfContainers(ZoVariant& container, ZoVariant& chain) noexcept {
    anyElement(container, [&](ZoVariant& element) {
      if (isContainer(element)) dispose(std::move(element), chain);
      return false;
    });
  }
  // A container without containers among its elements stays.
  static void takeApart(ZoVariant& root) noexcept {
    ZoVariant chain;
    disposeOfContainers(root, chain);
    while (!chain.isEmpty()) {
      ZoVariant current = std::move(chain);
      chain = std::move(linkOf(current));
      disposeOfContainers(current, chain);
      deleteContainer(current);
    }
  }

  // ---- Copying ----
  enum class Texts { Shared, Own };

  // A copy of anything but a container.
  static ZoVariant copyOfLeaf(const ZoVariant& leaf, Texts texts) {
    if (texts == Texts::Shared) return leaf;
    ZoVariant copied(leaf.type() == kString ? ZoVariant(ZoString(leaf.view())) : leaf);
    if (leaf.isReference() && leaf.type() != kString) {
      copied.word_ &= ~kReferenceBit;
      if (leaf.type() == kReal) {
        copied.payload_.real = leaf.real();
      } else {
        copied.payload_.bigInt = leaf.integer();
      }
    }
    copied.code_ = leaf.code_;
    copied.setFlags(leaf.flags());
    return copied;
  }

  struct Pending {
    const ZoVariant* from;
    ZoVariant* to;  // empty so far, with code and flags
  };
  static ZoVariant emptyFor(const ZoVariant& from) noexcept {
    return {kEmpty, from.code(), from.flags(), Payload{}};
  }
  static void give(ZoVariant& to, std::unique_ptr<Sequence> sequence) noexcept {
    to.payload_.sequence = sequence.release();
    to.word_ |= kSequence;
  }
  static void give(ZoVariant& to, std::unique_ptr<Dict> dict) noexcept {
    to.payload_.dict = dict.release();
    to.word_ |= kDict;
  }
  static void check(int status) {
    if (status != ZoResult::ok) throw std::bad_alloc();
  }

  // The depth of a tree takes memory, and no stack.
  static ZoVariant copy(const ZoVariant& root, Texts texts) {
    ZoVariant copied = emptyFor(root);
    std::vector<Pending> pending{{&root, &copied}};
    while (!pending.empty()) {
      const auto [from, to] = pending.back();
      pending.pop_back();
      if (from->type() == kDict) {
        copyDict(*from->payload_.dict, *to, texts, pending);
      } else {
        copySequence(*from->payload_.sequence, *to, texts, pending);
      }
    }
    return copied;
  }
  static void copySequence(const Sequence& from, ZoVariant& to, Texts texts,
                           std::vector<Pending>& pending) {
    if (dynamic_cast<const OwnList*>(&from)) {
      give(to, std::make_unique<OwnList>());
    } else {
      auto array = std::make_unique<OwnArray>();
      check(array->resize(from.entries()));  // so that no element moves
      give(to, std::move(array));
    }
    Sequence& made = *to.payload_.sequence;
    for (const ZoVariant& element : from) {
      const bool later = isContainer(element);
      check(made.append(later ? emptyFor(element) : copyOfLeaf(element, texts)));
      if (later) pending.push_back({&element, made.last()});
    }
  }
  static void copyDict(const Dict& from, ZoVariant& to, Texts texts,
                       std::vector<Pending>& pending) {
    const auto& own = static_cast<const OwnDict&>(from);
    give(to, std::make_unique<OwnDict>(own.buckets(), own.loadFactor()));
    Dict& made = *to.payload_.dict;
    for (const auto [key, element] : own) {
      const bool later = isContainer(element);
      check(made.insertAt(texts == Texts::Own ? key.copy() : key,
                          later ? emptyFor(element) : copyOfLeaf(element, texts)));
      if (later) pending.push_back({&element, made.at(key)});
    }
  }
};

void ZoVariant::freeBlock() noexcept {
  switch (type()) {
    case kPoint:
      delete payload_.point;
      break;
    case kVector:
      delete payload_.vector;
      break;
    case kDict:
    case kSequence:
      if (Tree::holdsContainers(*this)) Tree::takeApart(*this);
      Tree::deleteContainer(*this);
      break;
    default:
      delete payload_.guid;
      break;
  }
}

void ZoVariant::copyBlock(const ZoVariant& other) {
  switch (other.type()) {
    case kPoint:
      payload_.point = new ZoPoint(*other.payload_.point);
      break;
    case kVector:
      payload_.vector = new ZoVector(*other.payload_.vector);
      break;
    case kDict:
    case kSequence:
      if (Tree::holdsContainers(other)) {
        ZoVariant copied = Tree::copy(other, Tree::Texts::Shared);
        payload_ = std::exchange(copied.payload_, Payload{});
        copied.word_ = kEmpty;
      } else if (other.type() == kDict) {
        payload_.dict = zo::copyOf(*other.payload_.dict).release();
      } else {
        payload_.sequence = zo::copyOf(*other.payload_.sequence).release();
      }
      break;
    default:
      payload_.guid = new _GUID(*other.payload_.guid);
      break;
  }
}

ZoVariant ZoVariant::copy() const {
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): what is returned owns the block
  return Tree::isContainer(*this) ? Tree::copy(*this, Tree::Texts::Own)
                                  : Tree::copyOfLeaf(*this, Tree::Texts::Own);
}

bool ZoVariant::isTooDeep(unsigned int outer) const noexcept {
  if (!Tree::isContainer(*this)) return outer > kMaxDepth;
  if (outer >= kMaxDepth) return true;
  return Tree::anyElement(*this, [=](const ZoVariant& e) { return e.isTooDeep(outer + 1); });
}

// ---- Comparing ----

namespace {

// Whether two numbers are the same one, not-a-number included.
bool identical(double a, double b) noexcept { return a == b || (std::isnan(a) && std::isnan(b)); }

template <class Geometry>
bool sameComponents(const Geometry& a, const Geometry& b) noexcept {
  return identical(a.x, b.x) && identical(a.y, b.y) && identical(a.z, b.z);
}

}  // namespace

// Recursive as deep as values usually go; pairs that lie deeper wait in a list.
class ZoVariant::Comparison {
 public:
  // Without a tolerance, all that can be seen counts.
  explicit Comparison(const ZoTol* tol) noexcept : tol_(tol) {}

  bool areEqual(const ZoVariant& a, const ZoVariant& b) {
    if (!same(a, b, kMaxDepth)) return false;
    while (!deeper_.empty()) {
      const auto [x, y] = deeper_.back();
      deeper_.pop_back();
      if (!same(*x, *y, kMaxDepth)) return false;
    }
    return true;
  }

 private:
  bool same(const ZoVariant& a, const ZoVariant& b, unsigned int depthLeft) {
    if (tol_ && a.isNumber() && b.isNumber()) return sameNumbers(a, b);
    if (a.type() != b.type()) return false;
    if (!tol_ && (a.code_ != b.code_ || a.flags() != b.flags())) return false;
    if (!Tree::isContainer(a)) return sameLeaves(a, b);
    if (depthLeft == 0) {
      deeper_.emplace_back(&a, &b);
      return true;
    }
    return a.type() == kDict
               ? sameEntries(*a.payload_.dict, *b.payload_.dict, depthLeft - 1)
               : sameElements(*a.payload_.sequence, *b.payload_.sequence, depthLeft - 1);
  }
  [[nodiscard]] bool sameNumbers(const ZoVariant& a, const ZoVariant& b) const noexcept {
    if (a.type() != kReal && b.type() != kReal) {  // as reals, large ones would lose digits
      const auto high = static_cast<std::uint64_t>(std::max(a.integer(), b.integer()));
      const auto low = static_cast<std::uint64_t>(std::min(a.integer(), b.integer()));
      return high == low || static_cast<double>(high - low) <= tol_->getPntTol();
    }
    const double x = a.asReal();
    const double y = b.asReal();
    return identical(x, y) || std::abs(x - y) <= tol_->getPntTol();
  }
  // Of one kind.
  [[nodiscard]] bool sameLeaves(const ZoVariant& a, const ZoVariant& b) const noexcept {
    switch (a.type()) {
      case kInt:
      case kBigInt:
        return a.integer() == b.integer();
      case kReal:
        return identical(a.real(), b.real());
      case kString:
        return a.view() == b.view();
      case kPointer:
        return a.payload_.pointer == b.payload_.pointer;
      case kPoint:
        return sameComponents(*a.payload_.point, *b.payload_.point) ||
               (tol_ && a.payload_.point->isEqualTo(*b.payload_.point, *tol_));
      case kVector:
        return sameComponents(*a.payload_.vector, *b.payload_.vector) ||
               (tol_ && a.payload_.vector->isEqualTo(*b.payload_.vector, *tol_));
      case kGuid:
        return std::memcmp(a.payload_.guid, b.payload_.guid, sizeof(_GUID)) == 0;
      default:
        return true;
    }
  }
  bool sameElements(const Sequence& a, const Sequence& b, unsigned int depthLeft) {
    if (a.entries() != b.entries()) return false;
    auto other = b.begin();
    for (const ZoVariant& element : a) {
      if (!same(element, *other, depthLeft)) return false;
      ++other;
    }
    return true;
  }
  bool sameEntries(const Dict& a, const Dict& b, unsigned int depthLeft) {
    if (a.entries() != b.entries()) return false;
    for (const auto [key, value] : a) {
      const ZoVariant* const other = b.at(key);
      if (!other || !same(value, *other, depthLeft)) return false;
    }
    return true;
  }

  const ZoTol* tol_;
  std::vector<std::pair<const ZoVariant*, const ZoVariant*>> deeper_;
};

bool operator==(const ZoVariant& a, const ZoVariant& b) {
  return ZoVariant::Comparison(nullptr).areEqual(a, b);
}

bool ZoVariant::isEqualTo(const ZoVariant& other, const ZoTol& tol) const {
  return Comparison(&tol).areEqual(*this, other);
}
