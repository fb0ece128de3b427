// How the bytes of a new member come to stand in a library: compressed, or as they are.
//
// Errors:  false; what can be told is reported to the file-system service.
// Threads: all state is on the call.
#pragma once

#include <zo/files/file.h>

#include <vector>

#include "library/copy.h"
#include "library/format.h"
#include "persist/sdk_memory.h"

namespace zo {

// Bytes of a new member, which can be asked for once more.
class MemberSource : public ByteSource {
 public:
  // As it is said before they are read; it may be wrong.
  [[nodiscard]] virtual std::uint64_t size() const = 0;
  [[nodiscard]] virtual bool restart() = 0;
  // When next() gave nothing: whether that was the end, and no failure.
  [[nodiscard]] virtual bool hasEnded() = 0;
  // Bytes from anywhere, for a look at them; restart() follows.
  [[nodiscard]] virtual bool sample(std::uint64_t offset, std::span<unsigned char> to) = 0;
};

// What is left of a file object, from its position to its end.
class FileSource final : public MemberSource {
 public:
  explicit FileSource(ZoFile& file);

  [[nodiscard]] bool isReadable() const { return begin_ >= 0 && file_.size() >= 0; }
  [[nodiscard]] std::uint64_t size() const override { return size_; }
  [[nodiscard]] bool restart() override;
  [[nodiscard]] bool hasEnded() override;
  [[nodiscard]] bool sample(std::uint64_t offset, std::span<unsigned char> to) override;
  Bytes next() noexcept override;

 private:
  bool goesOn() noexcept;

  ZoFile& file_;
  std::int64_t begin_;
  std::uint64_t size_ = 0, end_ = 0, given_ = 0;
  bool knowsSize_ = false, hasGrown_ = false;
  std::vector<unsigned char> buffer_;
};

// A part of a store that is known to be whole: memory, or what was spooled.
class StoreSource final : public MemberSource {
 public:
  explicit StoreSource(ByteStore& store);

  [[nodiscard]] std::uint64_t size() const override { return store_.size(); }
  [[nodiscard]] bool restart() override { return at_ = 0, true; }
  [[nodiscard]] bool hasEnded() override { return at_ == store_.size(); }
  [[nodiscard]] bool sample(std::uint64_t offset, std::span<unsigned char> to) override {
    return store_.read(offset, to);
  }
  Bytes next() noexcept override;

 private:
  ByteStore& store_;
  std::uint64_t at_ = 0;
  std::vector<unsigned char> buffer_;
};

// Memory as a store.
class MemoryStore final : public ByteStore {
 public:
  explicit MemoryStore(Bytes bytes) : bytes_(bytes) {}
  [[nodiscard]] std::uint64_t size() const noexcept override { return bytes_.size(); }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    if (offset > bytes_.size() || to.size() > bytes_.size() - offset) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
    return true;
  }

 private:
  Bytes bytes_;
};

// Where they go. What was written can be dropped, and written anew.
class PackTarget : public ByteSink {
 public:
  [[nodiscard]] virtual std::uint64_t size() const = 0;
  [[nodiscard]] virtual bool restart() noexcept = 0;
};

// Writes the member's data, and fills in what the entry says of them. A source that has more or
// fewer bytes than it said is packed as it is read.
[[nodiscard]] bool packMember(MemberSource& source, ZoLibrary::compMode mode, int level,
                              PackTarget& target, Progress& progress, ReusedMemory& memory,
                              RawEntry& entry);

}  // namespace zo
