#include <zo/persist/file_archive.h>
#include <zo/system/exception.h>

#include "files/buffered_file.h"

ZoFileReadArchive::ZoFileReadArchive(ZoFile& file)
    : reader_(std::make_unique<zo::FileReader>(file)) {}

ZoFileReadArchive::~ZoFileReadArchive() {
  reader_->seek(reader_->position() - static_cast<std::int64_t>(unread()));
  reader_->detach();
}

bool ZoFileReadArchive::refill() {
  const std::span<const std::byte> bytes = reader_->next();
  if (bytes.empty() && reader_->failed()) fail(L"The archive's file cannot be read");
  setWindow(bytes.data(), bytes.size());
  return !bytes.empty();
}

// The writer's own buffer is not needed: it sees to it that all bytes reach the file.
ZoFileWriteArchive::ZoFileWriteArchive(ZoFile& file)
    : writer_(std::make_unique<zo::FileWriter>(file, 0)), buffer_(new std::byte[zo::kFileBuffer]) {
  begin_ = next_ = buffer_.get();
  end_ = begin_ + zo::kFileBuffer;
}

ZoFileWriteArchive::~ZoFileWriteArchive() {
  try {
    flush();
  } catch (const ZoComException&) {  // NOLINT(bugprone-empty-catch): flush() is there to tell of it
  }
}

void ZoFileWriteArchive::flush() {
  const auto used = static_cast<std::size_t>(next_ - begin_);
  next_ = begin_;  // what a full disk refuses once is not written twice
  store(begin_, used);
}

void ZoFileWriteArchive::overflow(const void* data, std::size_t size) {
  flush();
  if (size > static_cast<std::size_t>(end_ - begin_)) return store(data, size);
  std::memcpy(next_, data, size);
  next_ += size;
}

void ZoFileWriteArchive::store(const void* data, std::size_t size) {
  if (!writer_->write(data, size)) fail(L"The archive's file cannot be written");
  stored_ += size;
}
