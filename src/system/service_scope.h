// What the standard services share: a scope that holds a service's guard, and whose they are.
//
//   const zo::Writing writing(*this);
//   if (!writing) return ZoResult::refused;
//
// The scope waits the service's timeOut() and gives the guard back however the function is left.
#pragma once

#include <zo/results.h>
#include <zo/system/sys_obj.h>

#include <cwchar>

namespace zo {

template <auto wait, auto done>
class ServiceScope {
 public:
  [[nodiscard]] explicit ServiceScope(ZoSysObj& service)
      : service_(service), result_((service.*wait)()) {}
  ServiceScope(const ServiceScope&) = delete;
  ServiceScope& operator=(const ServiceScope&) = delete;
  ~ServiceScope() {
    if (*this) (service_.*done)();
  }

  explicit operator bool() const noexcept { return result_ == ZoResult::ok; }
  // What the wait answered.
  [[nodiscard]] int result() const noexcept { return result_; }

 private:
  ZoSysObj& service_;
  int result_;
};

using Done = void (ZoSysObj::*)() noexcept;
using Reading = ServiceScope<&ZoSysObj::waitToRead, static_cast<Done>(&ZoSysObj::doneReading)>;
using Writing = ServiceScope<&ZoSysObj::waitToWrite, static_cast<Done>(&ZoSysObj::doneWriting)>;

// Whether a released module is this library, "zo_com" in any case. Null is not.
[[nodiscard]] inline bool isThisLibrary(const wchar_t* module) noexcept {
  return module && _wcsicmp(module, L"zo_com") == 0;
}

// How the standard services answer release(module): one of this library goes with the library.
template <class Service>
int releaseWithLibrary(Service* service, const wchar_t* module) {
  if (!isThisLibrary(module)) return ZoResult::refused;
  delete service;
  return ZoResult::ok;
}

}  // namespace zo
