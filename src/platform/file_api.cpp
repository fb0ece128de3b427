#include "platform/file_api.h"

#include <utility>

namespace zo {

namespace {

FileApi g_platform;
FileApi* g_current = &g_platform;

}  // namespace

Handle FileApi::open(const wchar_t* name, DWORD access, DWORD share, DWORD disposition) noexcept {
  return Handle(
      CreateFileW(name, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool FileApi::size(HANDLE file, std::uint64_t& bytes) noexcept {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(file, &size)) return false;
  bytes = static_cast<std::uint64_t>(size.QuadPart);
  return true;
}

bool FileApi::seek(HANDLE file, std::uint64_t position) noexcept {
  LARGE_INTEGER distance;
  distance.QuadPart = static_cast<LONGLONG>(position);
  return SetFilePointerEx(file, distance, nullptr, FILE_BEGIN) != 0;
}

bool FileApi::read(HANDLE file, void* to, DWORD size, DWORD& done) noexcept {
  return ReadFile(file, to, size, &done, nullptr) != 0;
}

bool FileApi::write(HANDLE file, const void* data, DWORD size, DWORD& done) noexcept {
  return WriteFile(file, data, size, &done, nullptr) != 0;
}

bool FileApi::flush(HANDLE file) noexcept { return FlushFileBuffers(file) != 0; }

bool FileApi::replace(const wchar_t* from, const wchar_t* to) noexcept {
  return MoveFileExW(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool FileApi::remove(const wchar_t* name) noexcept { return DeleteFileW(name) != 0; }

FileApi& fileApi() noexcept { return *g_current; }

FileApi* setFileApi(FileApi* api) noexcept {
  return std::exchange(g_current, api ? api : &g_platform);
}

}  // namespace zo
