#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "support/temp_folder.h"

namespace {

std::wstring ended;

struct Globals : ZoDwgGlobals {
  explicit Globals(const wchar_t* name) : name_(name) {}
  ~Globals() override { ended += name_.view(); }
  ZoString name() override { return name_; }
  int release(const wchar_t* module) override {
    if (name_ == ZoString(L"throws")) throw std::runtime_error("stays");
    if (std::wstring_view(module) != L"mine") return 1;
    delete this;
    return 0;
  }

 private:
  ZoString name_;
};

TEST(Cad, GlobalsGoWithTheirModuleOrWithTheService) {
  auto cad = std::make_unique<ZoStdCad>();
  for (const wchar_t* name : {L"a", L"throws", L"b"})
    EXPECT_EQ(cad->registerGlobals(new Globals(name)), 0);
  Globals sameName(L"A");
  EXPECT_EQ(cad->registerGlobals(&sameName), ZoResult::refused);
  cad->poolRelease(nullptr);
  EXPECT_THROW(cad->poolRelease(L"other"), std::runtime_error);
  EXPECT_EQ(ended, L"");
  EXPECT_THROW(cad->poolRelease(L"mine"), std::runtime_error);
  EXPECT_EQ(ended.size(), 2u) << "the others are asked all the same";
  EXPECT_TRUE(cad->dwgGlobals(L"THROWS") && !cad->dwgGlobals(L"a"));
  cad.reset();
  EXPECT_TRUE(ended.ends_with(L"throws"));
}

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
