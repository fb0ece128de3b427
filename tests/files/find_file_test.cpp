// Finding files in a folder of known content. (remote_test.cpp finds on a server.)
#include <zo/files/find_file.h>

#include <sstream>

#include "files/file_fixture.h"
#include "names/wildcard.h"
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
        EXPECT_EQ(fitsWildcard(one, c.pattern), expected) << ::testing::PrintToString(one);
    }
  }
}

class FindFile : public FileTest {
 protected:
  FindFile() {
    for (const wchar_t* folder : {L"t\\a\\b", L"t\\empty"})
      std::filesystem::create_directories(folder_.path() / folder);
    for (const wchar_t* file : {L"t\\1.dwg", L"t\\2.txt", L"t\\a\\3.DWG", L"t\\a\\b\\\x44F.gpl"})
      put(name(file), "12345");
  }
  // What a search finds below the test's folder, sorted.
  Names found(const wchar_t* pattern, bool subfolders) {
    Names names;
    EXPECT_EQ(find.open(name(pattern), subfolders), 0);
    while (find.next()) names.emplace_back(find.path().substr(name(L"").fullNameSize()));
    std::sort(names.begin(), names.end());
    return names;
  }
  ZoFindFile find;
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
  const std::vector<Case> cases = {
      Case{L"t\\*.dwg", true, {L"t\\1.dwg", L"t\\a\\3.DWG"}},
      Case{L"t\\", false, {L"t\\1.dwg", L"t\\2.txt"}},
      Case{L"t\\missing", true, {}},  // none is no failure
      Case{L"t\\*", true, {L"t\\a", L"t\\a\\b", L"t\\empty"}, kFolder, 0},
      Case{L"t\\*", false, {L"t\\1.dwg", L"t\\2.txt", L"t\\a", L"t\\empty"}, 0, 0},
      Case{L"t\\*", false, {L"t\\2.txt"}, 0, kReadOnly | kFolder},
      Case{L"t\\*", true, {L"t\\a\\b\\\x44F.gpl"}, 0, kFolder, ZoFindFile::kind(ZoFileName::kGpl)}};
  for (const Case& c : cases) {
    find.setAttributes(c.required, c.excluded);
    find.setKinds(c.kinds);
    EXPECT_EQ(found(c.pattern, c.subfolders), c.found) << &c - cases.data();
    EXPECT_EQ(find.result(), 0);
  }
}

TEST_F(FindFile, AFolderThatCannotBeReadIsLeftOutAndToldAndNoSearchStaysOpen) {
  EXPECT_EQ(found(L"t\\*", true).size(), 4u);
  const unsigned long before = openHandles();
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "findFirst", .nth = 2, .error = ERROR_ACCESS_DENIED});
  EXPECT_GE(found(L"t\\*", true).size(), 2u);
  EXPECT_EQ(find.result(), 1);
  expectError(ERROR_ACCESS_DENIED);
  files.arm({.fault = Fault::fail, .call = "findNext", .nth = 3, .error = ERROR_CRC});
  found(L"t\\*", true);
  EXPECT_EQ(find.result(), 1) << "broke off in the middle";
  ASSERT_EQ(find.open(name(L"t\\\x44F.*"), true), 0);
  ASSERT_TRUE(find.next());
  EXPECT_EQ(found(L"t\\*", false).size(), 2u) << "ends the one before";
  EXPECT_EQ(openHandles(), before);
}

}  // namespace
}  // namespace zo::test
