// What is left of a file object, from its position to its end, as the bytes of a new member.
#pragma once

#include <zo/files/file.h>

#include <algorithm>
#include <vector>

#include "library/copy.h"
#include "library/operations.h"

namespace zo {

// With one question where the file is one of the platform; false when that is not answered.
[[nodiscard]] inline bool timesOf(ZoFile& file, MemberTimes& times) {
  if (file.handle() != INVALID_HANDLE_VALUE) {
    return fileApi().times(file.handle(), &times.created, &times.accessed, &times.written) ||
           reportFailure(L"times");
  }
  times = {.created = file.creationTime(),
           .accessed = file.lastAccessTime(),
           .written = file.lastWriteTime()};
  return true;
}

class FileSource final : public MemberSource {
 public:
  explicit FileSource(ZoFile& file) : file_(file), begin_(file.currentPos()) {
    const std::int64_t end = file.size();
    if (begin_ >= 0 && end >= 0) size_ = static_cast<std::uint64_t>(std::max(end, begin_) - begin_);
    const std::uint64_t room = std::min<std::uint64_t>(size_, kPiece);
    buffer_.resize(std::max<std::size_t>(static_cast<std::size_t>(room), 1));
  }

  [[nodiscard]] bool isReadable() const { return begin_ >= 0 && file_.size() >= 0; }
  [[nodiscard]] std::uint64_t size() const override { return size_; }
  [[nodiscard]] bool restart() override { return file_.seek(begin_) == begin_; }
  Bytes next() noexcept override {
    const unsigned int got = file_.read(buffer_.data(), static_cast<unsigned int>(buffer_.size()));
    return {buffer_.data(), got};
  }

 private:
  ZoFile& file_;
  std::int64_t begin_;
  std::uint64_t size_ = 0;
  std::vector<unsigned char> buffer_;
};

}  // namespace zo
