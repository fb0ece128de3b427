// Bytes on their way that are kept: in memory, or in a temporary file when they are too many.
//
// Errors:  false; the platform's reason is reported to the file-system service. Memory that runs
//          out is such a failure.
// Threads: one at a time.
#pragma once

#include <zo/files/file.h>

#include <vector>

#include "persist/container.h"

namespace zo {

// A file for reading and writing that is gone with its last handle.
[[nodiscard]] bool openTemporary(ZoFile& file);

class Spool final : public ByteSink, public ByteStore {
 public:
  // Keeps no more than so many bytes in memory.
  explicit Spool(std::size_t mostMemory) : mostMemory_(mostMemory) {}

  bool write(Bytes bytes) noexcept override;
  [[nodiscard]] std::uint64_t size() const noexcept override { return size_; }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override;
  void clear() noexcept;

 private:
  [[nodiscard]] bool append(Bytes bytes);
  [[nodiscard]] bool readAt(std::uint64_t offset, std::span<unsigned char> to);

  std::size_t mostMemory_;
  std::uint64_t size_ = 0;
  std::vector<unsigned char> memory_;
  ZoFile file_;
};

}  // namespace zo
