// COM for one call: a thread's single-threaded apartment as long as a scope lasts, and pointers.
#pragma once

#include <objbase.h>
#include <windows.h>

#include <memory>

#include "platform/system_library.h"

namespace zo {

struct ComRelease {
  template <class Interface>
  void operator()(Interface* object) const noexcept {
    object->Release();
  }
};
template <class Interface>
using ComPointer = std::unique_ptr<Interface, ComRelease>;

class ComApartment {
 public:
  // Does not become one on a thread that lives in the multithreaded apartment.
  ComApartment() noexcept {
    static const auto begin =
        systemFunction<decltype(CoInitializeEx)>(L"ole32.dll", "CoInitializeEx");
    if (begin) result_ = begin(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  }
  ~ComApartment() {
    static const auto end =
        systemFunction<decltype(CoUninitialize)>(L"ole32.dll", "CoUninitialize");
    if (*this && end) end();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

  explicit operator bool() const noexcept { return SUCCEEDED(result_); }

  // Null where the platform makes none.
  template <class Interface>
  [[nodiscard]] ComPointer<Interface> make(REFCLSID id) const noexcept {
    static const auto create =
        systemFunction<decltype(CoCreateInstance)>(L"ole32.dll", "CoCreateInstance");
    void* object = nullptr;
    if (create) (void)create(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), &object);
    return ComPointer<Interface>(static_cast<Interface*>(object));
  }

  // Frees what an interface gave.
  static void free(void* block) noexcept {
    static const auto give = systemFunction<decltype(CoTaskMemFree)>(L"ole32.dll", "CoTaskMemFree");
    if (give) give(block);
  }

 private:
  HRESULT result_ = E_FAIL;
};

// What an interface gave to the caller to free.
struct ComFree {
  void operator()(void* block) const noexcept {
    static const auto give = systemFunction<decltype(CoTaskMemFree)>(L"ole32.dll", "CoTaskMemFree");
    if (give) give(block);
  }
};

}  // namespace zo
