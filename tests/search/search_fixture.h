// Folders and libraries to be searched, in a folder of their own, and the library attached.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <zo/files/file.h>
#include <zo/library/library.h>
#include <zo/results.h>
#include <zo/search/std_file_search.h>
#include <zo/system/registry.h>
#include <zo/text/containers/array.h>
#include <zo/text/string.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/printers.h"
#include "support/temp_folder.h"
#include "system/attached.h"

namespace zo::test {

class FileSearchTest : public testing::Test {
 protected:
  using Names = std::vector<std::wstring>;

  [[nodiscard]] std::filesystem::path path(const std::wstring& below) const {
    return folder_.path() / below;
  }
  // A file whose content is its name.
  void put(const std::wstring& below) const {
    std::filesystem::create_directories(path(below).parent_path());
    std::ofstream(path(below)) << std::filesystem::path(below).string();
  }
  void makeLibrary(const wchar_t* below, std::initializer_list<const wchar_t*> members) const {
    put(L"member");
    std::filesystem::create_directories(path(below).parent_path());
    ZoLibrary library;
    ASSERT_EQ(library.open(path(below), ZoFile::kReadWrite, ZoFile::kOpenAlways), 0);
    for (const wchar_t* member : members)
      ASSERT_EQ(library.addFile(path(L"member"), member, true), 0);
  }
  static ZoFileSearch& search() { return ZoSystem::fileSearch(); }
  int addPath(const wchar_t* below, int priority = 0, bool isTree = false,
              const wchar_t* module = L"m") {
    return search().addPath(path(below), module, priority, isTree);
  }
  // What is found, below the test's folder; "-" for nothing, and then nothing was filled.
  std::wstring found(const std::wstring& name) {
    ZoFileName result(L"-");
    const int code = search().find(ZoFileName(name), result);
    EXPECT_EQ(code == 0, result != L"-") << code;
    const std::wstring root = folder_.path().wstring() + L"\\", text(result.view());
    return text.starts_with(root) ? text.substr(root.size()) : text;
  }
  // Asks so often that what can be known is known.
  std::wstring foundAtLast(const std::wstring& name) {
    for (int i = 0; i < 20; ++i) found(name);
    return found(name);
  }

  TempFolder folder_;
  Attached attached_;  // ends first, and with it what is watched
};

}  // namespace zo::test
