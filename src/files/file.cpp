#include <windows.h>
#include <zo/files/file_imp.h>
#include <zo/results.h>

namespace {

// An object without an implementation answers like a closed file.
ZoFileImp& orNone(ZoFileImp* imp) {
  static ZoFileImp none;
  return imp ? *imp : none;
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
int ZoFile::close() { return orNone(imp_).close(); }

unsigned int ZoFile::read(void* buffer, unsigned int count) {
  return orNone(imp_).read(buffer, count);
}

unsigned int ZoFile::write(const void* data, unsigned int count) {
  return orNone(imp_).write(data, count);
}

std::int64_t ZoFile::seek(std::int64_t offset, MoveMethod method) {
  return orNone(imp_).seek(offset, method);
}

std::int64_t ZoFile::currentPos() const { return orNone(imp_).seek(0, kCurrent); }
std::int64_t ZoFile::size() const { return orNone(imp_).size(); }
int ZoFile::setEndOfFile() { return orNone(imp_).setEndOfFile(); }
int ZoFile::flush() { return orNone(imp_).flush(); }

int ZoFile::lockRange(std::int64_t start, std::int64_t length) {
  return orNone(imp_).lockRange(start, length);
}

int ZoFile::unlockRange(std::int64_t start, std::int64_t length) {
  return orNone(imp_).unlockRange(start, length);
}

const ZoFileName& ZoFile::name() const { return orNone(imp_).name(); }
unsigned int ZoFile::accessMode() const noexcept { return orNone(imp_).accessMode(); }
unsigned int ZoFile::shareMode() const noexcept { return orNone(imp_).shareMode(); }
unsigned int ZoFile::attributes() const { return orNone(imp_).attributes(); }
FILETIME ZoFile::creationTime() const { return orNone(imp_).creationTime(); }
FILETIME ZoFile::lastAccessTime() const { return orNone(imp_).lastAccessTime(); }
FILETIME ZoFile::lastWriteTime() const { return orNone(imp_).lastWriteTime(); }

int ZoFile::setCreationTime(FILETIME time) { return orNone(imp_).setCreationTime(time); }

int ZoFile::setLastAccessTime(FILETIME time) { return orNone(imp_).setLastAccessTime(time); }

int ZoFile::setLastWriteTime(FILETIME time) { return orNone(imp_).setLastWriteTime(time); }

std::FILE* ZoFile::getCFileHandle(bool text, bool writable) {
  return orNone(imp_).getCFileHandle(text, writable);
}

std::FILE* ZoFile::getCFileHandle(const wchar_t* mode) { return orNone(imp_).getCFileHandle(mode); }

void* ZoFile::handle(bool give) { return orNone(imp_).handle(give); }
