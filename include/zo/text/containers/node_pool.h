// Memory of the containers: plain blocks, and pools that hand out nodes of one size.
//
// A pool takes memory in chunks that grow with use and keeps freed nodes for the next request, so
// that a node costs a few instructions where a heap block costs a call into the system. Memory goes
// back to the heap when the pool is cleared or destroyed. A guarded build takes every node from the
// heap instead, so that touching a freed node is seen.
//
// Errors:  no memory gives null; nothing throws.
// Threads: a pool belongs to one container and is guarded by whatever guards that.
#pragma once

#include <zo/config.h>

#include <cstddef>
#include <new>

namespace zo {

[[nodiscard]] ZO_COM_API void* allocateBlock(std::size_t bytes, std::size_t alignment) noexcept;
ZO_COM_API void freeBlock(void* block, std::size_t alignment) noexcept;  // null is allowed

// Starts to fetch what lies there, while other work goes on. Any address will do.
inline void prefetch([[maybe_unused]] const void* address) noexcept {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

class ZO_COM_API NodePool {
 public:
  NodePool(std::size_t nodeSize, std::size_t alignment) noexcept;
  ~NodePool() { clear(); }
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;

  [[nodiscard]] void* allocate() noexcept {
    if (free_) {
      FreeNode* const node = free_;
      free_ = node->next;
      return node;
    }
    if (unused_ == unusedEnd_) return allocateFromHeap();
    void* const node = unused_;
    unused_ += nodeSize_;
    return node;
  }

  // The node must come from this pool, or from one that this pool has absorbed.
  void release(void* node) noexcept {
    if (separate_) return freeBlock(node, alignment_);
    free_ = ::new (node) FreeNode{free_};
  }

  // Takes over the memory of another pool of the same node size, with the nodes that live there.
  void absorb(NodePool& other) noexcept;

  // Gives all memory back. No node may be in use any more.
  void clear() noexcept;

 private:
  struct FreeNode {
    FreeNode* next;
  };
  struct Chunk {
    Chunk* next;
  };

  void* allocateFromHeap() noexcept;

  FreeNode* free_ = nullptr;
  char* unused_ = nullptr;
  char* unusedEnd_ = nullptr;
  Chunk* chunks_ = nullptr;
  std::size_t nodeSize_;
  std::size_t alignment_;
  std::size_t nextCount_;  // nodes in the next chunk
  bool separate_;          // every node is a heap block of its own
};

}  // namespace zo
