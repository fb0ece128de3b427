#include <zo/library/lib_file.h>

#include <utility>

#include "files/keep_reason.h"
#include "library/member.h"

using zo::FilesLock;
using zo::LibraryMember;
using zo::MemberTimes;

namespace {

constexpr unsigned int kNormalAttributes = 0x80;

bool isUsable(const std::shared_ptr<LibraryMember>& member) { return member && member->isUsable(); }

// Uses the member under the lock of all libraries; a closed one has that answer, and a reason.
template <class Answer, class Use>
Answer with(const std::shared_ptr<LibraryMember>& member, const wchar_t* operation, Answer closed,
            const Use& use) {
  const FilesLock lock;
  if (isUsable(member)) return use(*member);
  zo::keepReason(operation, ERROR_INVALID_HANDLE);
  return closed;
}

int setOneTime(const std::shared_ptr<LibraryMember>& member, FILETIME MemberTimes::* which,
               FILETIME time) {
  return with(member, L"setTimes", int{ZoResult::refused}, [&](LibraryMember& file) {
    MemberTimes times = file.times();
    times.*which = time;
    return file.setTimes(times);
  });
}

}  // namespace

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
  const bool onlyReads = !(access & static_cast<unsigned int>(ZoFile::kWrite));
  return new ZoLibFile(member_ && onlyReads ? member_->again() : nullptr);
}

bool ZoLibFile::isOpen() const noexcept {
  const FilesLock lock;
  return isUsable(member_);
}

int ZoLibFile::close() {
  const FilesLock lock;
  if (!member_) return ZoResult::ok;
  const auto member = std::exchange(member_, nullptr);
  if (member.use_count() == 1) return member->finish();
  return member->isDropped() ? ZoResult::refused : ZoResult::ok;
}

unsigned int ZoLibFile::read(void* buffer, unsigned int count) {
  return with(member_, L"read", 0U,
              [&](LibraryMember& file) { return buffer ? file.read(buffer, count) : 0; });
}

bool ZoLibFile::opensFiles() const noexcept { return false; }

unsigned int ZoLibFile::write(const void* data, unsigned int count) {
  return with(member_, L"write", 0U,
              [&](LibraryMember& file) { return data ? file.write(data, count) : 0; });
}

std::int64_t ZoLibFile::seek(std::int64_t offset, ZoFile::MoveMethod method) {
  return with(member_, L"seek", std::int64_t{-1},
              [&](LibraryMember& file) { return file.seek(offset, method); });
}

std::int64_t ZoLibFile::size() {
  return with(member_, L"size", std::int64_t{-1}, [](LibraryMember& file) { return file.size(); });
}

int ZoLibFile::setEndOfFile() {
  return with(member_, L"setEndOfFile", int{ZoResult::refused},
              [](LibraryMember& file) { return file.setEndOfFile(); });
}

// What is read is where it belongs, and what is written gets there when it is closed.
int ZoLibFile::flush() {
  return with(member_, L"flush", int{ZoResult::refused},
              [](LibraryMember&) { return int{ZoResult::ok}; });
}

unsigned int ZoLibFile::attributes() {
  return with(member_, L"attributes", 0U, [](LibraryMember&) { return kNormalAttributes; });
}

// ---- Times ----

FILETIME ZoLibFile::creationTime() {
  return with(member_, L"times", FILETIME{},
              [](LibraryMember& file) { return file.times().created; });
}

FILETIME ZoLibFile::lastAccessTime() {
  return with(member_, L"times", FILETIME{},
              [](LibraryMember& file) { return file.times().accessed; });
}

FILETIME ZoLibFile::lastWriteTime() {
  return with(member_, L"times", FILETIME{},
              [](LibraryMember& file) { return file.times().written; });
}

int ZoLibFile::setCreationTime(FILETIME time) {
  return setOneTime(member_, &MemberTimes::created, time);
}

int ZoLibFile::setLastAccessTime(FILETIME time) {
  return setOneTime(member_, &MemberTimes::accessed, time);
}

int ZoLibFile::setLastWriteTime(FILETIME time) {
  return setOneTime(member_, &MemberTimes::written, time);
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
