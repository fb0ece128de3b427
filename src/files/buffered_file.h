// Reading and writing a ZoFile in small pieces, through a buffer.
//
// Each works from the position that the file has when it is made; until it is done (flush(),
// detach()) the file's own position is its business, and the file is not to be used past it. Both
// take any implementation of a file.
//
// Errors:  read gives the bytes it got, fewer than asked for at the end of the file or after a
//          failure, which failed() tells apart. write and flush answer false for a failure; the
//          writer refuses everything from then on. What the file moved only in part is asked for
//          again. The reason of a failure is kept by the file-system service.
// Threads: one.
// Cost:    one call of the file per buffer; pieces of a buffer's size and more pass it by.
#pragma once

#include <zo/files/file.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

namespace zo {

inline constexpr std::size_t kFileBuffer = std::size_t{64} << 10;
// What is asked of a file at once: the platform counts in 32 bits.
[[nodiscard]] inline unsigned int pieceOf(std::size_t count) noexcept {
  return static_cast<unsigned int>(std::min(count, std::size_t{1} << 30));
}

// Writes all where one call may take only a part. Returns how many bytes were written: fewer only
// after a failure.
[[nodiscard]] inline std::size_t writeAll(ZoFile& file, const void* data, std::size_t count) {
  const auto* const begin = static_cast<const std::byte*>(data);
  std::size_t written = 0;
  while (written < count) {
    const std::size_t moved = file.write(begin + written, pieceOf(count - written));
    if (moved == 0) break;
    written += moved;
  }
  return written;
}

class FileReader {
 public:
  explicit FileReader(ZoFile& file, std::size_t capacity = kFileBuffer)
      : file_(file),
        buffer_(new std::byte[capacity]),
        capacity_(capacity),
        bufferStart_(file.currentPos()),
        failed_(bufferStart_ < 0) {}

  std::size_t read(void* out, std::size_t count) {
    if (count <= end_ - next_) {
      std::memcpy(out, buffer_.get() + next_, count);
      next_ += count;
      return count;
    }
    return readMore(static_cast<std::byte*>(out), count);
  }

  // Where the next byte comes from.
  [[nodiscard]] std::int64_t position() const {
    return bufferStart_ + static_cast<std::int64_t>(next_);
  }
  // Goes there; what is in the buffer already is not read again. false for a failure.
  bool seek(std::int64_t position) {
    const std::int64_t inBuffer = position - bufferStart_;
    if (inBuffer >= 0 && inBuffer <= static_cast<std::int64_t>(end_)) {
      next_ = static_cast<std::size_t>(inBuffer);
      return true;
    }
    return moveTo(position);
  }
  // Gives the file back at position().
  bool detach() { return moveTo(position()); }
  // Whether the last read or move came to its end by a failure.
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  bool moveTo(std::int64_t position) {
    failed_ = position < 0 || file_.seek(position) != position;
    if (!failed_) start(position);
    return !failed_;
  }

  void start(std::int64_t position) {
    bufferStart_ = position;
    next_ = end_ = 0;
  }

  std::size_t readMore(std::byte* out, std::size_t count) {
    failed_ = false;
    std::size_t got = end_ - next_;
    std::memcpy(out, buffer_.get() + next_, got);
    start(bufferStart_ + static_cast<std::int64_t>(end_));
    while (count - got >= capacity_) {
      const std::size_t moved = fetch(out + got, count - got);
      if (moved == 0) return got;
      start(bufferStart_ + static_cast<std::int64_t>(moved));
      got += moved;
    }
    while (got < count) {
      start(bufferStart_ + static_cast<std::int64_t>(end_));
      end_ = fetch(buffer_.get(), capacity_);
      if (end_ == 0) return got;
      next_ = std::min(count - got, end_);
      std::memcpy(out + got, buffer_.get(), next_);
      got += next_;
    }
    return got;
  }

  // A file gives nothing at its end as well as for a failure; only its size tells which it was.
  std::size_t fetch(void* out, std::size_t count) {
    const std::size_t moved = file_.read(out, pieceOf(count));
    if (moved == 0) failed_ = bufferStart_ < file_.size() || file_.size() < 0;
    return moved;
  }

  ZoFile& file_;
  std::unique_ptr<std::byte[]> buffer_;
  std::size_t capacity_;
  std::size_t next_ = 0, end_ = 0;  // of what is in the buffer
  std::int64_t bufferStart_;        // where its first byte stands in the file
  bool failed_;
};

// What was not flushed when it is destroyed is dropped.
class FileWriter {
 public:
  explicit FileWriter(ZoFile& file, std::size_t capacity = kFileBuffer)
      : file_(file),
        buffer_(new std::byte[capacity]),
        capacity_(capacity),
        bufferStart_(file.currentPos()),
        failed_(bufferStart_ < 0) {
    if (failed_) capacity_ = 0;
  }

  bool write(const void* data, std::size_t count) {
    if (count <= capacity_ - used_) {
      std::memcpy(buffer_.get() + used_, data, count);
      used_ += count;
      return !failed_;
    }
    return writeMore(static_cast<const std::byte*>(data), count);
  }

  // Hands everything to the file (not to the disk: that is the file's flush). The file is at
  // position() then.
  bool flush() {
    const std::size_t pending = used_;
    used_ = 0;
    return store(buffer_.get(), pending);
  }
  // Where the next byte goes.
  [[nodiscard]] std::int64_t position() const {
    return bufferStart_ + static_cast<std::int64_t>(used_);
  }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  bool writeMore(const std::byte* data, std::size_t count) {
    if (!flush()) return false;
    if (count >= capacity_) return store(data, count);
    std::memcpy(buffer_.get(), data, count);
    used_ = count;
    return true;
  }

  bool store(const std::byte* data, std::size_t count) {
    if (failed_) return false;
    const std::size_t moved = writeAll(file_, data, count);
    bufferStart_ += static_cast<std::int64_t>(moved);
    failed_ = moved < count;
    if (failed_) capacity_ = 0;  // so that every write comes past here
    return !failed_;
  }

  ZoFile& file_;
  std::unique_ptr<std::byte[]> buffer_;
  std::size_t capacity_;
  std::size_t used_ = 0;
  std::int64_t bufferStart_;
  bool failed_;
};

}  // namespace zo
