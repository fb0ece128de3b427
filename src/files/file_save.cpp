#include <windows.h>
#include <zo/files/file_imp.h>
#include <zo/files/file_save.h>

#include <cstddef>

#include "files/fresh_file.h"
#include "files/keep_reason.h"
#include "files/replace_file.h"

// A file that remembers whether all went well: what failed must not become the target, even if the
// caller did not look.
class ZoFileSave::Imp : public ZoFileImp {
 public:
  explicit Imp(zo::FreshFile& fresh) : ZoFileImp(fresh.file.release()) {
    setModes(ZoFileName(fresh.name), static_cast<unsigned int>(ZoFile::kReadWrite),
             ZoFile::kShareRead);
  }

  unsigned int write(const void* data, unsigned int count) override {
    const auto* const begin = static_cast<const std::byte*>(data);
    unsigned int done = 0;
    // What came short is asked for again: only then it is known whether it failed, and why.
    while (done < count) {
      const unsigned int moved = ZoFileImp::write(begin + done, count - done);
      if (moved == 0) {
        keep();
        break;
      }
      done += moved;
    }
    return done;
  }
  std::int64_t seek(std::int64_t offset, ZoFile::MoveMethod method) override {
    const std::int64_t position = ZoFileImp::seek(offset, method);
    if (position < 0 && isOpen()) keep();
    return position;
  }
  int setEndOfFile() override { return kept(ZoFileImp::setEndOfFile()); }
  int flush() override { return kept(ZoFileImp::flush()); }
  int close() override { return kept(ZoFileImp::close()); }
  void cancel() override {
    SetLastError(ERROR_CANCELLED);
    keep();
    ZoFileImp::cancel();
  }
  // The platform's error of what failed first; 0 when nothing did.
  [[nodiscard]] DWORD failure() const { return failure_; }

 private:
  void keep() {
    const DWORD error = GetLastError();
    if (failure_ == ERROR_SUCCESS) failure_ = error ? error : ERROR_WRITE_FAULT;
  }
  int kept(int code) {
    if (code != ZoResult::ok) keep();
    return code;
  }

  DWORD failure_ = ERROR_SUCCESS;
};

ZoFileSave::ZoFileSave() = default;
ZoFileSave::~ZoFileSave() { cancel(); }

int ZoFileSave::fail() {
  zo::keepReason(L"save");
  cancel();
  return ZoResult::refused;
}

int ZoFileSave::open(const ZoFileName& target) {
  cancel();
  if (target.isURL()) return zo::keepReason(L"save", ERROR_NOT_SUPPORTED, ZoResult::invalid);
  auto fresh = std::make_unique<zo::FreshFile>(zo::createFresh(
      zo::stemBeside(target), zo::kEndingBeside, static_cast<DWORD>(ZoFile::kReadWrite),
      ZoFile::kShareRead, ZoFile::kRandomAccess));
  if (!fresh->file) return zo::keepReason(L"save");
  imp_ = new Imp(*fresh);
  file_.setImpObj(imp_);
  target_ = target;
  beside_ = std::move(fresh);
  return ZoResult::ok;
}

int ZoFileSave::commit(bool toDisk) {
  const bool isOurs = beside_ && file_.getImpObj() == imp_;
  if (isOurs) imp_->settleBuffers();  // a failure is kept
  if (const DWORD failure = isOurs ? imp_->failure() : ERROR_INVALID_HANDLE) {
    SetLastError(failure);
    return fail();
  }
  // A stream may have closed it.
  if (!file_.isOpen() &&
      file_.open(ZoFileName(beside_->name), ZoFile::kWrite, ZoFile::kOpenExisting))
    return fail();
  if ((toDisk && file_.flush()) || file_.close()) return fail();
  if (!zo::putInPlace(*beside_, zo::SystemPath(target_.fullName()), false)) return fail();
  beside_.reset();
  return ZoResult::ok;
}

void ZoFileSave::cancel() {
  if (file_.isOpen()) file_.getImpObj()->dropBuffers();
  file_.setImpObj(nullptr);
  imp_ = nullptr;
  beside_.reset();
}
