// Any map from unique keys of type K to values of type T: ZoHashDict or ZoTree behind one
// interface.
//
// Errors:  0 success; 1 refused (key present, key absent, an element that cannot be copied, no
//          memory to grow a hash table); 2 out of memory. Nothing has changed then. What else is
//          thrown by elements and keys passes through.
// Threads: any number of readers, or one writer.
// Ranges:  `for (auto [key, value] : dict)` visits every entry; key and value are references.
//          Insertion and removal end such a walk.
#pragma once

#include <zo/text/containers/compare.h>
#include <zo/text/containers/container.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/text_keys.h>

#include <cstddef>
#include <iterator>
#include <type_traits>

namespace zo {

// What a range-for over a dictionary gives. T is const for a constant dictionary.
template <class T, class K>
struct DictEntry {
  const K& key;
  T& value;
};

// Where a walk over a dictionary of unknown kind stands.
struct DictCursor {
  void* node = nullptr;  // null at the end
  const void* key = nullptr;
  void* value = nullptr;
};

template <class Dict, class T, class K>
class DictRangeIterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using value_type = DictEntry<T, K>;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = DictEntry<T, K>;

  DictRangeIterator() = default;
  explicit DictRangeIterator(const Dict& dict) : dict_(&dict) { dict.walk(cursor_); }

  reference operator*() const {
    return {*static_cast<const K*>(cursor_.key), *static_cast<T*>(cursor_.value)};
  }
  DictRangeIterator& operator++() {
    dict_->walk(cursor_);
    return *this;
  }
  DictRangeIterator operator++(int) {
    DictRangeIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const DictRangeIterator& other) const {
    return cursor_.node == other.cursor_.node;
  }

 private:
  const Dict* dict_ = nullptr;
  DictCursor cursor_;
};

}  // namespace zo

template <class T, class K>
class ZoDict : public ZoContainer<T> {
 public:
  using key_type = K;
  using mapped_type = T;

  [[nodiscard]] bool contains(const K& key) const { return locate(key) != nullptr; }
  // The value, or null.
  [[nodiscard]] T* at(const K& key) { return locate(key); }
  [[nodiscard]] const T* at(const K& key) const { return locate(key); }
  [[nodiscard]] int getAt(const K& key, T& out) const {
    const T* const value = locate(key);
    return value ? zo::assignElement<T>(&out, value) : ZoResult::refused;
  }
  // The key as it is stored.
  [[nodiscard]] virtual int findKey(const K& key, K& outKey) const = 0;

  // Refuses a key that is present; what was to be moved is left alone then.
  [[nodiscard]] virtual int insertAt(const K& key, const T& value) = 0;
  [[nodiscard]] virtual int insertAt(K&& key, T&& value) = 0;
  // Refuses a key that is absent.
  [[nodiscard]] int setAt(const K& key, const T& value) {
    T* const place = locate(key);
    return place ? zo::assignElement<T>(place, &value) : ZoResult::refused;
  }
  // Sets the value of a key, present or not.
  [[nodiscard]] int put(const K& key, const T& value) {
    return contains(key) ? setAt(key, value) : insertAt(key, value);
  }
  int removeAt(const K& key) { return take(key, nullptr); }
  [[nodiscard]] int removeAt(const K& key, T& out) { return take(key, &out); }

  // Inserts the entries of another dictionary whose keys are not present. Stops at the first that
  // is refused for another reason; those before it stay.
  [[nodiscard]] int insertAll(const ZoDict& other) {
    for (auto [key, value] : other) {
      if (contains(key)) continue;
      if (const int status = insertAt(key, value)) return status;
    }
    return ZoResult::ok;
  }

  [[nodiscard]] auto begin() { return zo::DictRangeIterator<ZoDict, T, K>(*this); }
  [[nodiscard]] auto end() { return zo::DictRangeIterator<ZoDict, T, K>(); }
  [[nodiscard]] auto begin() const { return zo::DictRangeIterator<ZoDict, const T, K>(*this); }
  [[nodiscard]] auto end() const { return zo::DictRangeIterator<ZoDict, const T, K>(); }

  // One step of a walk, for iterators: from a fresh cursor to the first entry.
  virtual void walk(zo::DictCursor& cursor) const = 0;

 protected:
  ZoDict() = default;
  ZoDict(const ZoDict&) = default;
  ZoDict& operator=(const ZoDict&) = default;

  [[nodiscard]] virtual T* locate(const K& key) const = 0;  // the value, or null
  // Removes; moves the value to *out unless that is null.
  virtual int take(const K& key, T* out) = 0;
};
