#include <windows.h>
// windows.h first: these rest on it.
#include <shlobj.h>
#include <zo/results.h>
#include <zo/system/dll_version.h>
#include <zo/system/sys_info.h>
#include <zo/version.h>

#include <bit>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system_path.h"
#include "system/service_scope.h"

namespace {

// Fills a text by a call as zo::platformText makes it; an empty text is a failure unless
// mayBeEmpty.
template <class Call>
int fill(ZoString& text, Call call, bool mayBeEmpty = false) {
  const std::wstring found = zo::platformText([call](DWORD size, wchar_t* buffer) {
    SetLastError(ERROR_SUCCESS);
    return call(buffer, size);
  });
  if (found.empty() && !(mayBeEmpty && GetLastError() == ERROR_SUCCESS)) return ZoResult::refused;
  text = std::wstring_view(found);
  return ZoResult::ok;
}

// For calls that answer a BOOL and put the size into a variable.
template <class Call>
auto sized(Call call) {
  return [call](wchar_t* buffer, DWORD size) -> DWORD {
    DWORD length = size;
    if (call(buffer, &length)) return static_cast<DWORD>(wcsnlen(buffer, size - 1));
    const DWORD error = GetLastError();
    return error == ERROR_MORE_DATA || error == ERROR_INSUFFICIENT_BUFFER ? size : 0;
  };
}

int moduleFile(HMODULE module, ZoString& path) {
  return fill(path, [module](wchar_t* buffer, DWORD size) {
    return GetModuleFileNameW(module, buffer, size);
  });
}

// The module that holds this code: the DLL, or the program that links the objects.
HMODULE thisModule() noexcept {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&thisModule), &module);
  return module;
}

// Takes the delimiter off the end of a folder, except from a root.
void trimFolder(ZoString& path) {
  const unsigned int length = path.length();
  if (length > 3 && path[length - 1] == L'\\') path.remove(length - 1);
}

int folderOfFile(int result, ZoString& path) {
  if (result) return result;
  const unsigned int last = path.last(L'\\');
  if (last == ZoString::npos) return ZoResult::refused;
  path.remove(last == 2 ? 3 : last);
  return ZoResult::ok;
}

int knownFolder(int number, ZoString& path) {
  wchar_t buffer[MAX_PATH] = {};
  if (SHGetFolderPathW(nullptr, number, nullptr, SHGFP_TYPE_CURRENT, buffer) != S_OK || !*buffer)
    return ZoResult::refused;
  path = buffer;
  return ZoResult::ok;
}

int findFolder(ZoSysInfo::Folder which, ZoString& path) {
  switch (which) {
    case ZoSysInfo::kWindows:
      return fill(path, GetSystemWindowsDirectoryW);
    case ZoSysInfo::kSystem:
      return fill(path, GetSystemDirectoryW);
    case ZoSysInfo::kTemporary:
      return fill(path, [](wchar_t* buffer, DWORD size) { return GetTempPathW(size, buffer); });
    case ZoSysInfo::kCurrent:
      return fill(path,
                  [](wchar_t* buffer, DWORD size) { return GetCurrentDirectoryW(size, buffer); });
    case ZoSysInfo::kProgram:
      return folderOfFile(moduleFile(nullptr, path), path);
    case ZoSysInfo::kLibrary:
      return folderOfFile(moduleFile(thisModule(), path), path);
    case ZoSysInfo::kUserSettings:
      return knownFolder(CSIDL_APPDATA, path);
    case ZoSysInfo::kUserLocal:
      return knownFolder(CSIDL_LOCAL_APPDATA, path);
    case ZoSysInfo::kCommonSettings:
      return knownFolder(CSIDL_COMMON_APPDATA, path);
    case ZoSysInfo::kUserDocuments:
      return knownFolder(CSIDL_PERSONAL, path);
    default:
      return ZoResult::refused;
  }
}

}  // namespace

const char* zoComVersion() noexcept { return ZO_COM_VERSION; }

int ZoStdSysInfo::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoStdSysInfo::userName(ZoString& name) {
  return fill(name, sized([](wchar_t* buffer, DWORD* size) { return GetUserNameW(buffer, size); }));
}

int ZoStdSysInfo::machineName(ZoString& name) {
  return fill(name, sized([](wchar_t* buffer, DWORD* size) {
                return GetComputerNameExW(ComputerNameNetBIOS, buffer, size);
              }));
}

int ZoStdSysInfo::machineFullName(ZoString& name) {
  return fill(name, sized([](wchar_t* buffer, DWORD* size) {
                return GetComputerNameExW(ComputerNameDnsFullyQualified, buffer, size);
              }));
}

int ZoStdSysInfo::localeName(ZoString& name) {
  wchar_t buffer[LOCALE_NAME_MAX_LENGTH];
  const int length = GetUserDefaultLocaleName(buffer, LOCALE_NAME_MAX_LENGTH);
  if (length <= 1) return ZoResult::refused;
  name = std::wstring_view(buffer, static_cast<size_t>(length - 1));
  return ZoResult::ok;
}

// GetVersionEx answers what the program's manifest allows; this does not.
int ZoStdSysInfo::systemVersion(ZoSysVersion& version) {
  using RtlGetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
  const HMODULE module = GetModuleHandleW(L"ntdll.dll");
  const FARPROC address = module ? GetProcAddress(module, "RtlGetVersion") : nullptr;
  if (!address) return ZoResult::refused;
  const auto getVersion = std::bit_cast<RtlGetVersion>(address);
  OSVERSIONINFOW info = {};
  info.dwOSVersionInfoSize = sizeof info;
  if (getVersion(&info) != 0) return ZoResult::refused;
  version.major = info.dwMajorVersion;
  version.minor = info.dwMinorVersion;
  version.build = info.dwBuildNumber;
  return ZoResult::ok;
}

int ZoStdSysInfo::libraryVersion(ZoString& version) {
  std::wstring text;
  for (const char c : std::string_view(zoComVersion())) text += static_cast<wchar_t>(c);
  version = std::wstring_view(text);
  return ZoResult::ok;
}

int ZoStdSysInfo::fileVersion(const wchar_t* file, ZoString& version) {
  DWORD ignored = 0;
  const DWORD size = file ? GetFileVersionInfoSizeW(file, &ignored) : 0;
  if (size == 0) return ZoResult::refused;
  std::vector<unsigned char> data(size);
  void* block = nullptr;
  UINT length = 0;
  if (!GetFileVersionInfoW(file, 0, size, data.data()) ||
      !VerQueryValueW(data.data(), L"\\", &block, &length) || length < sizeof(VS_FIXEDFILEINFO))
    return ZoResult::refused;
  const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(block);
  std::wstring text;
  for (const DWORD part : {info.dwFileVersionMS >> 16, info.dwFileVersionMS & 0xFFFF,
                           info.dwFileVersionLS >> 16, info.dwFileVersionLS & 0xFFFF})
    text += (text.empty() ? L"" : L".") + std::to_wstring(part);
  version = std::wstring_view(text);
  return ZoResult::ok;
}

int ZoStdSysInfo::processors(unsigned int& count) {
  DWORD_PTR process = 0, system = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &process, &system)) return ZoResult::refused;
  // On machines of more than 64 processors a process that runs in several groups has no mask.
  const auto found = process != 0 ? static_cast<unsigned int>(std::popcount(process))
                                  : GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
  if (found == 0) return ZoResult::refused;
  count = found;
  return ZoResult::ok;
}

int ZoStdSysInfo::memory(unsigned long long& bytes) {
  MEMORYSTATUSEX status = {};
  status.dwLength = sizeof status;
  if (!GlobalMemoryStatusEx(&status)) return ZoResult::refused;
  bytes = status.ullTotalPhys;
  return ZoResult::ok;
}

int ZoStdSysInfo::folder(Folder which, ZoString& path) {
  ZoString found;
  if (const int result = findFolder(which, found)) return result;
  trimFolder(found);
  path = std::move(found);
  return ZoResult::ok;
}

int ZoStdSysInfo::programFile(ZoString& path) { return moduleFile(nullptr, path); }
int ZoStdSysInfo::libraryFile(ZoString& path) { return moduleFile(thisModule(), path); }

int ZoStdSysInfo::environment(const wchar_t* name, ZoString& value) {
  if (!name) return ZoResult::refused;
  return fill(
      value,
      [name](wchar_t* buffer, DWORD size) { return GetEnvironmentVariableW(name, buffer, size); },
      true);
}
