#include "platform/file_api.h"

#include <atomic>
#include <cstring>
#include <cwchar>
#include <vector>

namespace zo {
namespace {

FileApi platform;
std::atomic<FileApi*> current = nullptr;

DWORD low(std::uint64_t value) { return static_cast<DWORD>(value); }
DWORD high(std::uint64_t value) { return static_cast<DWORD>(value >> 32); }

}  // namespace

FileApi& fileApi() noexcept {
  FileApi* const layer = current.load(std::memory_order_acquire);
  return layer ? *layer : platform;
}

FileApi* setFileApi(FileApi* layer) noexcept { return current.exchange(layer); }

HANDLE FileApi::create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                       DWORD flags) {
  return CreateFileW(name, access, share, nullptr, disposition, flags, nullptr);
}

HANDLE FileApi::reopen(HANDLE file, DWORD access, DWORD share, DWORD flags) {
  return ReOpenFile(file, access, share, flags);
}

HANDLE FileApi::duplicate(HANDLE file) {
  HANDLE copy = nullptr;
  HANDLE self = GetCurrentProcess();
  return DuplicateHandle(self, file, self, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS) ? copy : nullptr;
}

bool FileApi::close(HANDLE file) { return CloseHandle(file); }

bool FileApi::read(HANDLE file, void* buffer, DWORD count, DWORD& done) {
  return ReadFile(file, buffer, count, &done, nullptr);
}

bool FileApi::write(HANDLE file, const void* data, DWORD count, DWORD& done) {
  return WriteFile(file, data, count, &done, nullptr);
}

bool FileApi::seek(HANDLE file, std::int64_t offset, DWORD method, std::int64_t& position) {
  LARGE_INTEGER distance, reached;
  distance.QuadPart = offset;
  if (!SetFilePointerEx(file, distance, &reached, method)) return false;
  position = reached.QuadPart;
  return true;
}

bool FileApi::setEnd(HANDLE file) { return SetEndOfFile(file); }

bool FileApi::lock(HANDLE file, std::uint64_t start, std::uint64_t length) {
  return LockFile(file, low(start), high(start), low(length), high(length));
}

bool FileApi::unlock(HANDLE file, std::uint64_t start, std::uint64_t length) {
  return UnlockFile(file, low(start), high(start), low(length), high(length));
}

bool FileApi::flush(HANDLE file) { return FlushFileBuffers(file); }

bool FileApi::size(HANDLE file, std::int64_t& bytes) {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(file, &size)) return false;
  bytes = size.QuadPart;
  return true;
}

bool FileApi::information(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) {
  return GetFileInformationByHandle(file, &information);
}

bool FileApi::times(HANDLE file, FILETIME* created, FILETIME* accessed, FILETIME* written) {
  return GetFileTime(file, created, accessed, written);
}

bool FileApi::setTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                       const FILETIME* written) {
  return SetFileTime(file, created, accessed, written);
}

bool FileApi::rename(HANDLE file, const wchar_t* to) {
  const std::size_t bytes = std::wcslen(to) * sizeof(wchar_t);
  const std::size_t size = sizeof(FILE_RENAME_INFO) + bytes;  // with room for the zero
  std::vector<FILE_RENAME_INFO> room(size / sizeof(FILE_RENAME_INFO) + 1);
  room.front().FileNameLength = static_cast<DWORD>(bytes);
  std::memcpy(room.front().FileName, to, bytes);
  return SetFileInformationByHandle(file, FileRenameInfo, room.data(), static_cast<DWORD>(size));
}

bool FileApi::createFolder(const wchar_t* name) { return CreateDirectoryW(name, nullptr); }
bool FileApi::removeFolder(const wchar_t* name) { return RemoveDirectoryW(name); }
bool FileApi::removeFile(const wchar_t* name) { return DeleteFileW(name); }

bool FileApi::copy(const wchar_t* from, const wchar_t* to, bool failIfExists) {
  return CopyFileW(from, to, failIfExists);
}

bool FileApi::move(const wchar_t* from, const wchar_t* to, DWORD flags) {
  return MoveFileExW(from, to, flags);
}

DWORD FileApi::attributes(const wchar_t* name) { return GetFileAttributesW(name); }
bool FileApi::details(const wchar_t* name, WIN32_FILE_ATTRIBUTE_DATA& details) {
  return GetFileAttributesExW(name, GetFileExInfoStandard, &details) != FALSE;
}

bool FileApi::setAttributes(const wchar_t* name, DWORD attributes) {
  return SetFileAttributesW(name, attributes);
}

HANDLE FileApi::findFirst(const wchar_t* pattern, WIN32_FIND_DATAW& entry) {
  return FindFirstFileExW(pattern, FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr,
                          FIND_FIRST_EX_LARGE_FETCH);
}

bool FileApi::findNext(HANDLE search, WIN32_FIND_DATAW& entry) {
  return FindNextFileW(search, &entry);
}

bool FileApi::findClose(HANDLE search) { return FindClose(search); }

DWORD FileApi::currentFolder(DWORD size, wchar_t* buffer) {
  return GetCurrentDirectoryW(size, buffer);
}

bool FileApi::setCurrentFolder(const wchar_t* name) { return SetCurrentDirectoryW(name); }
DWORD FileApi::tempFolder(DWORD size, wchar_t* buffer) { return GetTempPathW(size, buffer); }

DWORD FileApi::fullPath(const wchar_t* name, DWORD size, wchar_t* buffer) {
  return GetFullPathNameW(name, size, buffer, nullptr);
}

DWORD FileApi::searchPath(const wchar_t* path, const wchar_t* name, DWORD size, wchar_t* buffer) {
  return SearchPathW(path, name, nullptr, size, buffer, nullptr);
}

DWORD FileApi::tempName(const wchar_t* folder, const wchar_t* prefix,
                        std::array<wchar_t, MAX_PATH>& made) {
  if (std::wcslen(folder) > kLongestTempFolder) {
    SetLastError(ERROR_FILENAME_EXCED_RANGE);
    return 0;
  }
  return GetTempFileNameW(folder, prefix, 0, made.data());
}

bool FileApi::volume(const wchar_t* root, Volume& volume) {
  return GetVolumeInformationW(root, volume.label, MAX_PATH + 1, &volume.serial,
                               &volume.longestComponent, &volume.flags, volume.fileSystem,
                               MAX_PATH + 1);
}

bool FileApi::space(const wchar_t* root, Space& space) {
  return GetDiskFreeSpaceW(root, &space.sectorsPerCluster, &space.bytesPerSector,
                           &space.freeClusters, &space.clusters);
}

DWORD FileApi::driveType(const wchar_t* root) { return GetDriveTypeW(root); }
DWORD FileApi::drives(DWORD size, wchar_t* buffer) { return GetLogicalDriveStringsW(size, buffer); }
bool FileApi::setLabel(const wchar_t* root, const wchar_t* label) {
  return SetVolumeLabelW(root, label);
}

}  // namespace zo
