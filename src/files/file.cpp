#include <windows.h>
#include <zo/files/file_imp.h>
#include <zo/results.h>

namespace {

const ZoFileName& noName() {
  static const ZoFileName name;
  return name;
}

// The implementation, once what lies in buffers above it has been handed over; null when there is
// none or that failed.
ZoFileImp* settled(ZoFileImp* imp) noexcept {
  return imp && imp->settleBuffers() == ZoResult::ok ? imp : nullptr;
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

int ZoFile::open(const ZoFileName& name, int access, CreationMode mode, int share, int flags) {
  if (const int code = close()) return code;
  return getImpObj()->open(name, access, mode, share, flags);
}

int ZoFile::createTemp(ZoFileName& name, int access, CreationMode mode, int share, int flags) {
  if (const int code = close()) return code;
  return getImpObj()->createTemp(name, access, mode, share, flags);
}

bool ZoFile::isOpen() const noexcept { return imp_ && imp_->isOpen(); }

// What has lost bytes must not be made effective.
int ZoFile::close() {
  if (!imp_) return ZoResult::ok;
  if (imp_->releaseBuffers() == ZoResult::ok) return imp_->close();
  imp_->cancel();
  return ZoResult::refused;
}

void ZoFile::cancel() {
  if (!imp_) return;
  static_cast<void>(imp_->releaseBuffers());
  imp_->cancel();
}

unsigned int ZoFile::read(void* buffer, unsigned int count) {
  return settled(imp_) ? imp_->read(buffer, count) : 0;
}

unsigned int ZoFile::write(const void* data, unsigned int count) {
  return settled(imp_) ? imp_->write(data, count) : 0;
}

std::int64_t ZoFile::seek(std::int64_t offset, MoveMethod method) {
  return settled(imp_) ? imp_->seek(offset, method) : -1;
}

std::int64_t ZoFile::currentPos() const { return settled(imp_) ? imp_->seek(0, kCurrent) : -1; }
std::int64_t ZoFile::size() const { return settled(imp_) ? imp_->size() : -1; }
int ZoFile::setEndOfFile() { return settled(imp_) ? imp_->setEndOfFile() : ZoResult::refused; }
int ZoFile::flush() { return settled(imp_) ? imp_->flush() : ZoResult::refused; }

int ZoFile::lockRange(std::int64_t start, std::int64_t length) {
  return settled(imp_) ? imp_->lockRange(start, length) : ZoResult::refused;
}

int ZoFile::unlockRange(std::int64_t start, std::int64_t length) {
  return settled(imp_) ? imp_->unlockRange(start, length) : ZoResult::refused;
}

const ZoFileName& ZoFile::name() const { return imp_ ? imp_->name() : noName(); }
unsigned int ZoFile::accessMode() const noexcept { return imp_ ? imp_->accessMode() : 0; }
unsigned int ZoFile::shareMode() const noexcept { return imp_ ? imp_->shareMode() : 0; }
unsigned int ZoFile::attributes() const { return imp_ ? imp_->attributes() : 0; }
FILETIME ZoFile::creationTime() const { return imp_ ? imp_->creationTime() : FILETIME{}; }
FILETIME ZoFile::lastAccessTime() const { return imp_ ? imp_->lastAccessTime() : FILETIME{}; }
FILETIME ZoFile::lastWriteTime() const { return imp_ ? imp_->lastWriteTime() : FILETIME{}; }

int ZoFile::setCreationTime(FILETIME time) {
  return settled(imp_) ? imp_->setCreationTime(time) : ZoResult::refused;
}

int ZoFile::setLastAccessTime(FILETIME time) {
  return settled(imp_) ? imp_->setLastAccessTime(time) : ZoResult::refused;
}

int ZoFile::setLastWriteTime(FILETIME time) {
  return settled(imp_) ? imp_->setLastWriteTime(time) : ZoResult::refused;
}

std::FILE* ZoFile::getCFileHandle(bool text, bool writable) {
  if (!settled(imp_)) return nullptr;
  std::FILE* const stream = imp_->getCFileHandle(text, writable);
  if (stream) imp_->releaseBuffers();
  return stream;
}

std::FILE* ZoFile::getCFileHandle(const wchar_t* mode) {
  if (!settled(imp_)) return nullptr;
  std::FILE* const stream = imp_->getCFileHandle(mode);
  if (stream) imp_->releaseBuffers();
  return stream;
}

void* ZoFile::handle(bool give) {
  if (!settled(imp_)) return INVALID_HANDLE_VALUE;
  if (give) imp_->releaseBuffers();
  return imp_->handle(give);
}
