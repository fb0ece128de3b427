#include <gtest/gtest.h>
#include <zo/files/text_file.h>
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/search/std_macro_lib.h>
#include <zo/system/cfg.h>
#include <zo/system/registry.h>
#include <zo/text/containers/array.h>
#include <zo/text/string.h>

#include <atomic>
#include <string>
#include <thread>

#include "support/printers.h"
#include "support/registry_base.h"
#include "support/temp_folder.h"
#include "system/attached.h"

namespace {

class MacroLib : public testing::Test {
 protected:
  MacroLib() {
    HKEY root = HKEY_CURRENT_USER;
    EXPECT_EQ(ZoSystem::cfg().init(base_.path().c_str(), &root), 0);
  }

  static ZoMacroLib& macros() { return ZoSystem::macroLib(); }
  static std::wstring value(const wchar_t* name) {
    ZoString text(L"-");
    const int code = macros().getMacro(name, text);
    EXPECT_EQ(code != 0, text == ZoString(L"-"));
    return std::wstring(text.view());
  }
  // What a name is expanded to; "-" where it is refused, and then it is as it was.
  static std::wstring expanded(const std::wstring& text) {
    ZoFileName name(text);
    const std::wstring before(name.view());
    if (macros().expand(name) == 0) return std::wstring(name.view());
    EXPECT_EQ(name.view(), before);
    return L"-";
  }
  void put(const wchar_t* file, std::wstring_view text) {
    ASSERT_EQ(zoSaveText(path(file), text), 0);
  }
  ZoFileName path(const wchar_t* file) const { return ZoFileName(folder_.path() / file); }

  zo::test::Attached attached_;
  zo::test::RegistryBase base_;
  zo::test::TempFolder folder_;
};

TEST_F(MacroLib, ModulesComeBeforeSettingsAndTheseBeforeTheEnvironment) {
  SetEnvironmentVariableW(L"ZoParts", L"E:\\environment");
  EXPECT_EQ(value(L"zoparts"), L"-") << "nobody asked for it";
  ASSERT_EQ(macros().useEnvironment(true), 0);
  EXPECT_EQ(value(L"zoparts"), L"E:\\environment");
  ASSERT_EQ(ZoSystem::cfg().put(L"macros@ZoParts", ZoString(L"E:\\settings")), 0);
  EXPECT_EQ(value(L"zoparts"), L"E:\\settings");
  EXPECT_EQ(value(L"x@ZoParts"), L"-");
  ASSERT_EQ(macros().setMacro(L"ZOPARTS", L"E:\\a", L"a"), 0);
  ASSERT_EQ(macros().setMacro(L"zoparts", L"E:\\b", L"b"), 0);
  EXPECT_EQ(value(L"ZoParts"), L"E:\\b");
  ASSERT_EQ(macros().setMacro(L"zoparts", L"E:\\a2", L"A"), 0);
  EXPECT_EQ(value(L"ZoParts"), L"E:\\a2");
  macros().poolRelease(nullptr);
  macros().poolRelease(L"A");
  EXPECT_EQ(value(L"ZoParts"), L"E:\\b") << "what the other module gave is still there";
  EXPECT_EQ(macros().removeMacro(L"zoParts", L"a"), ZoResult::refused);
  EXPECT_EQ(macros().removeMacro(L"zoParts", L"b"), 0);
  EXPECT_EQ(value(L"ZoParts"), L"E:\\settings");
  for (const wchar_t* name : {L"", L"a'b", L"a\"b"})
    EXPECT_EQ(macros().setMacro(name, L"E:\\", L"a"), ZoResult::refused);
  EXPECT_EQ(macros().setMacro(L"m", L"", L"a"), ZoResult::refused);

  ASSERT_EQ(macros().setMacro(L"b", L"x", L"a"), 0);
  ZoArray<ZoString> names{L"old"};
  ASSERT_EQ(macros().getMacros(names), 0);
  ASSERT_EQ(names.entries(), 2u);
  EXPECT_EQ(names[0].view(), L"b");
  EXPECT_TRUE(names[1].equals(L"zoparts", ZoString::ignoreCase));
}

TEST_F(MacroLib, ExpandsNamesThroughValuesOfAnyForm) {
  const std::wstring longest(261, L'x');
  for (const auto& [name, text] :
       {std::pair<const wchar_t*, std::wstring>{L"drive", L"E:\\parts\\"},
        {L"net", L"\\\\server\\share"},
        {L"url", L"https://host/parts/"},
        {L"here", L"sub"},
        {L"long", longest},
        {L"in", L"$drive'iso"},
        {L"in 2", L"$IN\"bolts\\"},
        {L"bare", L"$drive'"},
        {L"cut", L"$drive"},
        {L"one", L"$two'x"},
        {L"two", L"$one'x"}})
    ASSERT_EQ(macros().setMacro(name, ZoString(text), L"m"), 0);
  for (const auto& [name, path] :
       {std::pair<std::wstring, std::wstring>{L"$drive'a.x", L"E:\\parts\\a.x"},
        {L"$DRIVE'\\sub\\a.x", L"E:\\parts\\sub\\a.x"},
        {L"$net'a.x", L"\\\\server\\share\\a.x"},
        {L"$url'/a.x", L"https://host/parts/a.x"},
        {L"$here'a.x", L"sub\\a.x"},
        {L"$long'a.x", longest + L"\\a.x"},
        {L"$in'a.x", L"E:\\parts\\iso\\a.x"},
        {L"$in 2'o'hara.x", L"E:\\parts\\iso\\bolts\\o'hara.x"},
        {L"$bare'a.x", L"E:\\parts\\a.x"},
        {L"$cut'a.x", L"-"},
        {L"$one'a.x", L"-"},
        {L"$none'a.x", L"-"},
        {L"plain.x", L"plain.x"},
        {L"", L""}})
    EXPECT_EQ(expanded(name), path) << path;
  // Sixteen within one another, and not one more.
  for (int i = 1; i <= 17; ++i)
    ASSERT_EQ(macros().setMacro(
                  (L"m" + std::to_wstring(i)).c_str(),
                  i == 1 ? ZoString(L"E:") : ZoString(L"$m" + std::to_wstring(i - 1) + L"'"), L"m"),
              0);
  EXPECT_EQ(expanded(L"$m16'a"), L"E:\\a");
  EXPECT_EQ(expanded(L"$m17'a"), L"-");
}

TEST_F(MacroLib, TakesFilesOfMacrosWholeOrNotAtAll) {
  put(L"good.txt", L"; comment\r\n\n  root = E:\\r \r# x\nstandards=$root'iso\nö = a = b");
  ASSERT_EQ(macros().addFile(path(L"good.txt"), L"m"), 0);
  EXPECT_EQ(expanded(L"$standards'a"), L"E:\\r\\iso\\a");
  EXPECT_EQ(value(L"Ö"), L"a = b");
  for (const wchar_t* bad : {L"a", L"=b", L"a=", L"a'b=c", L"\"=c"}) {
    put(L"bad.txt", std::wstring(L"root = E:\\bad\n") + bad);
    EXPECT_EQ(macros().addFile(path(L"bad.txt"), L"m"), ZoResult::refused) << bad;
    EXPECT_EQ(value(L"root"), L"E:\\r");
  }
  EXPECT_EQ(macros().addFile(path(L"none.txt"), L"m"), ZoResult::refused);
  macros().poolRelease(L"m");
  EXPECT_EQ(value(L"root"), L"-");
}

// What a library of one's own has without saying it.
TEST_F(MacroLib, NeedsNoMoreThanGetMacroToExpand) {
  struct Own : ZoMacroLib {
    int getMacro(const ZoString& name, ZoString& value) override {
      if (name == ZoString(L"a")) value = L"$b'x";
      if (name == ZoString(L"b")) value = L"E:";
      if (name == ZoString(L"c")) value = L"$c'";
      return value.isEmpty() ? ZoResult::refused : ZoResult::ok;
    }
  };
  ZoSystem::setMacroLib(new Own);
  EXPECT_EQ(expanded(L"$a'y"), L"E:\\x\\y");
  EXPECT_EQ(expanded(L"$c'y"), L"-");
  EXPECT_EQ(expanded(L"$d'y"), L"-");
  EXPECT_EQ(macros().setMacro(L"a", L"b", L"m"), ZoResult::refused);
  delete &macros();
}

TEST_F(MacroLib, IsReadWhileAnotherThreadChangesIt) {
  ASSERT_EQ(macros().setMacro(L"stays", L"E:\\s", L"s"), 0);
  std::atomic<bool> ends = false;
  std::thread changer([&] {
    for (int i = 0; !ends; ++i) {
      EXPECT_EQ(macros().setMacro(L"goes", i % 2 ? L"E:\\1" : L"E:\\2", L"g"), 0);
      macros().poolRelease(L"g");
    }
  });
  for (int i = 0; i < 2000; ++i) {
    ZoArray<ZoString> names;
    EXPECT_EQ(macros().getMacros(names), 0);
    EXPECT_EQ(names.entries() - names.contains(L"goes"), 1U);
    EXPECT_EQ(value(L"stays"), L"E:\\s");
  }
  ends = true;
  changer.join();
}

}  // namespace
