#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <stdexcept>
#include <string>

namespace zo::test {

namespace {

void remove(const std::wstring& path, DWORD attributes) {
  if (attributes & FILE_ATTRIBUTE_READONLY) SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  const bool isFolder = attributes & FILE_ATTRIBUTE_DIRECTORY;
  WIN32_FIND_DATAW entry;
  const HANDLE search = isFolder && !(attributes & FILE_ATTRIBUTE_REPARSE_POINT)
                            ? FindFirstFileW((path + L"\\*").c_str(), &entry)
                            : INVALID_HANDLE_VALUE;
  if (search != INVALID_HANDLE_VALUE) {
    do {
      const std::wstring name = entry.cFileName;
      if (name != L"." && name != L"..") remove(path + L"\\" + name, entry.dwFileAttributes);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
  }
  if (!(isFolder ? RemoveDirectoryW(path.c_str()) : DeleteFileW(path.c_str())))
    ADD_FAILURE() << "cannot remove " << path << ", error " << GetLastError();
}

}  // namespace

TempFolder::TempFolder() {
  static std::atomic<unsigned> counter = 0;
  wchar_t base[MAX_PATH + 1];
  GetTempPathW(MAX_PATH + 1, base);
  // An earlier process of the same number may have been killed and left its folder.
  do {
    path_ = base + (L"zo_test_" + std::to_wstring(GetCurrentProcessId()) + L"_") +
            std::to_wstring(counter++);
    if (CreateDirectoryW(path_.c_str(), nullptr)) return;
  } while (GetLastError() == ERROR_ALREADY_EXISTS);
  throw std::runtime_error("cannot make a temporary folder");
}

// Paths longer than MAX_PATH need the prefix.
TempFolder::~TempFolder() { remove(L"\\\\?\\" + path_.wstring(), FILE_ATTRIBUTE_DIRECTORY); }

}  // namespace zo::test
