#include "library/memory_disk.h"

#include <algorithm>
#include <random>
#include <set>

namespace zo::test {
namespace {

constexpr std::size_t kSector = 512;
constexpr FILETIME kNow{.dwLowDateTime = 1000, .dwHighDateTime = 0x01D70000};

bool isHere(const std::wstring& name) { return name.starts_with(L"M:\\"); }

void applyChange(std::string& bytes, const MemoryDisk::Change& change) {
  const auto offset = static_cast<std::size_t>(change.offset);
  const std::size_t end = offset + change.bytes.size();
  if (change.setsEnd || bytes.size() < end) bytes.resize(end);
  bytes.replace(offset, change.bytes.size(), change.bytes);
}

}  // namespace

MemoryDisk::Image MemoryDisk::image() const {
  Image image;
  for (const auto& [name, file] : files_) image[name] = file->bytes;
  return image;
}

void MemoryDisk::put(const Image& image) {
  open_.clear();
  files_.clear();
  for (const auto& [name, bytes] : image) {
    files_[name] = std::make_shared<File>(
        File{.bytes = bytes, .created = kNow, .accessed = kNow, .written = kNow, .flushed = bytes});
  }
}

const MemoryDisk::File* MemoryDisk::find(const std::wstring& name) const {
  const auto found = files_.find(name);
  return found == files_.end() ? nullptr : found->second.get();
}

bool MemoryDisk::passes(DWORD error) {
  ++calls_;
  const bool isLater = trouble_ == Trouble::stop && calls_ > nth_;
  if (trouble_ == Trouble::none || trouble_ == Trouble::full || (calls_ != nth_ && !isLater)) {
    return true;
  }
  SetLastError(error);
  return false;
}

// How much of a reading or writing is done; none is a failure.
DWORD MemoryDisk::allowed(DWORD count, std::uint64_t position, bool writes) {
  if (trouble_ != Trouble::shorten && (trouble_ != Trouble::full || !writes)) {
    return passes() ? count : 0;
  }
  const bool isMet = ++calls_ == nth_;
  if (trouble_ == Trouble::shorten) return isMet ? (count + 1) / 2 : count;
  SetLastError(ERROR_DISK_FULL);
  if (calls_ < nth_) return count;
  const std::uint64_t end = (position + count / 2) / kSector * kSector;
  return isMet && end > position ? static_cast<DWORD>(end - position) : 0;
}

MemoryDisk::Open& MemoryDisk::at(HANDLE file) {
  return open_.at(reinterpret_cast<std::size_t>(file));
}

std::wstring MemoryDisk::nameOf(const File& file) const {
  for (const auto& [name, other] : files_) {
    if (other.get() == &file) return name;
  }
  return {};
}

HANDLE MemoryDisk::create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                          DWORD flags) {
  if (!isHere(name)) return FileApi::create(name, access, share, disposition, flags);
  if (!passes()) return INVALID_HANDLE_VALUE;
  std::shared_ptr<File>& file = files_[name];
  const bool exists = file != nullptr;
  if (exists ? disposition == CREATE_NEW : disposition == OPEN_EXISTING) {
    if (!exists) files_.erase(name);
    SetLastError(exists ? ERROR_FILE_EXISTS : ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  if (!exists) file = std::make_shared<File>(File{{}, kNow, kNow, kNow});
  if (flags & FILE_FLAG_DELETE_ON_CLOSE) file->isDoomed = true;
  ++file->handles;
  open_[++lastHandle_] = {file};
  return reinterpret_cast<HANDLE>(lastHandle_);
}

bool MemoryDisk::close(HANDLE handle) {
  const auto found = open_.find(reinterpret_cast<std::size_t>(handle));
  if (found == open_.end()) return FileApi::close(handle);
  const bool passed = passes();
  File& file = *found->second.file;
  if (found->second.locks) file.isLocked = false;
  if (--file.handles == 0 && file.isDoomed && trouble_ != Trouble::stop) files_.erase(nameOf(file));
  open_.erase(found);
  return passed;
}

bool MemoryDisk::read(HANDLE file, void* buffer, DWORD count, DWORD& done) {
  Open& open = at(file);
  const std::string& bytes = open.file->bytes;
  const auto begin = static_cast<std::size_t>(std::min<std::uint64_t>(open.position, bytes.size()));
  done = static_cast<DWORD>(std::min<std::size_t>(count, bytes.size() - begin));
  const bool isEnd = done == 0;
  done = allowed(done, begin, false);
  bytes.copy(static_cast<char*>(buffer), done, begin);
  open.position += done;
  return done != 0 || (isEnd && trouble_ != Trouble::stop);
}

bool MemoryDisk::write(HANDLE file, const void* data, DWORD count, DWORD& done) {
  Open& open = at(file);
  done = allowed(count, open.position, true);
  if (done == 0) return false;
  Change change{open.position, std::string(static_cast<const char*>(data), done), false};
  applyChange(open.file->bytes, change);
  open.file->pending.push_back(std::move(change));
  open.position += done;
  return true;
}

bool MemoryDisk::seek(HANDLE file, std::int64_t offset, DWORD method, std::int64_t& position) {
  if (!passes()) return false;
  Open& open = at(file);
  if (method == FILE_CURRENT) offset += static_cast<std::int64_t>(open.position);
  if (method == FILE_END) offset += static_cast<std::int64_t>(open.file->bytes.size());
  open.position = static_cast<std::uint64_t>(position = offset);
  return offset >= 0;
}

bool MemoryDisk::setEnd(HANDLE file) {
  if (!passes()) return false;
  Open& open = at(file);
  open.file->pending.push_back({open.position, {}, true});
  applyChange(open.file->bytes, open.file->pending.back());
  return true;
}

bool MemoryDisk::lock(HANDLE file, std::uint64_t, std::uint64_t) {
  if (!passes(ERROR_NOT_ENOUGH_MEMORY)) return false;
  Open& open = at(file);
  SetLastError(ERROR_LOCK_VIOLATION);
  if (open.file->isLocked) return false;
  return open.locks = open.file->isLocked = true;
}

bool MemoryDisk::flush(HANDLE handle) {
  if (!passes(ERROR_IO_DEVICE)) return false;
  File& file = *at(handle).file;
  if (beforeDurable) beforeDurable(nameOf(file));
  file.flushed = file.bytes;
  file.pending.clear();
  return true;
}

bool MemoryDisk::size(HANDLE file, std::int64_t& bytes) {
  bytes = static_cast<std::int64_t>(at(file).file->bytes.size());
  return passes();
}

bool MemoryDisk::information(HANDLE handle, BY_HANDLE_FILE_INFORMATION& information) {
  if (!passes()) return false;
  const File& file = *at(handle).file;
  information = {};
  information.ftCreationTime = file.created;
  information.ftLastAccessTime = file.accessed;
  information.ftLastWriteTime = file.written;
  information.nFileSizeLow = static_cast<DWORD>(file.bytes.size());
  return true;
}

bool MemoryDisk::lastWrite(HANDLE file, FILETIME& time) {
  time = at(file).file->written;
  return passes();
}

bool MemoryDisk::setTimes(HANDLE handle, const FILETIME* created, const FILETIME* accessed,
                          const FILETIME* written) {
  if (!passes()) return false;
  File& file = *at(handle).file;
  if (created) file.created = *created;
  if (accessed) file.accessed = *accessed;
  if (written) file.written = *written;
  return true;
}

bool MemoryDisk::removeFile(const wchar_t* name) {
  if (!isHere(name)) return FileApi::removeFile(name);
  return passes(ERROR_ACCESS_DENIED) && files_.erase(name) != 0;
}

// Like the platform, does not replace a file that is open.
bool MemoryDisk::move(const wchar_t* from, const wchar_t* to, DWORD flags) {
  if (!passes(ERROR_ACCESS_DENIED)) return false;
  const auto found = files_.find(from);
  const File* const old = find(to);
  const bool mayReplace = !old || ((flags & MOVEFILE_REPLACE_EXISTING) && old->handles == 0);
  SetLastError(found == files_.end() ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED);
  if (found == files_.end() || !mayReplace) return false;
  if (beforeDurable) beforeDurable(to);
  const std::shared_ptr<File> moved = found->second;
  files_.erase(found);
  files_[to] = moved;
  if (beforeDurable) beforeDurable(to);
  return true;
}

DWORD MemoryDisk::attributes(const wchar_t* name) {
  if (!isHere(name)) return FileApi::attributes(name);
  return passes() && find(name) ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
}

DWORD MemoryDisk::tempFolder(DWORD, wchar_t* buffer) {
  return static_cast<DWORD>(std::wstring(L"M:\\").copy(buffer, 4));
}

int forEachRemainder(const MemoryDisk::File& file, std::size_t sector, int most,
                     const std::function<void(const std::string& bytes)>& visit) {
  std::vector<MemoryDisk::Change> pieces;
  std::size_t end = file.flushed.size();
  for (const MemoryDisk::Change& change : file.pending) {
    const auto offset = static_cast<std::size_t>(change.offset);
    const std::size_t after = offset + change.bytes.size();
    // That a file grows reaches the disk apart from the bytes.
    if (change.setsEnd || after > end) pieces.push_back({end = after, {}, true});
    for (std::size_t at = offset; at < after;) {
      const std::size_t next = std::min(after, (at / sector + 1) * sector);
      pieces.push_back({at, change.bytes.substr(at - offset, next - at), false});
      at = next;
    }
  }
  std::set<std::string> seen;
  const auto tryOut = [&](const auto& isKept) {
    std::string bytes = file.flushed;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      if (isKept(i)) applyChange(bytes, pieces[i]);
    }
    if (seen.insert(bytes).second) visit(bytes);
  };
  if (pieces.size() < 31 && (1 << pieces.size()) <= most) {
    for (unsigned mask = 0; mask >> pieces.size() == 0; ++mask) {
      tryOut([mask](std::size_t i) { return (mask >> i & 1) != 0; });
    }
    return static_cast<int>(seen.size());
  }
  std::mt19937 random(static_cast<unsigned>(pieces.size()));
  for (int round = 0; round < most; ++round) {
    const std::size_t one = random() % pieces.size();
    const unsigned kind = random() % 4, share = 1 + random() % 7;
    tryOut([&](std::size_t i) {
      if (kind == 0) return i == one;  // alone, missing, the first ones, or a share of all
      if (kind == 1) return i != one;
      return kind == 2 ? i <= one : random() % 8 < share;
    });
  }
  return static_cast<int>(seen.size());
}

}  // namespace zo::test
