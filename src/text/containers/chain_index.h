// The second way to the nodes of a hash table whose chains have grown long: by hash value and
// fingerprint, in a table of its own. It also knows the last node of every chain and the node in
// front of each, so that nothing walks a chain.
//
// A fingerprint depends on the whole key and, for text, on a number drawn by the process: whoever
// makes keys that hash alike cannot make them alike in this, too.
//
// Errors:  no memory gives null or false; nothing throws.
#pragma once

#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/vhash.h>

#include <cstddef>
#include <memory>

namespace zo {

class ChainIndex {
 public:
  // For chains that hold no node yet; null when there is no memory.
  [[nodiscard]] static std::unique_ptr<ChainIndex> make(unsigned buckets,
                                                        unsigned entries) noexcept;

  // The nodes of one hash value and fingerprint, one after the other; null at the end. `from` is 0
  // at first.
  [[nodiscard]] ZoVHashNode* find(unsigned hash, unsigned fingerprint,
                                  std::size_t& from) const noexcept;
  // The last node of a chain, or null.
  [[nodiscard]] ZoVHashNode* last(unsigned bucket) const noexcept { return last_.get()[bucket]; }
  // Makes a node the last of a chain. False when there is no memory; the index is of no use then.
  [[nodiscard]] bool append(unsigned bucket, ZoVHashNode* node) noexcept;
  // Forgets a node, whose links are still set, and gives the one in front of it (null: the first).
  ZoVHashNode* remove(unsigned bucket, ZoVHashNode* node) noexcept;

 private:
  struct Slot {
    ZoVHashNode* node = nullptr;  // null: free
    ZoVHashNode* before = nullptr;
  };
  template <class T>
  struct Free {
    void operator()(T* block) const noexcept { freeBlock(static_cast<void*>(block), alignof(T)); }
  };
  template <class T>
  using Block = std::unique_ptr<T, Free<T>>;

  ChainIndex() = default;
  template <class T>
  static Block<T> makeBlock(std::size_t n) noexcept;
  [[nodiscard]] bool makeSlots(std::size_t n) noexcept;
  [[nodiscard]] Slot& slotAt(std::size_t i) const noexcept { return slots_.get()[i & mask_]; }
  [[nodiscard]] std::size_t homeOf(unsigned hash, unsigned fingerprint) const noexcept;
  [[nodiscard]] std::size_t placeOf(const ZoVHashNode* node) const noexcept;
  void put(const Slot& slot) noexcept;

  Block<Slot> slots_;         // a power of two, at most half of them taken
  Block<ZoVHashNode*> last_;  // of each chain
  std::size_t mask_ = 0;      // the number of slots - 1
  int shift_ = 0;
  std::size_t count_ = 0;
};

}  // namespace zo
