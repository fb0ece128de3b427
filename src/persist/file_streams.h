// Files as what the codecs read from and write to.
#pragma once

#include "persist/container.h"
#include "platform/byte_file.h"

namespace zo {

class FileStore final : public ByteStore {
 public:
  [[nodiscard]] bool open(const wchar_t* name) noexcept { return file_.open(name); }
  [[nodiscard]] std::uint64_t size() const noexcept override { return file_.size(); }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    return file_.read(offset, to);
  }

 private:
  InputFile file_;
};

class FileSink final : public ByteSink {
 public:
  // Throws std::bad_alloc.
  [[nodiscard]] bool open(const wchar_t* name) { return file_.open(name); }
  [[nodiscard]] bool write(Bytes bytes) noexcept override { return file_.write(bytes); }
  [[nodiscard]] bool commit() noexcept { return file_.commit(); }

 private:
  TargetFile file_;
};

}  // namespace zo
