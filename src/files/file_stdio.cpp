// Handing an open file over to a stdio stream.
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#include <zo/files/file_imp.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/file_api.h"

namespace {

constexpr wchar_t kOperation[] = L"getCFileHandle";

// A letter, and then "+", "b" and "t" in any order: the runtime ends the program for anything else.
bool isMode(std::wstring_view mode) {
  return !mode.empty() && std::wstring_view(L"rwa").find(mode[0]) != std::wstring_view::npos &&
         mode.find_first_not_of(L"+bt", 1) == std::wstring_view::npos;
}

// The runtime's flags for the descriptor below a stream of that mode.
int descriptorFlags(std::wstring_view mode) {
  int flags = mode.find(L't') == std::wstring_view::npos ? _O_BINARY : _O_TEXT;
  if (mode[0] == L'a') flags |= _O_APPEND;
  if (mode[0] == L'r' && mode.find(L'+') == std::wstring_view::npos) flags |= _O_RDONLY;
  return flags;
}

}  // namespace

std::FILE* ZoFileImp::noStream(unsigned long error) const {
  report(kOperation, error);
  return nullptr;
}

std::FILE* ZoFileImp::getCFileHandle(bool text, bool writable) {
  // Writing to such a stream would fail only when its buffer is full or it is closed.
  if (writable && access_ && !(access_ & static_cast<unsigned int>(ZoFile::kWrite)))
    return noStream(ERROR_ACCESS_DENIED);
  std::wstring mode(text ? L"rt" : L"rb");
  if (writable) mode += L'+';
  return getCFileHandle(mode.c_str());
}

std::FILE* ZoFileImp::getCFileHandle(const wchar_t* mode) {
  if (!mayUse(kOperation)) return nullptr;
  if (!mode || !isMode(mode)) return noStream(ERROR_INVALID_PARAMETER);
  // A descriptor cannot give its handle back, so it gets one of its own: the file stays open here
  // whatever fails.
  zo::FileApi& api = zo::fileApi();
  HANDLE handed = api.duplicate(handle_);
  if (!handed) return noStream(GetLastError());
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handed), descriptorFlags(mode));
  if (descriptor == -1) {
    api.close(handed);
    return noStream(ERROR_TOO_MANY_OPEN_FILES);
  }
  std::FILE* const stream = _wfdopen(descriptor, mode);
  if (!stream) {
    _close(descriptor);
    return noStream(ERROR_TOO_MANY_OPEN_FILES);
  }
  api.close(std::exchange(handle_, INVALID_HANDLE_VALUE));
  return stream;
}
