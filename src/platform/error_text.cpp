#include "platform/error_text.h"

#include <windows.h>

std::wstring zo::errorText(unsigned long error) {
  // Errors of connections have their messages in the library that made them.
  const bool ofInternet = error >= 12000 && error < 13000;
  const HMODULE library = ofInternet ? GetModuleHandleW(L"wininet.dll") : nullptr;
  const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                      FORMAT_MESSAGE_IGNORE_INSERTS | (library ? FORMAT_MESSAGE_FROM_HMODULE : 0);
  wchar_t* text = nullptr;
  const DWORD length =
      FormatMessageW(flags, library, error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                     reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  struct Freed {
    wchar_t* block;
    ~Freed() { LocalFree(block); }
  } const freed{text};
  return length ? std::wstring(text, length) : std::wstring();
}

unsigned long zo::systemErrorOf(unsigned long error) noexcept {
  const auto result = static_cast<HRESULT>(error);
  return FAILED(result) && HRESULT_FACILITY(result) == FACILITY_WIN32
             ? static_cast<unsigned long>(HRESULT_CODE(result))
             : error;
}
