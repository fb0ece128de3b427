// Memory of the containers: plain blocks, and pools that hand out nodes of one size.
//
// A pool takes memory in chunks that grow with use and keeps freed nodes for the next request, so that a
// node costs a few instructions where a heap block costs a call into the system. Memory goes back to the
// heap when the pool is cleared or destroyed. A guarded build takes every node from the heap instead, so
// that touching a freed node is seen.
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

class ZO_COM_API NodePool {
 public:
  NodePool(std::size_t nodeSize, std::size_t alignment) noexcept;
  ~NodePool() { clear(); }
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;

  [[nodiscard]] void* allocate() noexcept {
    if (m_free) {
      FreeNode* const node = m_free;
      m_free = node->next;
      return node;
    }
    if (m_unused == m_unusedEnd) return allocateFromHeap();
    void* const node = m_unused;
    m_unused += m_nodeSize;
    return node;
  }

  // The node must come from this pool, or from one that this pool has absorbed.
  void release(void* node) noexcept {
    if (m_separate) return freeBlock(node, m_alignment);
    m_free = ::new (node) FreeNode{m_free};
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

  FreeNode* m_free = nullptr;
  char* m_unused = nullptr;
  char* m_unusedEnd = nullptr;
  Chunk* m_chunks = nullptr;
  std::size_t m_nodeSize;
  std::size_t m_alignment;
  std::size_t m_nextCount;  // nodes in the next chunk
  bool m_separate;          // every node is a heap block of its own
};

}  // namespace zo
