// COM for one call: a thread's single-threaded apartment as long as a scope lasts.
#pragma once

#include <objbase.h>

#include "platform/com.h"

namespace zo {

class ComApartment {
 public:
  // Does not become one on a thread that lives in the multithreaded apartment.
  ComApartment() noexcept
      : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
  ~ComApartment() {
    if (*this) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

  explicit operator bool() const noexcept { return SUCCEEDED(result_); }

  // Null where the platform makes none.
  template <class Interface>
  [[nodiscard]] ComPtr<Interface> make(REFCLSID id) const noexcept {
    ComPtr<Interface> object;
    (void)CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                           reinterpret_cast<void**>(object.out()));
    return object;
  }

 private:
  HRESULT result_;
};

// What an interface gave to the caller to free.
struct ComFree {
  void operator()(void* block) const noexcept { CoTaskMemFree(block); }
};

}  // namespace zo
