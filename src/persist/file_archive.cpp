#include <zo/files/file_imp.h>
#include <zo/persist/file_archive.h>
#include <zo/results.h>
#include <zo/system/exception.h>

#include "files/buffered_file.h"
#include "files/file_buffer.h"

namespace {

constexpr const wchar_t* kClosed = L"The archive's file is closed";
constexpr const wchar_t* kUnreadable = L"The archive's file cannot be read";
constexpr const wchar_t* kUnwritable = L"The archive's file cannot be written";

}  // namespace

// ---- Reading ----

class ZoFileReadArchive::Buffer final : public zo::FileBuffer {
 public:
  Buffer(ZoFileReadArchive& archive, ZoFileImp& file) : FileBuffer(file), archive_(archive) {}

  // From where the file stands. Empty at its end; false for a failure.
  bool fill() {
    ZoFileImp& from = *file();
    if (from.settleBuffers() != ZoResult::ok) return false;  // of other archives
    const unsigned int got = from.read(bytes_.get(), zo::kFileBuffer);
    archive_.setWindow(bytes_.get(), got);
    // A file gives nothing at its end as well as for a failure; only its size tells which it was.
    if (got > 0) return true;
    const std::int64_t at = from.seek(0, ZoFile::kCurrent);
    return at >= 0 && at >= from.size() && from.size() >= 0;
  }
  void settle(bool closing) noexcept override try {
    const auto ahead = static_cast<std::int64_t>(archive_.dropWindow());
    if (ahead > 0 && !closing && file()->seek(-ahead, ZoFile::kCurrent) < 0) lose();
  } catch (...) {
    lose();
  }
  void drop() noexcept override { archive_.dropWindow(); }

 private:
  ZoFileReadArchive& archive_;
  std::unique_ptr<std::byte[]> bytes_{new std::byte[zo::kFileBuffer]};
};

ZoFileReadArchive::ZoFileReadArchive(ZoFile& file)
    : buffer_(std::make_unique<Buffer>(*this, *file.getImpObj())) {}

ZoFileReadArchive::~ZoFileReadArchive() {
  if (buffer_->file()) buffer_->settle(false);
}

bool ZoFileReadArchive::refill() {
  if (!buffer_->file()) fail(kClosed);
  if (!buffer_->fill()) fail(kUnreadable);
  return unread() > 0;
}

// ---- Writing ----

class ZoFileWriteArchive::Buffer final : public zo::FileBuffer {
 public:
  Buffer(ZoFileWriteArchive& archive, ZoFileImp& file) : FileBuffer(file), archive_(archive) {}

  // Where the archive writes, once all before has been handed over.
  void open() noexcept {
    archive_.begin_ = archive_.next_ = bytes_.get();
    archive_.end_ = archive_.begin_ + zo::kFileBuffer;
  }
  // Leaves the archive no room, so that its next write asks where the file stands then. False when
  // that fails or has failed before: what a full disk refuses once is not written twice.
  bool handOver() {
    const std::byte* const held = archive_.begin_;
    const auto size = static_cast<std::size_t>(archive_.next_ - held);
    drop();
    return store(held, size);
  }
  // What the file takes only in part is offered again.
  bool store(const std::byte* data, std::size_t size) {
    if (size > 0) hasFailed_ = hasFailed_ || !offer(data, size);
    if (!hasFailed_) archive_.stored_ += size;
    return !hasFailed_;
  }
  void settle(bool) noexcept override {
    const bool isHolding = archive_.next_ != archive_.begin_;
    if (!handOver() && isHolding) lose();
  }
  void drop() noexcept override { archive_.begin_ = archive_.next_ = archive_.end_ = nullptr; }

 private:
  bool offer(const std::byte* data, std::size_t size) noexcept try {
    while (size > 0) {
      const unsigned int moved = file() ? file()->write(data, zo::pieceOf(size)) : 0;
      if (moved == 0) return false;
      data += moved;
      size -= moved;
    }
    return true;
  } catch (...) {
    return false;
  }

  ZoFileWriteArchive& archive_;
  std::unique_ptr<std::byte[]> bytes_{new std::byte[zo::kFileBuffer]};
  bool hasFailed_ = false;
};

ZoFileWriteArchive::ZoFileWriteArchive(ZoFile& file)
    : WriteArchive(false), buffer_(std::make_unique<Buffer>(*this, *file.getImpObj())) {}

ZoFileWriteArchive::~ZoFileWriteArchive() {
  if (buffer_->file()) buffer_->settle(false);
}

void ZoFileWriteArchive::flush() {
  if (!buffer_->handOver()) fail(kUnwritable);
}

void ZoFileWriteArchive::overflow(const void* data, std::size_t size) {
  flush();
  if (!buffer_->file()) fail(kClosed);
  if (buffer_->file()->settleBuffers() != ZoResult::ok) fail(kUnwritable);  // of other archives
  const auto* const bytes = static_cast<const std::byte*>(data);
  if (size > zo::kFileBuffer) {
    if (!buffer_->store(bytes, size)) fail(kUnwritable);
    return;
  }
  buffer_->open();
  std::memcpy(next_, bytes, size);
  next_ += size;
}
