#include <zo/library/lib_file.h>

#include <utility>

#include "library/member.h"

using zo::FilesLock;
using zo::MemberTimes;

namespace {

constexpr unsigned int kNormalAttributes = 0x80;

}  // namespace

// ---- Opening: ZoLibrary's part ----

int ZoLibrary::getFile(ZoFile& file, const ZoFileName& member, int access, compMode mode) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  int code = ZoResult::ok;
  auto opened = access & ZoFile::kWrite ? zo::LibraryMember::openToWrite(core_, member, mode, code)
                                        : zo::LibraryMember::openToRead(core_, member, code);
  return opened ? file.setImpObj(new ZoLibFile(std::move(opened))) : code;
}

int ZoLibrary::getCFile(std::FILE** stream, const ZoFileName& member, int access, compMode mode) {
  if (!stream) return ZoResult::refused;
  *stream = nullptr;
  if (access & ZoFile::kWrite) return ZoResult::refused;
  ZoFile file;
  if (const int code = getFile(file, member, access, mode)) return code;
  *stream = file.getCFileHandle(false, false);
  return *stream ? ZoResult::ok : ZoResult::refused;
}

// ---- The file object ----

ZoLibFile::ZoLibFile(std::shared_ptr<zo::LibraryMember> member) : member_(std::move(member)) {
  if (!member_) return;
  const int access = member_->isWriting() ? ZoFile::kReadWrite : ZoFile::kRead;
  setModes(member_->name(), static_cast<unsigned int>(access), ZoFile::kShareRead);
}

ZoLibFile::ZoLibFile(const ZoLibFile& other) : ZoLibFile(other.member_) {}

ZoLibFile::~ZoLibFile() {
  const FilesLock lock;
  member_.reset();
}

void ZoLibFile::cancel() {
  const FilesLock lock;
  if (const auto member = std::exchange(member_, nullptr)) member->drop();
}

ZoFileImp* ZoLibFile::clone() const { return new ZoLibFile(*this); }

ZoFileImp* ZoLibFile::cloneFor(unsigned int access) const {
  const FilesLock lock;
  const bool onlyReads = !(access & static_cast<unsigned int>(ZoFile::kWrite));
  return new ZoLibFile(member_ && onlyReads ? member_->again() : nullptr);
}

bool ZoLibFile::isOpen() const noexcept {
  const FilesLock lock;
  return member_ && member_->isUsable();
}

int ZoLibFile::close() {
  const FilesLock lock;
  if (!member_) return ZoResult::ok;
  const auto member = std::exchange(member_, nullptr);
  if (member.use_count() == 1) return member->finish();
  return member->isDropped() ? ZoResult::refused : ZoResult::ok;
}

unsigned int ZoLibFile::read(void* buffer, unsigned int count) {
  const FilesLock lock;
  return isOpen() && buffer ? member_->read(buffer, count) : 0;
}

bool ZoLibFile::opensFiles() const noexcept { return false; }

unsigned int ZoLibFile::write(const void* data, unsigned int count) {
  const FilesLock lock;
  return isOpen() && data ? member_->write(data, count) : 0;
}

std::int64_t ZoLibFile::seek(std::int64_t offset, ZoFile::MoveMethod method) {
  const FilesLock lock;
  return isOpen() ? member_->seek(offset, method) : -1;
}

std::int64_t ZoLibFile::size() {
  const FilesLock lock;
  return isOpen() ? member_->size() : -1;
}

int ZoLibFile::setEndOfFile() {
  const FilesLock lock;
  return isOpen() ? member_->setEndOfFile() : ZoResult::refused;
}

// What is read is where it belongs, and what is written gets there when it is closed.
int ZoLibFile::flush() { return isOpen() ? ZoResult::ok : ZoResult::refused; }

unsigned int ZoLibFile::attributes() { return isOpen() ? kNormalAttributes : 0; }

// ---- Times ----

FILETIME ZoLibFile::creationTime() {
  const FilesLock lock;
  return isOpen() ? member_->times().created : FILETIME{};
}

FILETIME ZoLibFile::lastAccessTime() {
  const FilesLock lock;
  return isOpen() ? member_->times().accessed : FILETIME{};
}

FILETIME ZoLibFile::lastWriteTime() {
  const FilesLock lock;
  return isOpen() ? member_->times().written : FILETIME{};
}

int ZoLibFile::setCreationTime(FILETIME time) {
  const FilesLock lock;
  if (!isOpen()) return ZoResult::refused;
  MemberTimes times = member_->times();
  times.created = time;
  return member_->setTimes(times);
}

int ZoLibFile::setLastAccessTime(FILETIME time) {
  const FilesLock lock;
  if (!isOpen()) return ZoResult::refused;
  MemberTimes times = member_->times();
  times.accessed = time;
  return member_->setTimes(times);
}

int ZoLibFile::setLastWriteTime(FILETIME time) {
  const FilesLock lock;
  if (!isOpen()) return ZoResult::refused;
  MemberTimes times = member_->times();
  times.written = time;
  return member_->setTimes(times);
}

// ---- Streams ----

std::FILE* ZoLibFile::getCFileHandle(bool text, bool writable) {
  return writable ? nullptr : getCFileHandle(text ? L"rt" : L"rb");
}

std::FILE* ZoLibFile::getCFileHandle(const wchar_t* mode) {
  const FilesLock lock;
  const std::wstring_view wanted = mode ? mode : L"";
  if (!isOpen() || wanted.empty() || wanted[0] != L'r' ||
      wanted.find(L'+') != std::wstring_view::npos) {
    return nullptr;
  }
  ZoFile copy;
  if (!member_->copyTo(copy)) return nullptr;
  std::FILE* const stream = copy.getCFileHandle(mode);
  if (stream) member_.reset();
  return stream;
}
