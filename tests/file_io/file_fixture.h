// What the tests of files share: a folder of their own, the library attached, and files as plain
// bytes, read and written past the library.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <winioctl.h>
#include <zo/files/file_name.h>
#include <zo/files/std_file_system.h>

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

// The standard service; keeps what errorIO was told.
class RecordingFileSystem : public ZoStdFileSystem {
 public:
  int errorIO(const wchar_t* operation) override {
    lastError = GetLastError();
    operations.emplace_back(operation);
    SetLastError(lastError);
    return ZoStdFileSystem::errorIO(operation);
  }
  std::vector<std::wstring> operations;
  DWORD lastError = 0;
};

// The system's message for an error, as errorTxt() is to give it.
inline std::wstring messageOf(DWORD error) {
  wchar_t text[1024];
  const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  return {text, FormatMessageW(flags, nullptr, error, 0, text, 1024, nullptr)};
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
  // Lets the call that each case names fail with an error of its own: the case's result, a report
  // under the right name, and the error for errorTxt, with nothing in between.
  template <class Cases, class Run>
  static void expectReported(RecordingFileSystem& service, const Cases& cases, Run run) {
    FaultyFiles files;
    DWORD error = 1000;
    for (const auto& c : cases) {
      SCOPED_TRACE(c.call);
      service.operations.clear();
      files.arm({.fault = Fault::fail, .call = c.call, .error = ++error});
      EXPECT_EQ(run(c), c.result);
      EXPECT_EQ(service.operations, Names{c.reported});
      EXPECT_EQ(service.lastError, error);
      EXPECT_EQ(service.errorTxt().view(), messageOf(error));
    }
  }
  static bool exists(const ZoFileName& name) {
    return GetFileAttributesW(name.fullName()) != INVALID_FILE_ATTRIBUTES;
  }
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
