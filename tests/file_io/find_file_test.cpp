// Finding files in a folder of known content. (remote_test.cpp finds on a server.)
#include <zo/files/find_file.h>
#include <zo/text/containers/array.h>

#include <sstream>

#include "file_io/file_fixture.h"
#include "files/wildcard.h"
#include "support/faulty_files.h"
#include "support/open_handles.h"

namespace zo::test {
namespace {

TEST(Wildcard, FitsAsThePlatformHasIt) {
  struct Case {
    const wchar_t *pattern, *fits, *doesNot;  // separated by blanks
  };
  for (const Case& c :
       {Case{L"*", L"a a.b .b", L""}, Case{L"*.*", L"a a.b .b", L""}, Case{L"", L"", L"a"},
        Case{L"*.dwg", L"a.dwg a.DWG a.b.dwg .dwg", L"a.dwgx a a.dw dwg"},
        Case{L"a?c", L"abc AXC", L"ac abbc"}, Case{L"*a*b*", L"ab xaxbx aab", L"ba a b"},
        Case{L"a.*", L"a a.b a.b.c", L"ab.c b"}, Case{L"a*.", L"a ab", L"a.b b a."},
        Case{L"\x416*", L"\x436z", L"z"},  // case of all letters
        Case{L"*aaab", L"aaaaaaaaaaaaaaaab", L"aaaaaaaaaaaaaaaaa"}}) {
    for (const bool expected : {true, false}) {
      std::wistringstream names(expected ? c.fits : c.doesNot);
      for (std::wstring one; names >> one;)
        EXPECT_EQ(fitsWildcard(one, c.pattern), expected)
            << ::testing::PrintToString(one) << ::testing::PrintToString(std::wstring(c.pattern));
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
    while (find.next()) {
      EXPECT_EQ(find.name().view(), find.path());
      EXPECT_EQ(find.fileNameExt(), std::wstring_view(find.name().fileNameExt()));
      EXPECT_TRUE(find.isDirectory() || find.size() == 5);
      names.emplace_back(find.path().substr(name(L"").fullNameSize()));
    }
    EXPECT_FALSE(find.next());
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(FindFile, FindsByPatternKindAndAttributes) {
  constexpr unsigned int kFolder = ZoFindFile::kDirectory, kReadOnly = FILE_ATTRIBUTE_READONLY;
  SetFileAttributesW(name(L"t\\1.dwg").fullName(), kReadOnly);
  struct Case {
    const wchar_t* pattern;
    bool subfolders;
    Names found;
    unsigned int required = 0, excluded = kFolder, kinds = 0;
  };
  const unsigned int gplOrXls =
      ZoFindFile::kind(ZoFileName::kGpl) | ZoFindFile::kind(ZoFileName::kXls);
  const std::vector<Case> cases = {
      Case{L"t\\*.dwg", false, {L"t\\1.dwg"}},
      Case{L"t\\", false, {L"t\\1.dwg", L"t\\2.txt"}},
      Case{L"t\\*.dwg", true, {L"t\\1.dwg", L"t\\a\\3.DWG", L"t\\a\\b\\\x44F.dwg"}},
      Case{L"t\\2.txt", false, {L"t\\2.txt"}},
      Case{L"t\\missing", true, {}},
      Case{L"t\\missing", false, {}},  // none is no failure
      Case{L"t\\*", true, {L"t\\a", L"t\\a\\b", L"t\\empty"}, kFolder, 0},
      Case{L"t\\a", false, {L"t\\a"}, kFolder, 0},
      Case{L"t\\*", false, {L"t\\1.dwg", L"t\\2.txt", L"t\\a", L"t\\empty"}, 0, 0},
      Case{L"t\\*", false, {L"t\\2.txt"}, 0, kReadOnly | kFolder},
      Case{L"t\\*", false, {L"t\\1.dwg"}, kReadOnly, 0},
      Case{L"t\\*", true, {L"t\\a\\b\\4.gpl"}, 0, kFolder, gplOrXls}};
  ZoFindFile find;
  for (const Case& c : cases) {
    find.setAttributes(c.required, c.excluded);
    find.setKinds(c.kinds);
    EXPECT_EQ(found(find, c.pattern, c.subfolders), c.found) << &c - cases.data();
    EXPECT_EQ(find.result(), 0);
  }
  ZoArray<ZoFileName> all;
  EXPECT_EQ(ZoFindFile().findAll(name(L"t\\*"), all, true), 0);
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
  EXPECT_GE(found(find, L"t\\*.dwg", true).size(), 1u);
  EXPECT_EQ(find.result(), 1);
  expectError(ERROR_ACCESS_DENIED);
  files.arm({.fault = Fault::fail, .call = "findNext", .nth = 3, .error = ERROR_CRC});
  found(find, L"t\\*", true);
  EXPECT_EQ(find.result(), 1) << "broke off in the middle";
  files.arm({});
  EXPECT_EQ(found(find, L"t\\*", true).size(), 5u);
  EXPECT_EQ(find.result(), 0) << "of this search";
}

}  // namespace
}  // namespace zo::test
