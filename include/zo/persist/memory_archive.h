// Archives over memory.
//
//   ZoMemoryWriteArchive stored;
//   stored << part.name() << part.values();
//   ZoMemoryReadArchive loaded(stored.bytes());
//   loaded >> name >> values;
//
// Errors, Threads, Memory: as in buffered_archive.h.
#pragma once

#include <zo/persist/buffered_archive.h>

#include <memory>
#include <span>

namespace zo {
class GrowingMemory;
}

// Reads bytes that the caller keeps; behind the last one it throws.
class ZO_COM_API ZoMemoryReadArchive final : public zo::ReadArchive {
 public:
  explicit ZoMemoryReadArchive(std::span<const std::byte> bytes) noexcept {
    setWindow(bytes.data(), bytes.size());
  }
  ZoMemoryReadArchive(const void* bytes, std::size_t size) noexcept
      : ZoMemoryReadArchive(std::span(static_cast<const std::byte*>(bytes), size)) {}
  ~ZoMemoryReadArchive() override;

  // How many bytes are left.
  [[nodiscard]] std::size_t rest() const noexcept { return unread(); }

 private:
  bool refill() override;
};

// Collects what is written, in one block that grows as it fills.
class ZO_COM_API ZoMemoryWriteArchive final : public zo::WriteArchive {
 public:
  ZoMemoryWriteArchive();
  ~ZoMemoryWriteArchive() override;

  // Valid until the next write.
  [[nodiscard]] std::span<const std::byte> bytes() const noexcept { return {begin_, next_}; }
  // Begins anew, in the same memory.
  void clear() noexcept { next_ = begin_; }

 private:
  void overflow(const void* data, std::size_t size) override;

  std::unique_ptr<zo::GrowingMemory> memory_;
};
