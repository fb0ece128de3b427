#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/search/std_file_search.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/temp_folder.h"

namespace {

TEST(FileSearch, FindsAFileWhereItsNameSaysOrInTheFirstFolderThatHasIt) {
  const zo::test::TempFolder root;
  namespace fs = std::filesystem;
  const fs::path one = root.path() / L"one", two = root.path() / L"two";
  for (const fs::path& file : {one / L"a.txt", two / L"a.txt", two / L"sub" / L"b.txt"}) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "text";
  }
  ZoStdFileSearch search;
  const auto found = [&](const fs::path& name) {
    ZoFileName result(L"none");
    search.find(ZoFileName(name), result);
    return fs::path(std::wstring(result.view()));
  };
  EXPECT_EQ(found(one / L"a.txt"), one / L"a.txt");
  EXPECT_EQ(found(one), L"none") << "a folder is no file";
  EXPECT_EQ(search.addPath(ZoFileName(two), L"mine"), 0);
  EXPECT_EQ(search.addPath(ZoFileName(one), L"other"), 0);
  for (const fs::path& refused : {two, one / L"a.txt", root.path() / L"absent"})
    EXPECT_EQ(search.addPath(ZoFileName(refused), L"mine"), ZoResult::refused);
  EXPECT_EQ(found(L"a.txt"), two / L"a.txt");
  EXPECT_EQ(found(L"sub\\b.txt"), two / L"sub" / L"b.txt");
  EXPECT_EQ(found(one / L"b.txt"), L"none") << "a full name is not searched for";
  search.poolRelease(L"MINE");
  EXPECT_EQ(found(L"a.txt"), one / L"a.txt");
}

}  // namespace
