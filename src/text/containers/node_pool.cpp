#include <zo/text/containers/node_pool.h>

#include <algorithm>

namespace zo {
namespace {

constexpr std::size_t kFirstChunkNodes = 8;
constexpr std::size_t kLargestChunkBytes = 64 * 1024;

#ifdef ZO_GUARDED
constexpr bool kSeparateNodes = true;
#else
constexpr bool kSeparateNodes = false;
#endif

constexpr std::size_t roundUp(std::size_t n, std::size_t step) {
  return (n + step - 1) / step * step;
}

}  // namespace

void* allocateBlock(std::size_t bytes, std::size_t alignment) noexcept {
  if (alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__) return ::operator new(bytes, std::nothrow);
  return ::operator new(bytes, std::align_val_t{alignment}, std::nothrow);
}

void freeBlock(void* block, std::size_t alignment) noexcept {
  if (alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__) return ::operator delete(block);
  ::operator delete(block, std::align_val_t{alignment});
}

NodePool::NodePool(std::size_t nodeSize, std::size_t alignment) noexcept
    : m_nodeSize(
          roundUp(std::max(nodeSize, sizeof(FreeNode)), std::max(alignment, alignof(FreeNode)))),
      m_alignment(std::max(alignment, alignof(FreeNode))),
      m_nextCount(kFirstChunkNodes),
      m_separate(kSeparateNodes) {}

void* NodePool::allocateFromHeap() noexcept {
  if (m_separate) return allocateBlock(m_nodeSize, m_alignment);
  const std::size_t header = roundUp(sizeof(Chunk), m_alignment);
  const std::size_t bytes = m_nextCount * m_nodeSize;
  void* const block = allocateBlock(header + bytes, m_alignment);
  if (!block) return nullptr;
  m_chunks = ::new (block) Chunk{m_chunks};
  m_unused = static_cast<char*>(block) + header;
  m_unusedEnd = m_unused + bytes;
  if (bytes * 2 <= kLargestChunkBytes) m_nextCount *= 2;
  void* const node = m_unused;
  m_unused += m_nodeSize;
  return node;
}

void NodePool::absorb(NodePool& other) noexcept {
  // The unused rest of the smaller chunk goes to the free list, so that no memory is lost.
  if (other.m_unusedEnd - other.m_unused > m_unusedEnd - m_unused) {
    std::swap(m_unused, other.m_unused);
    std::swap(m_unusedEnd, other.m_unusedEnd);
  }
  for (; other.m_unused != other.m_unusedEnd; other.m_unused += m_nodeSize) {
    m_free = ::new (static_cast<void*>(other.m_unused)) FreeNode{m_free};
  }
  while (FreeNode* const node = other.m_free) {
    other.m_free = node->next;
    node->next = m_free;
    m_free = node;
  }
  while (Chunk* const chunk = other.m_chunks) {
    other.m_chunks = chunk->next;
    chunk->next = m_chunks;
    m_chunks = chunk;
  }
  m_nextCount = std::max(m_nextCount, other.m_nextCount);
  other.m_unused = other.m_unusedEnd = nullptr;
  other.m_nextCount = kFirstChunkNodes;
}

void NodePool::clear() noexcept {
  while (Chunk* const chunk = m_chunks) {
    m_chunks = chunk->next;
    freeBlock(chunk, m_alignment);
  }
  m_free = nullptr;
  m_unused = m_unusedEnd = nullptr;
  m_nextCount = kFirstChunkNodes;
}

}  // namespace zo
