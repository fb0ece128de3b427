#include <windows.h>
#include <zo/results.h>
#include <zo/system/sys_obj.h>

#include <atomic>

namespace {

int toResult(unsigned long wait) noexcept {
  if (ZoWait::holds(wait)) return ZoResult::ok;
  return wait == ZoWait::timeOut ? ZoResult::timeOut : ZoResult::refused;
}

// In place of the mutex while the guard has not been made: no handle, and as one refused by waits.
void* const kNotMade = reinterpret_cast<void*>(1);

}  // namespace

ZoSysObj::ZoSysObj() noexcept : guard_{kNotMade, nullptr, nullptr} {}

// What comes first is set last: whoever sees the mutex sees the others. One that cannot be made is
// tried again the next time.
ZoSingleWriterMultiReaderGuard& ZoSysObj::guardMade() const noexcept {
  static SRWLOCK making = SRWLOCK_INIT;
  const std::atomic_ref<void*> mutex(guard_.mutexNoWriter);
  if (mutex.load(std::memory_order_acquire) != kNotMade) return guard_;
  AcquireSRWLockExclusive(&making);
  ZoSingleWriterMultiReaderGuard made;
  if (mutex.load(std::memory_order_relaxed) == kNotMade && zoSWMRGInitialize(&made, nullptr)) {
    guard_.eventNoReaders = made.eventNoReaders;
    guard_.semNumReaders = made.semNumReaders;
    mutex.store(made.mutexNoWriter, std::memory_order_release);
  }
  ReleaseSRWLockExclusive(&making);
  return guard_;
}

ZoSysObj::~ZoSysObj() {
  if (guard_.mutexNoWriter != kNotMade) zoSWMRGDelete(&guard_);
}

void ZoSysObj::onReactor(ZoSysNotice, const ZoVariant&) {}
int ZoSysObj::release(const wchar_t*) { return ZoResult::refused; }
void ZoSysObj::poolRelease(const wchar_t*) {}
int ZoSysObj::timeOut() { return 1000; }

int ZoSysObj::waitToWrite() {
  return toResult(zoSWMRGWaitToWrite(&guardMade(), static_cast<unsigned long>(timeOut())));
}

int ZoSysObj::waitToRead() {
  return toResult(zoSWMRGWaitToRead(&guardMade(), static_cast<unsigned long>(timeOut())));
}

void ZoSysObj::doneWriting() noexcept { zoSWMRGDoneWriting(&guard_); }
void ZoSysObj::doneReading() noexcept { zoSWMRGDoneReading(&guard_); }

// One line per type that passes through.
#define ZO_PASS_THROUGH(Type)                       \
  Type ZoSysObj::doneWriting(Type value) noexcept { \
    doneWriting();                                  \
    return value;                                   \
  }                                                 \
  Type ZoSysObj::doneReading(Type value) noexcept { \
    doneReading();                                  \
    return value;                                   \
  }
ZO_PASS_THROUGH(int)
ZO_PASS_THROUGH(unsigned int)
ZO_PASS_THROUGH(double)
ZO_PASS_THROUGH(bool)
ZO_PASS_THROUGH(const wchar_t*)
// NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter): that is what it is for
ZO_PASS_THROUGH(const ZoString&)
#undef ZO_PASS_THROUGH
