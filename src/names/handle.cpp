#include <zo/names/handle.h>
#include <zo/results.h>

int ZoHnd::setHandle(const wchar_t* text) {
  if (text && *text) {
    handle_ = text;
  } else {
    handle_ = ZoString();
  }
  mark(kText, !handle_.isEmpty());
  return ZoResult::ok;
}

int ZoHnd::setId(std::int64_t id) noexcept {
  id_ = id;
  mark(kId, id != 0);
  return ZoResult::ok;
}

int ZoHnd::getHandle(ZoString& out) const noexcept {
  if (!isKindOf(kText)) return ZoResult::refused;
  out = handle_;
  return ZoResult::ok;
}

int ZoHnd::getId(std::int64_t& out) const noexcept {
  if (!isKindOf(kId)) return ZoResult::refused;
  out = id_;
  return ZoResult::ok;
}

int ZoHnd::reset(unsigned int which) noexcept {
  if (types_ & which & kText) {
    handle_ = ZoString();
    mark(kText, false);
  }
  const unsigned int left = types_ & which;
  if (left & kId) setId(0);
  return static_cast<int>(left);
}
