// Walking the elements of a variant, whatever container it holds:
//
//   for (const auto [key, position, value] : variant.elements()) ...
//
// A dictionary gives its keys, in its own order; a sequence gives no keys. Other kinds have no
// elements. Insertion and removal end a walk. (V is ZoVariant, const or not.)
//
// Errors:  nothing throws.
// Threads: as the variant.
#pragma once

#include <zo/text/containers/dict.h>
#include <zo/text/containers/sequence.h>
#include <zo/text/string.h>

#include <cstddef>
#include <iterator>

namespace zo {

template <class V>
struct VariantElement {
  const ZoString* key;  // null in a sequence
  unsigned int position;
  V& value;
};

template <class V>
class VariantElementIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = VariantElement<V>;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = VariantElement<V>;

  VariantElementIterator() = default;
  explicit VariantElementIterator(V& variant) noexcept
      : sequence_(variant.asSequence()), dict_(variant.asDict()) {
    advance();
  }

  reference operator*() const noexcept {
    return {static_cast<const ZoString*>(inDict_.key), position_,
            *static_cast<V*>(sequence_ ? inSequence_.element : inDict_.value)};
  }
  VariantElementIterator& operator++() {
    ++position_;
    advance();
    return *this;
  }
  VariantElementIterator operator++(int) {
    VariantElementIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const VariantElementIterator& other) const noexcept {
    return inSequence_.element == other.inSequence_.element && inDict_.node == other.inDict_.node;
  }

 private:
  void advance() {
    if (sequence_) sequence_->walk(inSequence_);
    if (dict_) dict_->walk(inDict_);
  }

  const typename V::Sequence* sequence_ = nullptr;
  const typename V::Dict* dict_ = nullptr;
  SequenceCursor inSequence_;
  DictCursor inDict_;
  unsigned int position_ = 0;
};

template <class V>
class VariantElements {
 public:
  explicit VariantElements(V& variant) noexcept : variant_(&variant) {}
  [[nodiscard]] VariantElementIterator<V> begin() const {
    return VariantElementIterator<V>(*variant_);
  }
  [[nodiscard]] VariantElementIterator<V> end() const noexcept { return {}; }

 private:
  V* variant_;
};

}  // namespace zo
