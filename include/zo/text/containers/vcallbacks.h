// What an engine is given to look at elements it knows nothing of: compare, apply and hash objects.
//
// An engine never compares or hashes an element itself. The pointers are to the elements (for a
// dictionary: compare gets keys, apply gets values). A null object is refused by every engine call
// that needs one: status 1, npos or false. Objects are used during the call only and belong to the
// caller.
//
// Errors:  what an object throws passes through; the container is then as it was.
// Threads: they are called in the thread that calls the engine.
#pragma once

#include <zo/config.h>

namespace zo {

class ZO_COM_API ElementCompare {
 public:
  virtual ~ElementCompare();
  // 0 when equal; negative or positive for the order.
  virtual int compare(const void* a, const void* b) const = 0;

 protected:
  ElementCompare() = default;
  ElementCompare(const ElementCompare&) = default;
  ElementCompare& operator=(const ElementCompare&) = default;
};

class ZO_COM_API ElementApply {
 public:
  virtual ~ElementApply();
  // Called once per element, in the order of the container. It must not change the container.
  virtual void applyTo(void* element) = 0;

 protected:
  ElementApply() = default;
  ElementApply(const ElementApply&) = default;
  ElementApply& operator=(const ElementApply&) = default;
};

}  // namespace zo

class ZO_COM_API ZoVArrayCompare : public zo::ElementCompare {};
class ZO_COM_API ZoVListCompare : public zo::ElementCompare {};
class ZO_COM_API ZoVHashCompare : public zo::ElementCompare {};
class ZO_COM_API ZoVTreeCompare : public zo::ElementCompare {};

class ZO_COM_API ZoVArrayApply : public zo::ElementApply {};
class ZO_COM_API ZoVListApply : public zo::ElementApply {};
class ZO_COM_API ZoVHashApply : public zo::ElementApply {};
class ZO_COM_API ZoVTreeApply : public zo::ElementApply {};

// The key policy of a hash table: keys that compare equal must hash alike and have one fingerprint.
class ZO_COM_API ZoVHashKey {
 public:
  virtual ~ZoVHashKey();
  virtual int compare(const void* a, const void* b) const = 0;  // 0 when the keys are equal
  virtual unsigned hash(const void* key) const = 0;
  // Tells keys that hash alike apart where many do; the lower 31 bits count. 0 unless overridden,
  // which is always right: but then many keys of one hash value are slow (vhash.h).
  virtual unsigned fingerprint(const void* key) const;

 protected:
  ZoVHashKey() = default;
  ZoVHashKey(const ZoVHashKey&) = default;
  ZoVHashKey& operator=(const ZoVHashKey&) = default;
};

// Receives the nodes of a tree, for looking at its shape.
class ZO_COM_API ZoVTreeDump {
 public:
  virtual ~ZoVTreeDump();
  // depth is 0 at the root; balance is the height of the right subtree minus that of the left.
  virtual void dump(const void* element, unsigned depth, int balance) = 0;

 protected:
  ZoVTreeDump() = default;
  ZoVTreeDump(const ZoVTreeDump&) = default;
  ZoVTreeDump& operator=(const ZoVTreeDump&) = default;
};
