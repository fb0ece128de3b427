#include <windows.h>
#include <zo/files/file_imp.h>
#include <zo/names/member_name.h>
#include <zo/results.h>

#include <memory>

#include "files/open_member.h"

namespace {

// An object without an implementation answers like a closed file.
ZoFileImp& orNone(ZoFileImp* imp) {
  static ZoFileImp none;
  return imp ? *imp : none;
}

// The implementation, once what lies in buffers above it has been handed over; null when that
// failed.
ZoFileImp* settled(ZoFileImp* imp) {
  ZoFileImp& file = orNone(imp);
  return file.settleBuffers() == ZoResult::ok ? &file : nullptr;
}

// For an implementation that is to be destroyed.
void destroy(ZoFileImp* imp) noexcept {
  if (imp) imp->releaseBuffers();
  delete imp;
}

}  // namespace

ZoFile::ZoFile() : imp_(new ZoFileImp) {}
ZoFile::ZoFile(void* handle) : imp_(new ZoFileImp(handle)) {}
ZoFile::ZoFile(ZoFileImp* imp) : imp_(imp) {}
ZoFile::ZoFile(const ZoFile& other) : imp_(settled(other.imp_) ? other.imp_->clone() : nullptr) {}
ZoFile::ZoFile(const ZoFile& other, unsigned int access)
    : imp_(settled(other.imp_) ? other.imp_->cloneFor(access) : nullptr) {}
ZoFile::~ZoFile() { destroy(imp_); }

ZoFile& ZoFile::operator=(const ZoFile& other) {
  if (this != &other) ZoFile(other).swap(*this);
  return *this;
}

ZoFileImp* ZoFile::getImpObj() {
  if (!imp_) imp_ = new ZoFileImp;
  return imp_;
}

int ZoFile::setImpObj(ZoFileImp* imp) {
  if (imp != imp_) destroy(std::exchange(imp_, imp));
  return ZoResult::ok;
}

// What was not closed is not made effective by opening another file.
int ZoFile::makeReady() {
  if (!imp_ || imp_->opensFiles()) return close();
  cancel();
  return setImpObj(new ZoFileImp);
}

int ZoFile::open(const ZoFileName& name, int access, CreationMode mode, int share, int flags) {
  if (const int code = makeReady()) return code;
  if (!zoIsMemberName(name)) return getImpObj()->open(name, access, mode, share, flags);
  std::unique_ptr<ZoFileImp> member;
  if (const int code = zo::openMember(name, access, mode, member)) return code;
  return setImpObj(member.release());
}

int ZoFile::createTemp(ZoFileName& name, int access, CreationMode mode, int share, int flags) {
  if (const int code = makeReady()) return code;
  return getImpObj()->createTemp(name, access, mode, share, flags);
}

bool ZoFile::isOpen() const noexcept { return imp_ && imp_->isOpen(); }

// What has lost bytes must not be made effective.
int ZoFile::close() {
  ZoFileImp& file = orNone(imp_);
  if (file.releaseBuffers() == ZoResult::ok) return file.close();
  file.cancel();
  return ZoResult::refused;
}

void ZoFile::cancel() {
  if (!imp_) return;
  static_cast<void>(imp_->releaseBuffers());
  imp_->cancel();
}

unsigned int ZoFile::read(void* buffer, unsigned int count) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->read(buffer, count) : 0;
}

unsigned int ZoFile::write(const void* data, unsigned int count) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->write(data, count) : 0;
}

std::int64_t ZoFile::seek(std::int64_t offset, MoveMethod method) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->seek(offset, method) : -1;
}

std::int64_t ZoFile::currentPos() const {
  ZoFileImp* const file = settled(imp_);
  return file ? file->seek(0, kCurrent) : -1;
}
std::int64_t ZoFile::size() const {
  ZoFileImp* const file = settled(imp_);
  return file ? file->size() : -1;
}
int ZoFile::setEndOfFile() {
  ZoFileImp* const file = settled(imp_);
  return file ? file->setEndOfFile() : ZoResult::refused;
}
int ZoFile::flush() {
  ZoFileImp* const file = settled(imp_);
  return file ? file->flush() : ZoResult::refused;
}

int ZoFile::lockRange(std::int64_t start, std::int64_t length) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->lockRange(start, length) : ZoResult::refused;
}

int ZoFile::unlockRange(std::int64_t start, std::int64_t length) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->unlockRange(start, length) : ZoResult::refused;
}

const ZoFileName& ZoFile::name() const { return orNone(imp_).name(); }
unsigned int ZoFile::accessMode() const noexcept { return orNone(imp_).accessMode(); }
unsigned int ZoFile::shareMode() const noexcept { return orNone(imp_).shareMode(); }
unsigned int ZoFile::attributes() const { return orNone(imp_).attributes(); }
FILETIME ZoFile::creationTime() const { return orNone(imp_).creationTime(); }
FILETIME ZoFile::lastAccessTime() const { return orNone(imp_).lastAccessTime(); }
FILETIME ZoFile::lastWriteTime() const { return orNone(imp_).lastWriteTime(); }

int ZoFile::setCreationTime(FILETIME time) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->setCreationTime(time) : ZoResult::refused;
}

int ZoFile::setLastAccessTime(FILETIME time) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->setLastAccessTime(time) : ZoResult::refused;
}

int ZoFile::setLastWriteTime(FILETIME time) {
  ZoFileImp* const file = settled(imp_);
  return file ? file->setLastWriteTime(time) : ZoResult::refused;
}

std::FILE* ZoFile::getCFileHandle(bool text, bool writable) {
  ZoFileImp* const file = settled(imp_);
  if (!file) return nullptr;
  std::FILE* const stream = file->getCFileHandle(text, writable);
  if (stream) file->releaseBuffers();
  return stream;
}

std::FILE* ZoFile::getCFileHandle(const wchar_t* mode) {
  ZoFileImp* const file = settled(imp_);
  if (!file) return nullptr;
  std::FILE* const stream = file->getCFileHandle(mode);
  if (stream) file->releaseBuffers();
  return stream;
}

void* ZoFile::handle(bool give) {
  ZoFileImp* const file = settled(imp_);
  if (!file) return INVALID_HANDLE_VALUE;
  if (give) file->releaseBuffers();
  return file->handle(give);
}
