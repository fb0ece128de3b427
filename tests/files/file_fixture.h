// What the tests of files share: a folder of their own, the library attached, and files as plain
// bytes, read and written past the library.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <zo/names/file_name.h>
#include <zo/system/file_system.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/faulty_files.h"
#include "support/printers.h"
#include "support/temp_folder.h"
#include "system/attached.h"

namespace zo::test {

// The system's message for an error, as errorTxt() is to give it.
inline std::wstring messageOf(DWORD error) {
  wchar_t text[1024];
  const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD length = FormatMessageW(flags, nullptr, error, 0, text, 1024, nullptr);
  return length ? std::wstring(text, length) : L"Error " + std::to_wstring(error) + L".\r\n";
}

class FileTest : public ::testing::Test {
 protected:
  using Names = std::vector<std::wstring>;

  ZoFileName name(const std::wstring& relative) const {
    return ZoFileName((folder_.path() / relative).wstring().c_str());
  }
  static void put(const ZoFileName& name, const std::string& bytes) {
    std::ofstream(std::filesystem::path(name.fullName()), std::ios::binary) << bytes;
  }
  // "(none)" for a file that is not there.
  static std::string bytesOf(const ZoFileName& name) {
    std::ifstream in(std::filesystem::path(name.fullName()), std::ios::binary);
    if (!in) return "(none)";
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static ZoFileSystem& fs() { return ZoSystem::fileSystem(); }
  // Whether the service keeps this error.
  static void expectError(DWORD error) { EXPECT_EQ(fs().errorTxt().view(), messageOf(error)); }
  // All that is in the test's folder, sorted, folders with a final backslash.
  Names listing() const {
    Names names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      names.push_back(std::filesystem::relative(entry.path(), folder_.path()).wstring() +
                      (entry.is_directory() ? L"\\" : L""));
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  Attached attached_;
  TempFolder folder_;
};

}  // namespace zo::test
