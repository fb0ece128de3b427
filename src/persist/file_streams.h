// Open files as what the codecs read from and write to, and the frame of all file forms: whatever
// fails, no half of a target stays.
#pragma once

#include <zo/files/file.h>
#include <zo/files/file_save.h>
#include <zo/results.h>

#include <new>

#include "files/buffered_file.h"
#include "persist/container.h"

namespace zo {

// The whole of a file, from its begin.
class FileStore final : public ByteStore {
 public:
  explicit FileStore(ZoFile& file) : file_(file), size_(file.size()), position_(file.seek(0)) {}
  [[nodiscard]] bool isReadable() const noexcept { return size_ >= 0 && position_ == 0; }
  [[nodiscard]] std::uint64_t size() const noexcept override {
    return static_cast<std::uint64_t>(size_);
  }

  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override try {
    const auto wanted = static_cast<std::int64_t>(offset);
    if (position_ != wanted) position_ = file_.seek(wanted);
    if (position_ != wanted) return false;
    while (!to.empty()) {
      const unsigned int got = file_.read(to.data(), pieceOf(to.size()));
      if (got == 0) return false;
      position_ += got;
      to = to.subspan(got);
    }
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }

 private:
  ZoFile& file_;
  std::int64_t size_;
  std::int64_t position_;  // -1 when a seek failed
};

// A file from its position on.
class FileSink final : public ByteSink {
 public:
  explicit FileSink(ZoFile& file) : file_(file), begin_(file.currentPos()) {}
  [[nodiscard]] bool isWritable() const noexcept { return begin_ >= 0; }

  // A file takes all or has met the end of its medium, so a write that comes short is a failure.
  [[nodiscard]] bool write(Bytes bytes) noexcept override try {
    while (!bytes.empty()) {
      const unsigned int piece = pieceOf(bytes.size());
      touched_ = true;
      if (file_.write(bytes.data(), piece) != piece) return false;
      bytes = bytes.subspan(piece);
    }
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }

  // Ends the file with what was written.
  [[nodiscard]] bool finish() {
    const std::int64_t end = file_.currentPos(), size = file_.size();
    if (end < 0 || size < 0) return false;
    return size == end || file_.setEndOfFile() == ZoResult::ok;
  }
  // Ends the file where writing began, if it did.
  void takeBack() {
    if (touched_ && file_.seek(begin_) == begin_) static_cast<void>(file_.setEndOfFile());
  }

 private:
  ZoFile& file_;
  std::int64_t begin_;
  bool touched_ = false;
};

// Runs operation(store, sink), which answers as ZoExplode's operations do, between two open files.
template <class Operation>
int betweenFiles(ZoFile& in, ZoFile& out, Operation operation) noexcept try {
  FileStore store(in);  // NOLINT(misc-const-correctness): the operation reads on in it
  FileSink sink(out);
  if (!store.isReadable() || !sink.isWritable()) return ZoResult::refused;
  int result = operation(store, sink);
  if (result != ZoResult::refused && !sink.finish()) result = ZoResult::refused;
  if (result == ZoResult::refused) sink.takeBack();
  return result;
} catch (const std::bad_alloc&) {
  return ZoResult::refused;
}

// Runs a file form between the files of two names: the target changes in one step at the end.
template <class FileForm>
int betweenNames(const ZoFileName& in, const ZoFileName& out, const FileForm& form) noexcept try {
  ZoFile source;
  ZoFileSave target;
  if (source.open(in, ZoFile::kRead, ZoFile::kOpenExisting,
                  ZoFile::kShareRead | ZoFile::kShareDelete, ZoFile::kSequential) ||
      target.open(out)) {
    return ZoResult::refused;
  }
  const int result = form(source, target.file());
  // Both names may be the same file's, which is replaced only when nobody has it open.
  const bool failed = result == ZoResult::refused || source.close() || target.commit();
  return failed ? ZoResult::refused : result;
} catch (const std::bad_alloc&) {
  return ZoResult::refused;
}

}  // namespace zo
