#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zo::test {

namespace {

std::wstring tempBase() {
  std::wstring base(MAX_PATH + 1, L'\0');
  base.resize(GetTempPathW(static_cast<DWORD>(base.size()), base.data()));
  return base;
}

// Paths longer than MAX_PATH need the prefix.
std::wstring longForm(const std::wstring& path) { return L"\\\\?\\" + path; }

void report(const std::wstring& path) {
  const DWORD error = GetLastError();
  ADD_FAILURE() << "cannot remove " << path << ", error " << error;
}

void removeFolder(const std::wstring& path);

void removeEntry(const std::wstring& path, DWORD attributes) {
  if (attributes & FILE_ATTRIBUTE_READONLY) SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    if (!DeleteFileW(path.c_str())) report(path);
  } else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
    if (!RemoveDirectoryW(path.c_str())) report(path);  // the link, not what it leads to
  } else {
    removeFolder(path);
  }
}

void removeFolder(const std::wstring& path) {
  WIN32_FIND_DATAW entry;
  HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      const std::wstring_view name = entry.cFileName;
      if (name != L"." && name != L"..") {
        removeEntry(path + L"\\" + entry.cFileName, entry.dwFileAttributes);
      }
    } while (FindNextFileW(search, &entry));
    FindClose(search);
  }
  if (!RemoveDirectoryW(path.c_str())) report(path);
}

}  // namespace

TempFolder::TempFolder() {
  static std::atomic<unsigned> counter = 0;
  const std::wstring stem =
      tempBase() + L"zo_test_" + std::to_wstring(GetCurrentProcessId()) + L"_";
  for (;;) {  // an earlier process with the same number may have been killed and left its folder
    std::wstring path = stem + std::to_wstring(counter++);
    if (CreateDirectoryW(path.c_str(), nullptr)) {
      path_ = std::move(path);
      return;
    }
    if (GetLastError() != ERROR_ALREADY_EXISTS) {
      throw std::runtime_error("cannot make a temporary folder, error " +
                               std::to_string(GetLastError()));
    }
  }
}

TempFolder::~TempFolder() { removeFolder(longForm(path_.wstring())); }

}  // namespace zo::test
