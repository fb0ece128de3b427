#if !defined(ZO_WITH_MFC)
#include <zo/host/c_archive.h>

#include <algorithm>
#include <cstring>

CArchiveException::~CArchiveException() = default;

namespace {

[[noreturn]] void refuse(CArchiveException::Cause cause) {
  // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): the framework throws pointers
  throw new CArchiveException(cause);
}

}  // namespace

CArchive::CArchive(CFile* file, unsigned int mode, int bufferSize)
    : file_(file),
      mode_(mode),
      buffer_(new std::byte[static_cast<std::size_t>(std::max(bufferSize, 128))]),
      capacity_(static_cast<unsigned int>(std::max(bufferSize, 128))) {}

CArchive::~CArchive() {
  if (!file_ || (mode_ & bNoFlushOnDelete)) return;
  try {
    Close();
    // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): the framework throws pointers
  } catch (CException* e) {
    e->Delete();
  }
}

unsigned int CArchive::Read(void* buffer, unsigned int count) {
  if (IsStoring()) refuse(CArchiveException::writeOnly);
  auto* to = static_cast<std::byte*>(buffer);
  unsigned int got = 0;
  while (got < count) {
    if (next_ == end_) {
      next_ = 0;
      end_ = file_->Read(buffer_.get(), capacity_);
      if (end_ == 0) break;
    }
    const unsigned int piece = std::min(count - got, end_ - next_);
    std::memcpy(to + got, buffer_.get() + next_, piece);
    next_ += piece;
    got += piece;
  }
  return got;
}

void CArchive::Write(const void* data, unsigned int count) {
  if (IsLoading()) refuse(CArchiveException::readOnly);
  if (count == 0) return;
  if (count > capacity_ - end_) Flush();
  if (count > capacity_) return file_->Write(data, count);
  std::memcpy(buffer_.get() + end_, data, count);
  end_ += count;
}

void CArchive::Flush() {
  if (IsLoading()) {
    const unsigned int unread = end_ - next_;
    next_ = end_ = 0;
    if (unread > 0) file_->Seek(-static_cast<long long>(unread), CFile::current);
    return;
  }
  const unsigned int used = end_;
  end_ = 0;
  if (used > 0) file_->Write(buffer_.get(), used);
  file_->Flush();
}

void CArchive::Close() {
  if (!file_) return;
  Flush();
  file_ = nullptr;
}
#endif
