#include <zo/results.h>
#include <zo/system/sys_obj.h>

namespace {

int toResult(unsigned long wait) noexcept {
  if (ZoWait::holds(wait)) return ZoResult::ok;
  return wait == ZoWait::timeOut ? ZoResult::timeOut : ZoResult::refused;
}

}  // namespace

ZoSysObj::ZoSysObj() noexcept {
  // A refused guard's fields hold handles that are closed already.
  if (!zoSWMRGInitialize(&guard_, nullptr)) guard_ = {};
}

ZoSysObj::~ZoSysObj() { zoSWMRGDelete(&guard_); }

void ZoSysObj::onReactor(ZoSysNotice, const ZoVariant&) {}
int ZoSysObj::release(const wchar_t*) { return ZoResult::refused; }
void ZoSysObj::poolRelease(const wchar_t*) {}
int ZoSysObj::timeOut() { return 1000; }

int ZoSysObj::waitToWrite() {
  return toResult(zoSWMRGWaitToWrite(&guard_, static_cast<unsigned long>(timeOut())));
}

int ZoSysObj::waitToRead() {
  return toResult(zoSWMRGWaitToRead(&guard_, static_cast<unsigned long>(timeOut())));
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
ZO_PASS_THROUGH(const ZoString&)
#undef ZO_PASS_THROUGH
