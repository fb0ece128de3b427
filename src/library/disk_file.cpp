#include "library/disk_file.h"

#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <atomic>

#include "library/format.h"
#include "platform/time_value.h"
#include "platform/write_all.h"

namespace zo {
namespace {

constexpr std::size_t kLargestCall = std::size_t{1} << 30;  // a call's size has 32 bits
constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

constinit std::atomic<std::uint64_t> changes = 0;

}  // namespace

bool reportFailure(const wchar_t* operation) noexcept {
  try {
    ZoSystem::fileSystem().errorIO(operation);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory only the reason is lost
  }
  return false;
}

std::uint64_t libraryChanges() noexcept { return changes; }
void countLibraryChange() noexcept { ++changes; }

bool DiskFile::open(const SystemPath& path, DWORD access, DWORD share, DWORD disposition) noexcept {
  take(OpenFile(fileApi().create(path, access, share, disposition, FILE_FLAG_RANDOM_ACCESS)));
  return isOpen();
}

bool DiskFile::openToRead(const SystemPath& path, DWORD disposition) noexcept {
  return open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
              disposition);
}

bool DiskFile::openToWrite(const SystemPath& path, DWORD disposition) noexcept {
  return open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, disposition);
}

void DiskFile::take(OpenFile file) noexcept {
  file_ = std::move(file);
  seen_ = {};
  position_ = kUnknown;
}

bool DiskFile::close() noexcept { return file_.close() || reportFailure(L"close"); }

bool DiskFile::isEmpty() const noexcept {
  std::int64_t size = -1;
  return fileApi().size(file_.get(), size) && size == 0;
}

bool DiskFile::look(Signature& signature) noexcept {
  std::int64_t size = 0;
  FILETIME written;
  if (!fileApi().size(file_.get(), size) ||
      !fileApi().times(file_.get(), nullptr, nullptr, &written)) {
    return reportFailure(L"size");
  }
  seen_ = {.size = static_cast<std::uint64_t>(size), .written = timeValue(written)};
  signature = seen_;
  return true;
}

void DiskFile::touch() noexcept {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  const std::uint64_t time = std::max(timeValue(now), seen_.written + 1);
  now = fileTime(time);
  // What fails here is noticed later by other processes, and not lost.
  if (fileApi().setTimes(file_.get(), nullptr, nullptr, &now)) seen_.written = time;
  countLibraryChange();
}

bool DiskFile::seek(std::uint64_t offset) noexcept {
  if (offset == position_) return true;
  std::int64_t reached = 0;
  position_ = kUnknown;
  if (!fileApi().seek(file_.get(), static_cast<std::int64_t>(offset), FILE_BEGIN, reached)) {
    return reportFailure(L"seek");
  }
  position_ = offset;
  return true;
}

bool DiskFile::read(std::uint64_t offset, std::span<unsigned char> to) noexcept {
  if (!seek(offset)) return false;
  while (!to.empty()) {
    DWORD done = 0;
    const auto part = static_cast<DWORD>(std::min(to.size(), kLargestCall));
    const bool succeeded = fileApi().read(file_.get(), to.data(), part, done);
    if (succeeded && done == 0) SetLastError(ERROR_HANDLE_EOF);
    if (!succeeded || done == 0) {
      position_ = kUnknown;
      return reportFailure(L"read");
    }
    position_ += done;
    to = to.subspan(done);
  }
  return true;
}

bool DiskFile::write(std::uint64_t offset, Bytes bytes) noexcept {
  if (!seek(offset)) return false;
  const std::size_t written = writeAll(file_.get(), bytes.data(), bytes.size());
  if (written != 0) seen_.size = std::max(seen_.size, offset + written);
  position_ = written == bytes.size() ? offset + written : kUnknown;
  return written == bytes.size() || reportFailure(L"write");
}

bool DiskFile::cut(std::uint64_t size) noexcept {
  if (!seek(size)) return false;
  if (!fileApi().setEnd(file_.get())) return reportFailure(L"setEndOfFile");
  seen_.size = size;
  countLibraryChange();
  return true;
}

bool DiskFile::flush() noexcept { return fileApi().flush(file_.get()) || reportFailure(L"flush"); }

bool DiskFile::lock() noexcept { return fileApi().lock(file_.get(), kWriterByteAt, 1); }

}  // namespace zo
