#include <windows.h>
#include <zo/files/file_imp.h>
#include <zo/results.h>

namespace {

const ZoFileName& noName() {
  static const ZoFileName name;
  return name;
}

}  // namespace

ZoFile::ZoFile() : imp_(new ZoFileImp) {}
ZoFile::ZoFile(void* handle) : imp_(new ZoFileImp(handle)) {}
ZoFile::ZoFile(ZoFileImp* imp) : imp_(imp) {}
ZoFile::ZoFile(const ZoFile& other) : imp_(other.imp_ ? other.imp_->clone() : nullptr) {}
ZoFile::ZoFile(const ZoFile& other, unsigned int access)
    : imp_(other.imp_ ? other.imp_->cloneFor(access) : nullptr) {}
ZoFile::~ZoFile() { delete imp_; }

ZoFile& ZoFile::operator=(const ZoFile& other) {
  if (this != &other) ZoFile(other).swap(*this);
  return *this;
}

ZoFileImp* ZoFile::getImpObj() {
  if (!imp_) imp_ = new ZoFileImp;
  return imp_;
}

int ZoFile::setImpObj(ZoFileImp* imp) {
  if (imp != imp_) delete std::exchange(imp_, imp);
  return ZoResult::ok;
}

int ZoFile::open(const ZoFileName& name, int access, CreationMode mode, int share, int flags) {
  return getImpObj()->open(name, access, mode, share, flags);
}

int ZoFile::createTemp(ZoFileName& name, int access, CreationMode mode, int share, int flags) {
  return getImpObj()->createTemp(name, access, mode, share, flags);
}

bool ZoFile::isOpen() const noexcept { return imp_ && imp_->isOpen(); }
int ZoFile::close() { return imp_ ? imp_->close() : ZoResult::ok; }
void ZoFile::cancel() {
  if (imp_) imp_->cancel();
}

unsigned int ZoFile::read(void* buffer, unsigned int count) {
  return imp_ ? imp_->read(buffer, count) : 0;
}

unsigned int ZoFile::write(const void* data, unsigned int count) {
  return imp_ ? imp_->write(data, count) : 0;
}

std::int64_t ZoFile::seek(std::int64_t offset, MoveMethod method) {
  return imp_ ? imp_->seek(offset, method) : -1;
}

std::int64_t ZoFile::currentPos() const { return imp_ ? imp_->seek(0, kCurrent) : -1; }
std::int64_t ZoFile::size() const { return imp_ ? imp_->size() : -1; }
int ZoFile::setEndOfFile() { return imp_ ? imp_->setEndOfFile() : ZoResult::refused; }
int ZoFile::flush() { return imp_ ? imp_->flush() : ZoResult::refused; }

int ZoFile::lockRange(std::int64_t start, std::int64_t length) {
  return imp_ ? imp_->lockRange(start, length) : ZoResult::refused;
}

int ZoFile::unlockRange(std::int64_t start, std::int64_t length) {
  return imp_ ? imp_->unlockRange(start, length) : ZoResult::refused;
}

const ZoFileName& ZoFile::name() const { return imp_ ? imp_->name() : noName(); }
unsigned int ZoFile::accessMode() const noexcept { return imp_ ? imp_->accessMode() : 0; }
unsigned int ZoFile::shareMode() const noexcept { return imp_ ? imp_->shareMode() : 0; }
unsigned int ZoFile::attributes() const { return imp_ ? imp_->attributes() : 0; }
FILETIME ZoFile::creationTime() const { return imp_ ? imp_->creationTime() : FILETIME{}; }
FILETIME ZoFile::lastAccessTime() const { return imp_ ? imp_->lastAccessTime() : FILETIME{}; }
FILETIME ZoFile::lastWriteTime() const { return imp_ ? imp_->lastWriteTime() : FILETIME{}; }

int ZoFile::setCreationTime(FILETIME time) {
  return imp_ ? imp_->setCreationTime(time) : ZoResult::refused;
}

int ZoFile::setLastAccessTime(FILETIME time) {
  return imp_ ? imp_->setLastAccessTime(time) : ZoResult::refused;
}

int ZoFile::setLastWriteTime(FILETIME time) {
  return imp_ ? imp_->setLastWriteTime(time) : ZoResult::refused;
}

std::FILE* ZoFile::getCFileHandle(bool text, bool writable) {
  return imp_ ? imp_->getCFileHandle(text, writable) : nullptr;
}

std::FILE* ZoFile::getCFileHandle(const wchar_t* mode) {
  return imp_ ? imp_->getCFileHandle(mode) : nullptr;
}

void* ZoFile::handle(bool give) { return imp_ ? imp_->handle(give) : INVALID_HANDLE_VALUE; }
