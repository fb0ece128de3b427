// Changing, sharing, computing and comparing file names.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/names/file_name.h>

#include <functional>
#include <utility>
#include <vector>

#include "names/file_name_model.h"

namespace {

using names::expectParts;
using names::modelParse;
using names::shown;

struct Edit {
  const wchar_t *before, *text;
  int result;
  const wchar_t* after;
};

// After an edit the parts are those of the whole name.
void expectEdits(int (ZoFileName::*edit)(const wchar_t*), std::initializer_list<Edit> cases) {
  for (const Edit& c : cases) {
    SCOPED_TRACE(shown(c.before) + " + " + (c.text ? shown(c.text) : "null"));
    ZoFileName name(c.before);
    EXPECT_EQ((name.*edit)(c.text), c.result);
    expectParts(name, modelParse(c.after));
  }
}

TEST(FileNameEdit, APartIsReplacedAndTheWholeSplitAnew) {
  expectEdits(&ZoFileName::setDrive,
              {Edit{L"C:\\a\\b.c", L"D", 0, L"D:\\a\\b.c"}, Edit{L"C:\\a", L"D:", 0, L"D:\\a"},
               Edit{L"C:b", nullptr, 0, L"b"}, Edit{L"", L"c", 0, L"c:"},
               Edit{L"\\\\s\\t\\a\\b.c", L"D", 0, L"D:\\a\\b.c"},
               Edit{L"\\\\s\\t", L"D", 0, L"D:\\"}, Edit{L"http://h/a/b.c", L"D", 0, L"D:/a/b.c"},
               Edit{L"cd://l/a", L"", 0, L"cd://l/a"}, Edit{L"C:\\a", L"1", 7, L"C:\\a"},
               Edit{L"C:\\a", L"D:\\", 7, L"C:\\a"}, Edit{L"$M'\\a", L"D", 7, L"$M'\\a"}});
  expectEdits(&ZoFileName::setDirectory,
              {Edit{L"C:\\a\\b.c", L"x/", 0, L"C:x/b.c"}, Edit{L"b.c", L"x", 0, L"x\\b.c"},
               Edit{L"a\\b", nullptr, 0, L"b"}, Edit{L"b", L"\\\\s\\t", 0, L"\\\\s\\t\\b"},
               Edit{L"http://h/a/b", L"http://g/x", 0, L"http://g/x/b"},
               Edit{L"$M'\\a\\b", L"x", 0, L"$M'\\x\\b"}, Edit{L"a\\b", L"x*", 7, L"x*\\b"},
               Edit{L"a\\b", L"x|", 7, L"a\\b"}, Edit{L"a\\b", L"$x", 1, L"a\\b"}});
  expectEdits(
      &ZoFileName::setFileName,
      {Edit{L"C:\\a\\b.c", L"x.y", 0, L"C:\\a\\x.y.c"}, Edit{L"", L"a.b", 0, L"a.b"},
       Edit{L"b.c", nullptr, 0, L".c"}, Edit{L"\\\\s\\t", L"x", 0, L"\\\\s\\t\\x"},
       Edit{L"http://h.com", L"x:y", 0, L"http://h.com/x:y"}, Edit{L"b", L"x ", 8, L"x "},
       Edit{L"b", L"x:y", 7, L"b"}, Edit{L"b", L"x\\y", 7, L"b"}, Edit{L"b", L"x*", 7, L"b"},
       Edit{L"b", L"\"x\"", 7, L"b"}, Edit{L"b.c", L"$x", 1, L"b.c"}});
  expectEdits(&ZoFileName::setExtension,
              {Edit{L"C:\\a\\b.c", L".x", 0, L"C:\\a\\b.x"}, Edit{L"b", L"x.y", 0, L"b.x.y"},
               Edit{L"b.c", L"", 0, L"b"}, Edit{L"http://h/b.c", L":x", 7, L"http://h/b.c"},
               Edit{L"b.c", L"x/y", 7, L"b.c"}, Edit{L"b.c", L".", 9, L"b."}});
  expectEdits(&ZoFileName::appendDirectory,
              {Edit{L"C:\\a\\b.c", L"x", 0, L"C:\\a\\x\\b.c"}, Edit{L"b.c", L"\\x/", 0, L"x\\b.c"},
               Edit{L"C:b", L"x\\y", 0, L"C:x\\y\\b"}, Edit{L"http://h", L"x", 0, L"http://h/x/"},
               Edit{L"\\\\s\\t", L"x", 0, L"\\\\s\\t\\x\\"}, Edit{L"a\\b", nullptr, 1, L"a\\b"},
               Edit{L"a\\b", L"//", 1, L"a\\b"}, Edit{L"a\\b", L"x|", 7, L"a\\b"}});
  ZoFileName self(L"C:\\a\\b.c");
  EXPECT_EQ(self.setFileName(self.extension() + 1), 0) << "a text of the name itself";
  EXPECT_EQ(self.setFullName(self.fullName() + 2), 0);
  EXPECT_STREQ(self.fullName(), L"\\a\\c.c");
}

// A copy that is walked through is not changed: its texts stay, whatever becomes of the other one.
TEST(FileNameEdit, AWalkLeavesTheTextsWhereTheyAre) {
  ZoFileName other(L"$M'\\first\\second\\file.ext");
  ZoFileName walked(other);
  const wchar_t* const texts[] = {walked.macro(),     walked.directory(), walked.fileName(),
                                  walked.extension(), walked.fullName(),  walked.fileNameExt()};
  EXPECT_STREQ(walked.nextDirPart(), L"first");
  EXPECT_EQ(other.setFullName(L"D:\\another name\\that is longer\\0123456789\\0123456789.x"), 0);
  const wchar_t* const kept[] = {
      L"M", L"\\first\\second\\", L"file", L".ext", L"$M'\\first\\second\\file.ext", L"file.ext"};
  for (size_t i = 0; i < std::size(texts); ++i) EXPECT_STREQ(texts[i], kept[i]);
  EXPECT_EQ(walked.directory(), texts[1]);
}

TEST(FileNameEdit, DirectoryLevelsAreWalkedAndRemoved) {
  struct Case {
    const wchar_t* text;
    std::vector<std::wstring> levels;
    const wchar_t* shortened;  // null when there is nothing to remove
  };
  for (const Case& c :
       {Case{L"C:\\a\\b\\f.x", {L"a", L"b"}, L"C:\\a\\f.x"}, Case{L"C:a\\f", {L"a"}, L"C:f"},
        Case{L"a\\\\..//b/f", {L"a", L"..", L"b"}, L"a\\\\..//f"}, Case{L"\\a\\", {L"a"}, L"\\"},
        Case{L"\\\\s\\t\\a\\f", {L"a"}, L"\\\\s\\t\\f"}, Case{L"cd://l/a/f", {L"a"}, L"cd://l/f"},
        Case{L"http://h/a.b/c/f", {L"a.b", L"c"}, L"http://h/a.b/f"},
        Case{L"$M'\\a\\f", {L"a"}, L"$M'\\f"}, Case{L"C:\\f", {}, nullptr},
        Case{L"\\\\s\\t", {}, nullptr}, Case{L"http://h", {}, nullptr},
        Case{L"cd://l//", {}, nullptr}, Case{L"mailto:a/b/c", {}, nullptr},
        Case{L"", {}, nullptr}}) {
    SCOPED_TRACE(shown(c.text));
    ZoFileName name(c.text);
    ZoArray<ZoString> levels = {L"old"};
    EXPECT_EQ(name.getDirParts(levels), 0);
    EXPECT_TRUE(std::equal(levels.begin(), levels.end(), c.levels.begin(), c.levels.end()));
    std::vector<std::wstring> walked;
    while (const wchar_t* level = name.nextDirPart()) walked.push_back(level);
    EXPECT_EQ(walked, c.levels);
    EXPECT_EQ(name.removeLastDir(), c.shortened ? 0 : 1);
    expectParts(name, modelParse(c.shortened ? c.shortened : c.text));
  }
}

TEST(FileNameMacro, TheValueStandsInThePlaceOfTheMacro) {
  struct Case {
    const wchar_t *before, *macro, *value;
    int result;
    const wchar_t *whole, *path, *reset;
  };
  for (const Case& c :
       {Case{L"\\a\\f.x", L"LIB", L"C:\\r\\", 0, L"C:\\r\\a\\f.x", L"\\a\\", L"C:\\r\\a\\f.x"},
        Case{L"c:/R/a/f", L"LIB", L"C:\\r", 0, L"C:\\r/a/f", L"/a/", L"C:\\r/a/f"},
        Case{L"C:\\r", L"LIB", L"C:\\r", 0, L"C:\\r\\", L"\\", L"C:\\r\\"},
        Case{L"http://h/x/y", L"WEB", L"http://h", 0, L"http://h/x/y", L"/x/", L"http://h/x/y"},
        Case{L"$OLD'\\a\\f", L"LIB", L"C:\\r", 0, L"C:\\r\\a\\f", L"\\a\\", L"C:\\r\\a\\f"},
        Case{L"a\\f", L"LIB", nullptr, 0, L"$LIB'\\a\\f", L"\\a\\", L"\\a\\f"},
        Case{L"a\\f", L"LIB", L"\\", 0, L"\\a\\f", L"\\a\\", L"\\a\\f"},
        Case{L"C:\\root\\f", L"LIB", L"C:\\r", 1, L"C:\\root\\f", nullptr, nullptr},
        Case{L"f", L"", L"C:\\r", 1, L"f", nullptr, nullptr},
        Case{L"f", L"a'b", L"C:\\r", 7, L"f", nullptr, nullptr}}) {
    SCOPED_TRACE(shown(c.before));
    ZoFileName name(c.before);
    EXPECT_EQ(name.setMacro(c.macro, c.value), c.result);
    EXPECT_EQ(std::wstring(name.view()), c.whole);
    EXPECT_EQ(name.hasMacro(), c.path != nullptr);
    if (!c.path) continue;
    EXPECT_STREQ(name.macro(), c.macro);
    EXPECT_STREQ(name.directory(), c.path);
    EXPECT_FALSE(name.isRelativ());
    EXPECT_EQ(name.resetMacro(), 0);
    expectParts(name, modelParse(c.reset));
    EXPECT_EQ(name.resetMacro(), 1);
  }
}

TEST(FileNameMacro, PartsChangeBelowTheMacroAndCopiesKeepItsValue) {
  ZoFileName name(L"a\\f.x");
  ASSERT_EQ(name.setMacro(L"LIB", L"C:\\r"), 0);
  ZoFileName copy(name);
  EXPECT_EQ(copy.setFileName(L"g"), 0);
  EXPECT_EQ(copy.appendDirectory(L"b"), 0);
  EXPECT_STREQ(copy.fullName(), L"C:\\r\\a\\b\\g.x");
  EXPECT_EQ(copy.resetMacro(L"D:\\other\\"), 0);
  expectParts(copy, modelParse(L"D:\\other\\a\\b\\g.x"));
  EXPECT_STREQ(name.fullName(), L"C:\\r\\a\\f.x");
  EXPECT_EQ(name.resetMacro(L"xy:"), 7);
  EXPECT_TRUE(name.hasMacro()) << "no name comes of it";
}

TEST(FileNameSharing, AChangeThroughAnyDoorLeavesTheCopyAlone) {
  using Change = void (*)(ZoFileName&);
  using N = ZoFileName&;
  const Change changes[] = {[](N n) { EXPECT_EQ(n.setFullName(L"x"), 0); },
                            [](N n) { n.empty(); },
                            [](N n) { n.toUpper(); },
                            [](N n) { EXPECT_EQ(n.setDrive(L"D"), 0); },
                            [](N n) { EXPECT_EQ(n.setExtension(L"x"), 0); },
                            [](N n) { EXPECT_EQ(n.makePath(L"", L"", L"x", L""), 0); },
                            [](N n) { EXPECT_EQ(n.appendDirectory(L"x"), 0); },
                            [](N n) { EXPECT_EQ(n.removeLastDir(), 0); },
                            [](N n) { EXPECT_EQ(n.setMacro(L"x", L"C:\\Dir"), 0); },
                            [](N n) { n.setLocalAlias(ZoFileName(L"x")); },
                            [](N n) { EXPECT_STREQ(n.nextDirPart(), L"Dir"); },
                            [](N n) { ZoFileName(std::move(n)); }};
  const std::wstring text = L"C:\\Dir\\Sub\\File.Ext";
  for (const Change change : changes) {
    ZoFileName original(text.c_str());
    ZoFileName copy(original);
    EXPECT_EQ(copy.fullName(), original.fullName()) << "one storage";
    change(copy);
    expectParts(original, modelParse(text));
    EXPECT_TRUE(original.localAlias().isEmpty());
    EXPECT_STREQ(original.nextDirPart(), L"Dir");
  }
}

TEST(FileNameQuestion, DevicesPlacesOutsideAndImpossibleNamesAreRecognised) {
  const std::wstring long255(255, L'n');
  const auto expectAnswers = [](bool device, bool contained, bool possible,
                                const std::vector<std::wstring>& texts) {
    for (const std::wstring& text : texts) {
      SCOPED_TRACE(shown(text));
      const ZoFileName name(text.c_str());
      EXPECT_EQ(name.hasDeviceName(), device);
      EXPECT_EQ(name.isContained(), contained);
      EXPECT_EQ(name.possibleOnVolume(), possible);
    }
  };
  expectAnswers(false, true, true,
                {L"a\\b.c", L"a\\..\\b", L".\\a", L"a\\b\\", L"com0", L"com10", L"console", L"xcon",
                 L"a.con", L" con", long255 + L"\\a", std::wstring(254, L'n') + L"\\" + long255});
  expectAnswers(false, false, true,
                {L"..", L"a\\..\\..\\b", L"..\\a\\b", L"\\a", L"C:\\a", L"C:a", L"a:b",
                 L"\\\\s\\t\\a", L"http://h/con./ ", L"cd://l/a", L"$M'a", L"\\\\con\\nul\\a"});
  expectAnswers(false, false, false,
                {L"mailto:a", L"", L"a*", L"ab\\c:d", L"a\\b ", L"a.\\b", L".. \\b", L"a\\...\\b",
                 L"\\\\", long255 + L"n\\a"});
  expectAnswers(true, false, false,
                {L"con", L"CON.txt", L"a\\nul\\b", L"C:\\Prn", L"aux .a.b", L"com1", L"lpt9.x",
                 L"com\xB9", L"lpt\xB3", L"conin$", L"CONOUT$", L"clock$"});
}

TEST(FileNameComputed, NormalizedNamesHaveNoSuperfluousLevels) {
  struct Case {
    const wchar_t *text, *normal;
  };
  for (const Case& c :
       {Case{L"C:/a\\.\\b/../c.x", L"C:\\a\\c.x"}, Case{L"C:\\..\\..\\a", L"C:\\a"},
        Case{L"C:..\\a", L"C:..\\a"}, Case{L"a//b\\\\c/", L"a\\b\\c\\"},
        Case{L"a\\..\\..\\b", L"..\\b"}, Case{L"a\\..", L".\\"}, Case{L"", L""},
        Case{L"//s\\t//a/../../b", L"\\\\s\\t\\b"}, Case{L"http:\\\\h/a/../b\\c", L"http://h/b/c"},
        Case{L"CD:\\\\l\\a\\..\\..\\b", L"CD://l/b"}, Case{L"$M'a/../../b", L"$M'\\b"},
        Case{L"a\\..\\$b", L".\\$b"}, Case{L"mailto:a/../b", L"mailto:a/../b"}}) {
    SCOPED_TRACE(shown(c.text));
    expectParts(ZoFileName(c.text).normalized(), modelParse(c.normal));
  }
}

TEST(FileNameComputed, RelativeNamesLeadFromTheBaseToTheName) {
  struct Case {
    const wchar_t *text, *base, *relative;
  };
  for (const Case& c :
       {Case{L"C:\\a\\b\\f.x", L"C:\\a\\g.y", L"b\\f.x"}, Case{L"C:\\a\\", L"C:\\a\\", L".\\"},
        Case{L"C:\\A\\f", L"c:\\a\\b\\c\\", L"..\\..\\f"}, Case{L"..\\f", L"b\\", L"..\\..\\f"},
        Case{L"\\\\s\\t\\a", L"\\\\S\\T\\b\\", L"..\\a"},
        Case{L"http://h/a/b", L"http://h/c/", L"../a/b"},
        Case{L"$M'\\a\\f", L"$m'\\b\\", L"..\\a\\f"}, Case{L"C:\\a\\$f", L"C:\\a\\", L".\\$f"},
        // None: the normalized name itself.
        Case{L"C:\\a\\.\\f", L"D:\\a\\", L"C:\\a\\f"}, Case{L"C:a", L"C:\\a\\", L"C:a"},
        Case{L"f", L"..\\", L"f"}, Case{L"http://h/a", L"http://g/", L"http://h/a"},
        Case{L"http://h/a/c:/x", L"http://h/a/", L"http://h/a/c:/x"},
        Case{L"$M'\\a", L"\\b\\", L"$M'\\a"}}) {
    SCOPED_TRACE(shown(c.text) + " from " + shown(c.base));
    const ZoFileName name(c.text);
    const ZoFileName base(c.base);
    const ZoFileName relative = name.relativeTo(base);
    EXPECT_STREQ(relative.fullName(), c.relative);
    const bool isNone = relative == name.normalized();
    EXPECT_TRUE(isNone || relative.resolvedAgainst(base) == name.normalized());
  }
}

TEST(FileNameComputed, ResolvedNamesStartAtTheBase) {
  struct Case {
    const wchar_t *text, *base, *resolved;
  };
  for (const Case& c :
       {Case{L"b\\f", L"C:\\a\\x.y", L"C:\\a\\b\\f"}, Case{L"..\\f", L"C:\\a\\", L"C:\\f"},
        Case{L"..\\..\\f", L"C:\\a\\", L"C:\\f"}, Case{L"\\f", L"C:\\a\\", L"C:\\f"},
        Case{L"C:f", L"c:\\a\\", L"c:\\a\\f"}, Case{L"C:f", L"D:\\a\\", L"C:f"},
        Case{L"D:\\f", L"C:\\a\\", L"D:\\f"}, Case{L"f", L"\\\\s\\t", L"\\\\s\\t\\f"},
        Case{L"\\f", L"\\\\s\\t\\a\\", L"\\\\s\\t\\f"},
        Case{L"../f", L"http://h/a/b/", L"http://h/a/f"}, Case{L"f", L"cd://l", L"cd://l/f"},
        Case{L"f", L"$M'\\a\\", L"$M'\\a\\f"}, Case{L"$N'\\f", L"C:\\a\\", L"$N'\\f"},
        Case{L"f", L"C:", L"C:f"}, Case{L"f", L"", L"f"}, Case{L"", L"C:\\a\\x", L"C:\\a\\"}}) {
    SCOPED_TRACE(shown(c.text) + " from " + shown(c.base));
    EXPECT_STREQ(ZoFileName(c.text).resolvedAgainst(ZoFileName(c.base)).fullName(), c.resolved);
  }
}

TEST(FileNameCompare, WholeNamesCompareIgnoringCaseAndHashAlike) {
  const std::wstring x62(62, L'x');
  // Lower case decides: _ precedes a. The long ones are around the length compared in one go.
  const std::pair<int, std::wstring> names[] = {{0, L""},
                                                {1, L"a"},
                                                {2, L"a_b"},
                                                {4, L"abcdefgh_abcdefgh\xC4\x416"},
                                                {5, L"b\\\x3A9"},
                                                {5, L"b\\\x3C9"},
                                                {4, L"ABCDEFGH_ABCDEFGH\xE4\x436"},
                                                {6, L"c" + x62 + L"x"},
                                                {6, L"C" + x62 + L"X"},
                                                {7, L"c" + x62 + L"xy"},
                                                {7, L"c" + x62 + L"xY"},
                                                {8, L"c" + x62 + L"z"}};
  for (const auto& [rank, text] : names) {
    for (const auto& [otherRank, otherText] : names) {
      SCOPED_TRACE(shown(text) + " " + shown(otherText));
      const ZoFileName a(text.c_str()), b(otherText.c_str());
      EXPECT_EQ(a == b, rank == otherRank);
      EXPECT_EQ(a < b, rank < otherRank);
      EXPECT_EQ(a.isEqual(b, true), text == otherText);
      EXPECT_EQ(std::hash<ZoFileName>()(a) == std::hash<ZoFileName>()(b), rank == otherRank);
    }
  }
}

}  // namespace
