#include <windows.h>
#include <zo/files/file_system.h>

#include <atomic>

#include "system/service_scope.h"

namespace {

std::atomic<DWORD> lastError = ERROR_SUCCESS;

ZoString systemMessage(DWORD error) {
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<wchar_t*>(&text),
      0, nullptr);
  struct Freed {
    wchar_t* block;
    ~Freed() { LocalFree(block); }
  } const freed{text};
  return ZoString(text, length);
}

}  // namespace

int ZoStdFileSystem::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoStdFileSystem::errorIO(const wchar_t*) {
  lastError = GetLastError();
  return ZoResult::ok;
}

ZoString ZoStdFileSystem::errorTxt() { return systemMessage(lastError); }
