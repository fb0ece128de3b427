// Finding files in a folder of known content.
#include <zo/files/find_file.h>
#include <zo/text/containers/array.h>

#include "file_io/faulty_files.h"
#include "file_io/file_fixture.h"
#include "files/wildcard.h"
#include "support/open_handles.h"

namespace zo::test {
namespace {

TEST(Wildcard, FitsAsThePlatformHasIt) {
  struct Case {
    const wchar_t *pattern, *fits, *doesNot;  // separated by blanks
  } const cases[] = {
      {L"*", L"a a.b .b", L""},
      {L"*.*", L"a a.b .b", L""},
      {L"*.dwg", L"a.dwg a.DWG a.b.dwg .dwg", L"a.dwgx a a.dw dwg"},
      {L"a*", L"a ab A.x", L"ba"},
      {L"a?c", L"abc AXC", L"ac abbc"},
      {L"*a*b*", L"ab xaxbx aab", L"ba a b"},
      {L"a.*", L"a a.b a.b.c", L"ab.c b"},
      {L"*.", L"a ab", L"a.b a."},
      {L"a*.", L"a ab", L"a.b b"},
      {L"", L"", L"a"},
      {L"\x416*", L"\x436z", L"z"},  // case of all letters
      {L"*aaab", L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"},
  };
  for (const Case& c : cases) {
    for (const bool expected : {true, false}) {
      std::wstring_view rest = expected ? c.fits : c.doesNot;
      while (!rest.empty()) {
        const size_t blank = std::min(rest.find(L' '), rest.size());
        EXPECT_EQ(fitsWildcard(rest.substr(0, blank), c.pattern), expected)
            << ::testing::PrintToString(std::wstring(c.pattern)) << " "
            << ::testing::PrintToString(std::wstring(rest.substr(0, blank)));
        rest.remove_prefix(std::min(blank + 1, rest.size()));
      }
    }
  }
}

class FindFile : public FileTest {
 protected:
  FindFile() {
    for (const wchar_t* folder : {L"t\\a\\b", L"t\\empty"})
      std::filesystem::create_directories(std::filesystem::path(name(folder).fullName()));
    for (const wchar_t* file :
         {L"t\\1.dwg", L"t\\2.txt", L"t\\a\\3.DWG", L"t\\a\\b\\4.gpl", L"t\\a\\b\\\x44F.dwg"})
      put(name(file), "12345");
  }
  // What a search finds below the test's folder, sorted.
  Names found(ZoFindFile& find, const wchar_t* pattern, bool subfolders) {
    Names names;
    EXPECT_EQ(find.open(name(pattern), subfolders), 0);
    const size_t base = name(L"").fullNameSize();
    while (find.next()) {
      EXPECT_EQ(find.name().view(), find.path());
      EXPECT_EQ(find.fileNameExt(), std::wstring_view(find.name().fileNameExt()));
      EXPECT_TRUE(find.isDirectory() || find.size() == 5);
      names.emplace_back(find.path().substr(base));
    }
    EXPECT_FALSE(find.next());
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(FindFile, FindsByPatternKindAndAttributes) {
  ZoFindFile find;
  EXPECT_EQ(found(find, L"t\\*.dwg", false), (Names{L"t\\1.dwg"}));
  EXPECT_EQ(found(find, L"t\\*.dwg", true),
            (Names{L"t\\1.dwg", L"t\\a\\3.DWG", L"t\\a\\b\\\x44F.dwg"}));
  EXPECT_EQ(found(find, L"t\\", false), (Names{L"t\\1.dwg", L"t\\2.txt"}));
  EXPECT_EQ(found(find, L"t\\*", true).size(), 5u);
  EXPECT_EQ(found(find, L"t\\2.txt", false), (Names{L"t\\2.txt"}));
  EXPECT_EQ(found(find, L"t\\missing", true), Names{});
  EXPECT_EQ(found(find, L"t\\missing", false), Names{}) << "none is no failure";
  EXPECT_EQ(found(find, L"t\\empty\\*", true), Names{});
  EXPECT_EQ(find.result(), 0);
  find.setAttributes(ZoFindFile::kDirectory);
  EXPECT_EQ(found(find, L"t\\*", true), (Names{L"t\\a", L"t\\a\\b", L"t\\empty"}));
  EXPECT_EQ(found(find, L"t\\a", false), (Names{L"t\\a"}));
  find.setAttributes(0);
  EXPECT_EQ(found(find, L"t\\*", true).size(), 8u);
  SetFileAttributesW(name(L"t\\1.dwg").fullName(), FILE_ATTRIBUTE_READONLY);
  find.setAttributes(0, FILE_ATTRIBUTE_READONLY | ZoFindFile::kDirectory);
  EXPECT_EQ(found(find, L"t\\*", false), (Names{L"t\\2.txt"}));
  find.setAttributes(FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(found(find, L"t\\*", false), (Names{L"t\\1.dwg"}));
  find.setAttributes(0, ZoFindFile::kDirectory);
  find.setKinds(ZoFindFile::kind(ZoFileName::kGpl) | ZoFindFile::kind(ZoFileName::kXls));
  EXPECT_EQ(found(find, L"t\\*", true), (Names{L"t\\a\\b\\4.gpl"}));

  find.setKinds(0);
  ZoArray<ZoFileName> all;
  EXPECT_EQ(find.findAll(name(L"t\\*"), all, true), 0);
  EXPECT_EQ(all.entries(), 5u);
  EXPECT_EQ(find.open(ZoFileName(L"http://h/*"), true), 3);
  EXPECT_EQ(find.open(name(L"missing\\*")), 1);
  EXPECT_EQ(find.result(), 1);
  EXPECT_FALSE(find.next());
}

TEST_F(FindFile, HoldsOneSearchALevelAndClosesThem) {
  ZoFindFile warmUp;
  found(warmUp, L"t\\*", true);
  const unsigned long before = openHandles();
  {
    ZoFindFile find;
    ASSERT_EQ(find.open(name(L"t\\\x44F.*"), true), 0);
    ASSERT_TRUE(find.next());
    EXPECT_LE(openHandles(), before + 3);
    ASSERT_EQ(find.open(name(L"t\\*")), 0) << "ends the one before";
    ASSERT_TRUE(find.next());
  }
  EXPECT_EQ(openHandles(), before);
}

TEST_F(FindFile, AFolderThatCannotBeReadIsLeftOutAndTold) {
  FaultyFiles files;
  ZoFindFile find;
  files.arm({.fault = Fault::fail, .call = "findFirst", .nth = 2, .error = ERROR_ACCESS_DENIED});
  const Names names = found(find, L"t\\*.dwg", true);
  EXPECT_TRUE(files.met());
  EXPECT_GE(names.size(), 1u);
  EXPECT_EQ(find.result(), 1);
  EXPECT_EQ(ZoSystem::fileSystem().errorTxt().view(), messageOf(ERROR_ACCESS_DENIED));
  files.arm({.fault = Fault::fail, .call = "findNext", .nth = 3, .error = ERROR_CRC});
  found(find, L"t\\*", true);
  EXPECT_EQ(find.result(), 1) << "broke off in the middle";
  files.arm({});
  EXPECT_EQ(found(find, L"t\\*", true).size(), 5u);
  EXPECT_EQ(find.result(), 0) << "of this search";
}

}  // namespace
}  // namespace zo::test
