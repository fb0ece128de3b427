#include "library/spool.h"

#include <algorithm>

#include "files/buffered_file.h"

namespace zo {

bool openTemporary(ZoFile& file) {
  ZoFileName name;
  return file.createTemp(name, ZoFile::kReadWrite, ZoFile::kCreateNew, ZoFile::kShareNone,
                         ZoFile::kTemporary | ZoFile::kDeleteOnClose) == ZoResult::ok;
}

bool Spool::write(Bytes bytes) noexcept {
  try {
    if (!append(bytes)) return false;
    size_ += bytes.size();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool Spool::append(Bytes bytes) {
  if (!file_.isOpen()) {
    if (memory_.size() + bytes.size() <= mostMemory_) {
      memory_.insert(memory_.end(), bytes.begin(), bytes.end());
      return true;
    }
    if (!openTemporary(file_) ||
        writeAll(file_, memory_.data(), memory_.size()) != memory_.size()) {
      return false;
    }
    std::vector<unsigned char>().swap(memory_);
  }
  const auto end = static_cast<std::int64_t>(size_);
  return file_.seek(end) == end && writeAll(file_, bytes.data(), bytes.size()) == bytes.size();
}

bool Spool::read(std::uint64_t offset, std::span<unsigned char> to) noexcept {
  try {
    return readAt(offset, to);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool Spool::readAt(std::uint64_t offset, std::span<unsigned char> to) {
  if (offset > size_ || to.size() > size_ - offset) return false;
  if (!file_.isOpen()) {
    std::copy_n(memory_.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
    return true;
  }
  if (file_.seek(static_cast<std::int64_t>(offset)) != static_cast<std::int64_t>(offset)) {
    return false;
  }
  while (!to.empty()) {
    const unsigned int got = file_.read(to.data(), pieceOf(to.size()));
    if (got == 0) return false;
    to = to.subspan(got);
  }
  return true;
}

void Spool::clear() noexcept {
  memory_.clear();
  if (file_.isOpen()) file_.cancel();
  size_ = 0;
}

}  // namespace zo
