#include <zo/text/containers/node_pool.h>

#include <algorithm>

namespace zo {
namespace {

constexpr std::size_t kFirstChunkNodes = 8;
constexpr std::size_t kLargestChunkBytes = std::size_t{64} * 1024;

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
    : nodeSize_(
          roundUp(std::max(nodeSize, sizeof(FreeNode)), std::max(alignment, alignof(FreeNode)))),
      alignment_(std::max(alignment, alignof(FreeNode))),
      nextCount_(kFirstChunkNodes),
      separate_(kSeparateNodes) {}

void* NodePool::allocateFromHeap() noexcept {
  if (separate_) return allocateBlock(nodeSize_, alignment_);
  const std::size_t header = roundUp(sizeof(Chunk), alignment_);
  const std::size_t bytes = nextCount_ * nodeSize_;
  void* const block = allocateBlock(header + bytes, alignment_);
  if (!block) return nullptr;
  chunks_ = ::new (block) Chunk{chunks_};
  unused_ = static_cast<char*>(block) + header;
  unusedEnd_ = unused_ + bytes;
  if (bytes * 2 <= kLargestChunkBytes) nextCount_ *= 2;
  void* const node = unused_;
  unused_ += nodeSize_;
  return node;
}

void NodePool::absorb(NodePool& other) noexcept {
  // The unused rest of the smaller chunk goes to the free list, so that no memory is lost.
  if (other.unusedEnd_ - other.unused_ > unusedEnd_ - unused_) {
    std::swap(unused_, other.unused_);
    std::swap(unusedEnd_, other.unusedEnd_);
  }
  for (; other.unused_ != other.unusedEnd_; other.unused_ += nodeSize_) {
    free_ = ::new (static_cast<void*>(other.unused_)) FreeNode{free_};
  }
  while (FreeNode* const node = other.free_) {
    other.free_ = node->next;
    node->next = free_;
    free_ = node;
  }
  while (Chunk* const chunk = other.chunks_) {
    other.chunks_ = chunk->next;
    chunk->next = chunks_;
    chunks_ = chunk;
  }
  nextCount_ = std::max(nextCount_, other.nextCount_);
  other.unused_ = other.unusedEnd_ = nullptr;
  other.nextCount_ = kFirstChunkNodes;
}

void NodePool::clear() noexcept {
  while (Chunk* const chunk = chunks_) {
    chunks_ = chunk->next;
    freeBlock(chunk, alignment_);
  }
  free_ = nullptr;
  unused_ = unusedEnd_ = nullptr;
  nextCount_ = kFirstChunkNodes;
}

}  // namespace zo
