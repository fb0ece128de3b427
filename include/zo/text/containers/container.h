// The root of all typed collections.
//
// Errors, Threads: as in varray.h, vlist.h, vhash.h and vtree.h, for each kind.
#pragma once

#include <zo/text/containers/position.h>

#include <type_traits>

template <class T>
class ZoContainer {
 public:
  virtual ~ZoContainer() = default;

  [[nodiscard]] virtual unsigned entries() const = 0;
  [[nodiscard]] bool isEmpty() const { return entries() == 0; }
  // Removes every element; true gives the memory kept for new ones back too. Returns 0.
  virtual int removeAll(bool freeMemory = false) = 0;
  template <class Value>
    requires(!std::is_same_v<Value, bool>)
  int removeAll(const Value&) = delete;  // write remove(value, compare, true), or removeAt(key)

 protected:
  ZoContainer() = default;
  ZoContainer(const ZoContainer&) = default;
  ZoContainer& operator=(const ZoContainer&) = default;
};
