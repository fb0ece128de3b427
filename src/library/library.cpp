// The public class: each operation under the process-wide lock.
#include <zo/library/library.h>
#include <zo/text/containers/sequence.h>

#include <algorithm>
#include <utility>

#include "library/file_source.h"
#include "library/library_core.h"

using zo::FilesLock;
using zo::LibraryCore;

ZoLibrary::ZoLibrary() : core_(std::make_shared<LibraryCore>()) {}
ZoLibrary::ZoLibrary(ZoLibrary&& other) noexcept = default;

ZoLibrary& ZoLibrary::operator=(ZoLibrary&& other) noexcept {
  core_.swap(other.core_);
  return *this;
}

// A batch that nobody ended is not complete.
ZoLibrary::~ZoLibrary() {
  if (!core_) return;
  const FilesLock lock;
  static_cast<void>(core_->cancelBatch());
  static_cast<void>(core_->close());
}

int ZoLibrary::open(const ZoFileName& name, int access, ZoFile::CreationMode mode,
                    unsigned int lockTimeOut) {
  const FilesLock lock;
  if (!core_) core_ = std::make_shared<LibraryCore>();
  return core_->open(name, access, mode, lockTimeOut);
}

int ZoLibrary::close() {
  if (!core_) return ZoResult::ok;
  const FilesLock lock;
  return core_->close();
}

bool ZoLibrary::isOpen() const noexcept {
  const FilesLock lock;
  return core_ && core_->isOpen();
}

bool ZoLibrary::isWritable() const noexcept {
  const FilesLock lock;
  return isOpen() && core_->writable;
}

// Names share their parts, and these are not for several threads.
ZoFileName ZoLibrary::name() const {
  const FilesLock lock;
  return core_ ? core_->name.deepCopy() : ZoFileName();
}

// ---- Members ----

int ZoLibrary::addFile(const ZoFileName& source, const ZoFileName& member, bool replace,
                       compMode mode, int level) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  if (const int code = core_->mayWrite(&member)) return code;
  ZoFile file;
  if (file.open(source, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                ZoFile::kSequential)) {
    return ZoResult::refused;
  }
  return addFile(file, member, replace, mode, level);
}

int ZoLibrary::addFile(ZoFile& source, const ZoFileName& member, bool replace, compMode mode,
                       int level) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  if (const int code = core_->mayWrite(&member)) return code;
  zo::FileSource bytes(source);
  zo::MemberTimes times;
  if (!bytes.isReadable() || !zo::timesOf(source, times)) return ZoResult::refused;
  return core_->add(bytes, member, times, replace, mode, level);
}

int ZoLibrary::beginBatch() {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->beginBatch();
}

int ZoLibrary::endBatch() {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  if (const int code = core_->mayWrite()) return code;
  return core_->endBatch();
}

int ZoLibrary::cancelBatch() {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->cancelBatch();
}

int ZoLibrary::extractFile(const ZoFileName& member, const ZoFileName& target) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->extract(member, target);
}

int ZoLibrary::renameFile(const ZoFileName& member, const ZoFileName& newName) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->rename(member, newName);
}

int ZoLibrary::deleteFile(const ZoFileName& member, bool physically) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->remove(member, physically);
}

int ZoLibrary::recoverFile(const ZoFileName& member) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->recover(member);
}

int ZoLibrary::recoverFile(const ZoLibEntry& entry) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->recover(entry);
}

// ---- What is there ----

int ZoLibrary::getFileNames(ZoSequence<ZoFileName>& names, bool withDeleted,
                            ZoSequence<FILETIME>* times, ZoSequence<unsigned int>* sizes) {
  int refused = ZoResult::ok;
  const int code = forEachEntry(
      [&](const ZoLibEntry& entry) {
        refused = names.append(entry.name);
        if (!refused && times) refused = times->append(entry.written);
        constexpr std::uint64_t kMost = 0xFFFFFFFF;
        if (!refused && sizes) {
          refused = sizes->append(static_cast<unsigned int>(std::min(entry.size, kMost)));
        }
        return !refused;
      },
      withDeleted);
  return code ? code : refused;
}

int ZoLibrary::forEachEntry(const std::function<bool(const ZoLibEntry&)>& visit, bool withDeleted) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  if (const int code = core_->mayRead()) return code;
  if (const int code = core_->refresh()) return code;
  for (const zo::IndexEntry& entry : core_->index.entries()) {
    if (!withDeleted && !entry.record.isLive()) continue;
    if (!visit(core_->publicEntry(entry))) break;
  }
  return ZoResult::ok;
}

int ZoLibrary::getEntry(const ZoFileName& member, ZoLibEntry& entry) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  if (const int code = core_->mayRead(&member)) return code;
  zo::RawEntry raw;
  if (const int code = core_->find(member, raw)) return code;
  entry = core_->publicEntry(raw);
  return ZoResult::ok;
}

bool ZoLibrary::contains(const ZoFileName& member) {
  if (!core_) return false;
  const FilesLock lock;
  zo::RawEntry raw;
  return !core_->mayRead(&member) && !core_->find(member, raw);
}

// ---- The file as a whole ----

int ZoLibrary::reorganize() {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->reorganize();
}

std::uint64_t ZoLibrary::checkSum() {
  if (!core_) return 0;
  const FilesLock lock;
  return core_->isOpen() && !core_->refreshHeader() ? core_->header.value() : 0;
}

int ZoLibrary::setCheckSum(std::uint64_t value) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->setValue(value);
}

bool ZoLibrary::isLibrary() {
  if (!core_) return false;
  const FilesLock lock;
  return core_->isOpen() && !core_->refreshHeader() && core_->header.hasMagic();
}

std::uint32_t ZoLibrary::counter() {
  if (!core_) return 0;
  const FilesLock lock;
  return core_->isOpen() && !core_->refreshHeader() ? core_->header.counter() : 0;
}

std::uint64_t ZoLibrary::trailingBytes() {
  if (!core_) return 0;
  const FilesLock lock;
  if (!core_->isOpen() || core_->refresh() || core_->isBeingAdded()) return 0;
  const std::uint64_t size = core_->file.size();
  return size > core_->scan.position ? size - core_->scan.position : 0;
}

int ZoLibrary::verify(const ZoLibEntry& entry) {
  if (!core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->verify(entry);
}

int ZoLibrary::salvageInto(ZoLibrary& target,
                           const std::function<bool(const ZoLibEntry&, int code)>& report) {
  if (!core_ || !target.core_) return ZoResult::refused;
  const FilesLock lock;
  return core_->salvageInto(*target.core_, report);
}

// ---- Long calls ----

void ZoLibrary::onProgress(Watcher watcher) {
  const FilesLock lock;
  if (!core_) core_ = std::make_shared<LibraryCore>();
  core_->watcher = std::move(watcher);
}

bool ZoLibrary::wasCancelled() const {
  const FilesLock lock;
  return core_ && core_->cancelled;
}
