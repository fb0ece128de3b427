#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include "support/printers.h"
#include "support/temp_folder.h"
#include "system/other_thread.h"

namespace {

using zo::test::HeldElsewhere;
using zo::test::TempFolder;

std::wstring ended;

struct Globals : ZoDwgGlobals {
  explicit Globals(const wchar_t* name) : name_(name) {}
  ~Globals() override { ended += name_.view(); }
  ZoString name() override { return name_; }
  int release(const wchar_t* module) override {
    if (atRelease) atRelease();
    if (std::wstring_view(module) != L"mine") return 1;
    delete this;
    return 0;
  }
  std::function<void()> atRelease;

 private:
  ZoString name_;
};

struct Cad : zo::test::Impatient<ZoStdCad> {};

TEST(Cad, KeepsGlobalsByName) {
  ended.clear();
  {
    Cad cad;
    auto* const a = new Globals(L"a");
    Globals sameName(L"A"), other(L"o");
    EXPECT_EQ(cad.registerGlobals(nullptr), ZoResult::refused);
    EXPECT_EQ(cad.registerGlobals(a), 0);
    EXPECT_EQ(cad.registerGlobals(&sameName), ZoResult::refused);
    {
      const HeldElsewhere held(cad);
      EXPECT_EQ(cad.registerGlobals(&other), ZoResult::refused);
      EXPECT_EQ(cad.unregisterGlobals(L"a"), ZoResult::refused);
      EXPECT_EQ(cad.dwgGlobals(L"a"), nullptr);
      cad.poolRelease(L"mine");
    }
    EXPECT_EQ(cad.dwgGlobals(L"A"), a);
    EXPECT_EQ(cad.dwgGlobals(L"o"), nullptr);
    EXPECT_EQ(cad.registerGlobals(&other), 0);
    EXPECT_EQ(cad.unregisterGlobals(L"O"), 0) << "handed back";
    EXPECT_EQ(cad.unregisterGlobals(L"o"), ZoResult::refused);
    ended.clear();
  }
  EXPECT_EQ(ended, L"oAa") << "the service's end destroys what is registered";
}

TEST(Cad, GlobalsGoWithTheirModule) {
  Cad* const cad = new Cad;
  const auto add = [cad](const wchar_t* name) {
    auto* const globals = new Globals(name);
    EXPECT_EQ(cad->registerGlobals(globals), 0);
    return globals;
  };
  add(L"t");
  add(L"b");
  ended.clear();
  cad->poolRelease(nullptr);
  cad->poolRelease(L"other");
  EXPECT_EQ(ended, L"");
  // Globals take part in the lists while they are walked, and may leave a successor of their name.
  add(L"a")->atRelease = [&] {
    delete cad->dwgGlobals(L"t");
    cad->unregisterGlobals(L"t");
    cad->unregisterGlobals(L"a");
    add(L"a")->atRelease = [] { throw std::runtime_error("a"); };
  };
  cad->poolRelease(L"mine");
  std::ranges::sort(ended);
  EXPECT_EQ(ended.substr(0, 2), L"ab");
  EXPECT_NE(cad->dwgGlobals(L"a"), nullptr);

  add(L"d");
  EXPECT_THROW(cad->release(L"mine"), std::runtime_error);
  EXPECT_NE(cad->dwgGlobals(L"a"), nullptr) << "an exception means to stay";
  EXPECT_EQ(cad->dwgGlobals(L"d"), nullptr) << "the others are asked all the same";
  static_cast<Globals*>(cad->dwgGlobals(L"a"))->atRelease = nullptr;
  EXPECT_EQ(cad->release(L"mine"), 1);
  EXPECT_EQ(cad->dwgGlobals(L"a"), nullptr) << "releases the module's globals first";
  EXPECT_EQ(cad->release(L"ZO_COM"), 0);
}

TEST(FileSearch, FindsAFileWhereItsNameSaysOrInTheFirstFolderThatHasIt) {
  const TempFolder root;
  namespace fs = std::filesystem;
  for (const wchar_t* file : {L"one\\a.txt", L"two\\a.txt", L"two\\sub\\b.txt"}) {
    fs::create_directories((root.path() / file).parent_path());
    std::ofstream(root.path() / file) << "text";
  }
  zo::test::Impatient<ZoStdFileSearch> search;
  const auto found = [&](const fs::path& name) {
    ZoFileName result(L"before");
    const bool isFound = search.find(ZoFileName(name), result) == 0;
    EXPECT_EQ(isFound, !(result == L"before"));
    return fs::path(std::wstring(result.view()));
  };
  const fs::path none(L"before");
  const fs::path one = root.path() / L"one", two = root.path() / L"two";
  EXPECT_EQ(found(one / L"a.txt"), one / L"a.txt");
  EXPECT_EQ(found(one), none) << "a folder is no file";
  EXPECT_EQ(search.addPath(ZoFileName(two), L"mine"), 0);
  for (const fs::path& refused : {two, one / L"a.txt", root.path() / L"absent"})
    EXPECT_EQ(search.addPath(ZoFileName(refused), L"mine"), ZoResult::refused);
  EXPECT_EQ(search.addPath(ZoFileName(one), L"other"), 0);
  EXPECT_EQ(found(L"a.txt"), two / L"a.txt");
  EXPECT_EQ(found(L"sub\\b.txt"), two / L"sub" / L"b.txt");
  EXPECT_EQ(found(one / L"b.txt"), none) << "a full name is not searched for";
  {
    const HeldElsewhere held(search);
    EXPECT_EQ(found(one / L"a.txt"), none);
    EXPECT_EQ(search.addPath(ZoFileName(root.path()), L"mine"), ZoResult::refused);
  }
  search.poolRelease(nullptr);
  search.poolRelease(L"MINE");
  EXPECT_EQ(found(L"a.txt"), one / L"a.txt");
  EXPECT_EQ(found(L"sub\\b.txt"), none);
}

}  // namespace
