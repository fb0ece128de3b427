#include <windows.h>
#include <zo/files/file_imp.h>
#include <zo/results.h>

#include <mutex>
#include <utility>

#include "files/file_buffer.h"
#include "files/fresh_file.h"
#include "files/keep_reason.h"
#include "platform/file_api.h"
#include "platform/system_path.h"

namespace {

enum Time : unsigned int { kCreated, kAccessed, kWritten };

DWORD flagsFor(int access, int flags) {
  const bool readsAndWrites = (access & ZoFile::kReadWrite) == ZoFile::kReadWrite;
  if (readsAndWrites && !(flags & ZoFile::kSequential)) flags |= ZoFile::kRandomAccess;
  return static_cast<DWORD>(flags);
}

}  // namespace

static_assert(sizeof(SRWLOCK) == sizeof(void*));  // and begins as zero
void ZoFileImp::Mutex::lock() noexcept {
  AcquireSRWLockExclusive(reinterpret_cast<SRWLOCK*>(&state_));
}
void ZoFileImp::Mutex::unlock() noexcept {
  ReleaseSRWLockExclusive(reinterpret_cast<SRWLOCK*>(&state_));
}

ZoFileImp::ZoFileImp(ZoFileSystem* service) noexcept
    : handle_(INVALID_HANDLE_VALUE), service_(service) {}

ZoFileImp::ZoFileImp(void* handle, ZoFileSystem* service) noexcept
    : handle_(handle ? handle : INVALID_HANDLE_VALUE), service_(service) {}

ZoFileImp::ZoFileImp(const ZoFileImp& other)
    : name_(other.name_.deepCopy()),
      handle_(INVALID_HANDLE_VALUE),
      access_(other.access_),
      share_(other.share_),
      service_(other.service_) {
  if (other.handle_ == INVALID_HANDLE_VALUE) return;
  if (HANDLE copy = zo::fileApi().duplicate(other.handle_)) {
    handle_ = copy;
  } else {
    report(L"open");
  }
}

ZoFileImp::ZoFileImp(const ZoFileImp& other, unsigned int access)
    : name_(other.name_.deepCopy()),
      handle_(INVALID_HANDLE_VALUE),
      access_(access),
      share_(other.share_),
      service_(other.service_) {
  if (other.handle_ == INVALID_HANDLE_VALUE) return;
  handle_ =
      zo::fileApi().reopen(other.handle_, access, share_, flagsFor(static_cast<int>(access), 0));
  if (handle_ == INVALID_HANDLE_VALUE) report(L"open");
}

ZoFileImp& ZoFileImp::operator=(const ZoFileImp& other) {
  if (this == &other) return *this;
  ZoFileImp copy(other);
  releaseBuffers();
  static_cast<void>(close());  // reported, and of no use to an assignment
  std::swap(name_, copy.name_);
  std::swap(handle_, copy.handle_);
  access_ = copy.access_;
  share_ = copy.share_;
  service_ = copy.service_;
  return *this;
}

ZoFileImp::~ZoFileImp() {
  dropBuffers();
  if (handle_ != INVALID_HANDLE_VALUE) zo::fileApi().close(handle_);
}

ZoFileImp* ZoFileImp::clone() const { return new ZoFileImp(*this); }
ZoFileImp* ZoFileImp::cloneFor(unsigned int access) const { return new ZoFileImp(*this, access); }

int ZoFileImp::report(const wchar_t* operation) const {
  return zo::keepReason(operation, service_);
}

int ZoFileImp::report(const wchar_t* operation, unsigned long error) const {
  return zo::keepReason(operation, error, ZoResult::refused, service_);
}

bool ZoFileImp::mayUse(const wchar_t* operation) const {
  if (handle_ == INVALID_HANDLE_VALUE) report(operation, ERROR_INVALID_HANDLE);
  return handle_ != INVALID_HANDLE_VALUE;
}

void ZoFileImp::setModes(const ZoFileName& name, unsigned int access, unsigned int share) {
  name_ = name.deepCopy();
  access_ = access;
  share_ = share;
}

void ZoFileImp::adopt(void* handle, ZoFileName&& own, int access, int share) noexcept {
  handle_ = handle;
  name_ = std::move(own);
  access_ = static_cast<unsigned int>(access);
  share_ = static_cast<unsigned int>(share);
}

int ZoFileImp::open(const ZoFileName& name, int access, ZoFile::CreationMode mode, int share,
                    int flags) {
  if (const int code = close()) return code;
  const ZoFileName served = name.isURL() ? name.localAlias() : ZoFileName();
  const zo::SystemPath path(served.isEmpty() ? name.fullName() : served.fullName());
  ZoFileName own = name.deepCopy();  // once it is open, nothing throws
  HANDLE opened = zo::fileApi().create(path, static_cast<DWORD>(access), static_cast<DWORD>(share),
                                       mode, flagsFor(access, flags));
  if (opened == INVALID_HANDLE_VALUE) return report(L"open");
  adopt(opened, std::move(own), access, share);
  return ZoResult::ok;
}

int ZoFileImp::createTemp(ZoFileName& name, int access, ZoFile::CreationMode mode, int share,
                          int flags) {
  if (mode == ZoFile::kOpenExisting || mode == ZoFile::kTruncateExisting) {
    return report(L"createTemp", ERROR_INVALID_PARAMETER);
  }
  if (const int code = close()) return code;
  const std::wstring stem = zo::temporaryStem(name);
  if (stem.empty()) return report(L"createTemp");
  zo::FreshFile fresh = zo::createFresh(stem, zo::temporaryEnding(name), static_cast<DWORD>(access),
                                        static_cast<DWORD>(share), flagsFor(access, flags));
  if (!fresh.file) return report(L"createTemp");
  ZoFileName made(fresh.name);
  adopt(fresh.file.release(), made.deepCopy(), access, share);
  fresh.isOurs = false;
  name = std::move(made);
  return ZoResult::ok;
}

bool ZoFileImp::isOpen() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }

int ZoFileImp::close() {
  HANDLE closed = std::exchange(handle_, INVALID_HANDLE_VALUE);
  if (closed == INVALID_HANDLE_VALUE || zo::fileApi().close(closed)) return ZoResult::ok;
  return report(L"close");
}

unsigned int ZoFileImp::read(void* buffer, unsigned int count) {
  const std::scoped_lock lock(mutex_);
  DWORD done = 0;
  if (!mayUse(L"read")) return 0;
  if (!buffer && count > 0) report(L"read", ERROR_INVALID_PARAMETER);
  if (!buffer) return 0;
  if (zo::fileApi().read(handle_, buffer, count, done)) return done;
  report(L"read");
  return 0;
}

unsigned int ZoFileImp::write(const void* data, unsigned int count) {
  const std::scoped_lock lock(mutex_);
  DWORD done = 0;
  if (!mayUse(L"write")) return 0;
  if (!data && count > 0) report(L"write", ERROR_INVALID_PARAMETER);
  if (!data) return 0;
  if (zo::fileApi().write(handle_, data, count, done)) {
    if (done == 0 && count > 0) report(L"write", ERROR_DISK_FULL);
    return done;
  }
  report(L"write");
  return 0;
}

std::int64_t ZoFileImp::seek(std::int64_t offset, ZoFile::MoveMethod method) {
  const std::scoped_lock lock(mutex_);
  if (!mayUse(L"seek")) return -1;
  std::int64_t position = -1;
  if (zo::fileApi().seek(handle_, offset, method, position)) return position;
  report(L"seek");
  return -1;
}

std::int64_t ZoFileImp::size() {
  if (!mayUse(L"size")) return -1;
  std::int64_t bytes = -1;
  if (zo::fileApi().size(handle_, bytes)) return bytes;
  report(L"size");
  return -1;
}

int ZoFileImp::setEndOfFile() {
  const std::scoped_lock lock(mutex_);
  if (!mayUse(L"setEndOfFile")) return ZoResult::refused;
  return zo::fileApi().setEnd(handle_) ? ZoResult::ok : report(L"setEndOfFile");
}

int ZoFileImp::flush() {
  if (!mayUse(L"flush")) return ZoResult::refused;
  return zo::fileApi().flush(handle_) ? ZoResult::ok : report(L"flush");
}

int ZoFileImp::lockRange(std::int64_t start, std::int64_t length) {
  return lockOrUnlock(true, start, length, L"lockRange");
}

int ZoFileImp::unlockRange(std::int64_t start, std::int64_t length) {
  return lockOrUnlock(false, start, length, L"unlockRange");
}

int ZoFileImp::lockOrUnlock(bool lock, std::int64_t start, std::int64_t length,
                            const wchar_t* operation) {
  if (!mayUse(operation)) return ZoResult::refused;
  if (start < 0) return report(operation, ERROR_INVALID_PARAMETER);
  const auto from = static_cast<std::uint64_t>(start);
  const auto bytes = static_cast<std::uint64_t>(length);
  zo::FileApi& api = zo::fileApi();
  const bool done = lock ? api.lock(handle_, from, bytes) : api.unlock(handle_, from, bytes);
  return done ? ZoResult::ok : report(operation);
}

const ZoFileName& ZoFileImp::name() const noexcept { return name_; }
unsigned int ZoFileImp::accessMode() const noexcept { return access_; }
unsigned int ZoFileImp::shareMode() const noexcept { return share_; }

unsigned int ZoFileImp::attributes() {
  BY_HANDLE_FILE_INFORMATION information;
  if (!mayUse(L"attributes")) return 0;
  if (zo::fileApi().information(handle_, information)) return information.dwFileAttributes;
  report(L"attributes");
  return 0;
}

FILETIME ZoFileImp::time(unsigned int which, const wchar_t* operation) {
  FILETIME time{};
  if (!mayUse(operation)) return time;
  const auto onlyFor = [&](unsigned int one) { return which == one ? &time : nullptr; };
  if (zo::fileApi().times(handle_, onlyFor(kCreated), onlyFor(kAccessed), onlyFor(kWritten)))
    return time;
  report(operation);
  return {};
}

int ZoFileImp::setTime(FILETIME time, unsigned int which, const wchar_t* operation) {
  const std::scoped_lock lock(mutex_);
  if (!mayUse(operation)) return ZoResult::refused;
  const auto onlyFor = [&](unsigned int one) { return which == one ? &time : nullptr; };
  return zo::fileApi().setTimes(handle_, onlyFor(kCreated), onlyFor(kAccessed), onlyFor(kWritten))
             ? ZoResult::ok
             : report(operation);
}

FILETIME ZoFileImp::creationTime() { return time(kCreated, L"creationTime"); }
FILETIME ZoFileImp::lastAccessTime() { return time(kAccessed, L"lastAccessTime"); }
FILETIME ZoFileImp::lastWriteTime() { return time(kWritten, L"lastWriteTime"); }

int ZoFileImp::setCreationTime(FILETIME time) {
  return setTime(time, kCreated, L"setCreationTime");
}

int ZoFileImp::setLastAccessTime(FILETIME time) {
  return setTime(time, kAccessed, L"setLastAccessTime");
}

int ZoFileImp::setLastWriteTime(FILETIME time) {
  return setTime(time, kWritten, L"setLastWriteTime");
}

void ZoFileImp::cancel() { static_cast<void>(close()); }
bool ZoFileImp::opensFiles() const noexcept { return true; }

void* ZoFileImp::handle(bool give) {
  return give ? std::exchange(handle_, INVALID_HANDLE_VALUE) : handle_;
}

// ---- Buffers above the file ----

namespace zo {

FileBuffer::FileBuffer(ZoFileImp& file) noexcept : file_(&file), next_(file.buffers_) {
  file.buffers_ = this;
}

FileBuffer::~FileBuffer() {
  if (!file_) return;
  FileBuffer** link = &file_->buffers_;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

void FileBuffer::lose() noexcept { file_->hasLost_ = true; }

}  // namespace zo

int ZoFileImp::settleBuffers() noexcept {
  for (zo::FileBuffer* buffer = buffers_; buffer; buffer = buffer->next_) buffer->settle(false);
  return hasLost_ ? ZoResult::refused : ZoResult::ok;
}

int ZoFileImp::releaseBuffers() noexcept {
  for (zo::FileBuffer* buffer = buffers_; buffer; buffer = buffer->next_) buffer->settle(true);
  const int result = hasLost_ ? ZoResult::refused : ZoResult::ok;
  dropBuffers();
  return result;
}

void ZoFileImp::dropBuffers() noexcept {
  for (; buffers_; buffers_ = buffers_->next_) {
    buffers_->drop();
    buffers_->file_ = nullptr;
  }
  hasLost_ = false;
}
