#include <zo/persist/memory_archive.h>

#include "platform/growing_memory.h"

ZoMemoryReadArchive::~ZoMemoryReadArchive() = default;

bool ZoMemoryReadArchive::refill() { return false; }

ZoMemoryWriteArchive::ZoMemoryWriteArchive()
    : WriteArchive(true), memory_(std::make_unique<zo::GrowingMemory>()) {}
ZoMemoryWriteArchive::~ZoMemoryWriteArchive() = default;

void ZoMemoryWriteArchive::overflow(const void* data, std::size_t size) {
  const auto used = static_cast<std::size_t>(next_ - begin_);
  memory_->grow(used, used + size);
  begin_ = memory_->data();
  end_ = begin_ + memory_->capacity();
  std::memcpy(begin_ + used, data, size);
  next_ = begin_ + used + size;
}
