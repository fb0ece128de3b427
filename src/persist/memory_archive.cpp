#include <zo/persist/memory_archive.h>

#include <algorithm>

ZoMemoryReadArchive::~ZoMemoryReadArchive() = default;

bool ZoMemoryReadArchive::refill() { return false; }

ZoMemoryWriteArchive::~ZoMemoryWriteArchive() = default;

void ZoMemoryWriteArchive::overflow(const void* data, std::size_t size) {
  constexpr std::size_t kFirstCapacity = 4096;
  const auto used = static_cast<std::size_t>(next_ - begin_);
  const auto capacity = static_cast<std::size_t>(end_ - begin_);
  const std::size_t wanted = std::max({used + size, 2 * capacity, kFirstCapacity});
  std::unique_ptr<std::byte[]> larger(new std::byte[wanted]);
  if (used > 0) std::memcpy(larger.get(), begin_, used);
  std::memcpy(larger.get() + used, data, size);
  memory_ = std::move(larger);
  begin_ = memory_.get();
  next_ = begin_ + used + size;
  end_ = begin_ + wanted;
}
