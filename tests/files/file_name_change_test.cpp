// Changing, sharing, computing and comparing file names.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/files/file_name.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

#include "files/file_name_model.h"

namespace {

using names::expectParts;
using names::modelParse;
using names::set;
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

// ---- Parts ----

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
  expectEdits(&ZoFileName::setFileNameExt,
              {Edit{L"C:\\a\\b.c", L"x", 0, L"C:\\a\\x"}, Edit{L"C:\\a\\b.c", L"", 0, L"C:\\a\\"},
               Edit{L"http://h/b", L"x:1.y", 0, L"http://h/x:1.y"},
               Edit{L"http://h/b", L"x.y:1", 7, L"http://h/b"}, Edit{L"b.c", L"x\\y", 7, L"b.c"}});
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

TEST(FileNameEdit, MakePathTakesAllFourParts) {
  struct Case {
    const wchar_t *drive, *directory, *fileName, *extension;
    int result;
    const wchar_t* whole;
  };
  for (const Case& c :
       {Case{L"C", L"\\a", L"b.x", L"c", 0, L"C:\\a\\b.x.c"},
        Case{nullptr, nullptr, nullptr, nullptr, 0, L""},
        Case{L"", L"a", nullptr, L"c", 0, L"a\\.c"},
        Case{nullptr, L"http://h/x", L"b:1", L"c", 0, L"http://h/x/b:1.c"},
        Case{L"C", L"http://h/x", L"b", L"c", 7, L"C:http://h/x/b.c"},
        Case{L"1", L"a", L"b", L"c", 7, L"old"}, Case{L"C", L"<", L"b", L"c", 7, L"old"},
        Case{L"C", L"a", L"b:", L"c", 7, L"old"}, Case{L"C", L"a", L"b", L":", 7, L"old"}}) {
    SCOPED_TRACE(shown(c.whole));
    ZoFileName name(L"old");
    EXPECT_EQ(name.makePath(c.drive, c.directory, c.fileName, c.extension), c.result);
    expectParts(name, modelParse(c.whole));
  }
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
    for (const bool restart : {false, true}) {
      std::vector<std::wstring> walked;
      for (const wchar_t* level = name.nextDirPart(restart); level; level = name.nextDirPart())
        walked.push_back(level);
      EXPECT_EQ(walked, c.levels);
      EXPECT_EQ(name.nextDirPart(), nullptr) << "stays at the end";
    }
    EXPECT_EQ(name.removeLastDir(), c.shortened ? 0 : 1);
    expectParts(name, modelParse(c.shortened ? c.shortened : c.text));
  }
  ZoFileName name(L"a\\b\\c\\f");
  name.nextDirPart();
  ZoFileName copy(name);
  EXPECT_STREQ(copy.nextDirPart(), L"b");
  EXPECT_STREQ(name.nextDirPart(), L"b") << "copies walk on their own";
  name.setFileName(L"g");
  EXPECT_STREQ(name.nextDirPart(), L"a") << "a change starts again";
  ZoArray<ZoString> full(1);
  full.setGrowSize(0);
  EXPECT_EQ(name.getDirParts(full), 1);
}

TEST(FileNameEdit, DelimiterCaseAndEmptying) {
  ZoFileName name(L"a\\f");
  EXPECT_EQ(name.setDelimiter(L'/'), 0);
  EXPECT_STREQ(name.fullName(), L"a\\f") << "for levels to come";
  name.appendDirectory(L"b");
  name.setFileName(L"g");
  name.appendDirectory(L"c");
  EXPECT_STREQ(name.fullName(), L"a\\b/c/g");
  name.setFullName(L"$Lib'\\Dir\\File.Ext");
  EXPECT_EQ(name.delimiter(), L'\\') << "a new name has its own";
  name.setMacro(L"Lib", L"C:\\Root");
  EXPECT_EQ(name.toUpper(), 0);
  EXPECT_STREQ(name.fullName(), L"C:\\ROOT\\DIR\\FILE.EXT");
  EXPECT_STREQ(name.macro(), L"LIB");
  EXPECT_EQ(name.toLower(), 0);
  EXPECT_STREQ(name.fileNameExt(), L"file.ext");
  name.resetMacro(L"");
  expectParts(name, modelParse(L"\\dir\\file.ext"));
  EXPECT_EQ(name.toUpper(), 0);
  expectParts(name, modelParse(L"\\DIR\\FILE.EXT"));
  EXPECT_EQ(name.empty(), 0);
  expectParts(name, {});
}

// ---- Macros and alias ----

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
  name.setMacro(L"LIB", L"C:\\r");
  ZoFileName copy(name);
  EXPECT_EQ(copy.setFileName(L"g"), 0);
  EXPECT_EQ(copy.appendDirectory(L"b"), 0);
  EXPECT_STREQ(copy.fullName(), L"C:\\r\\a\\b\\g.x");
  EXPECT_STREQ(copy.fileNameExt(), L"g.x");
  EXPECT_EQ(copy.makePath(L"", L"n", L"h", L""), 0);
  EXPECT_STREQ(copy.fullName(), L"C:\\r\\n\\h");
  EXPECT_EQ(copy.resetMacro(L"D:\\other\\"), 0);
  expectParts(copy, modelParse(L"D:\\other\\n\\h"));
  EXPECT_STREQ(name.fullName(), L"C:\\r\\a\\f.x");
  EXPECT_EQ(name.resetMacro(L"xy:"), 7);
  EXPECT_TRUE(name.hasMacro()) << "no name comes of it";
  name.setFullName(L"b");
  EXPECT_FALSE(name.hasMacro());
}

TEST(FileNameAlias, GoesWithTheNameItWasSetFor) {
  ZoFileName name(L"http://h/f");
  ZoFileName* alias = &name;
  EXPECT_EQ(name.getLocalAlias(alias), 1);
  EXPECT_EQ(alias, nullptr);
  EXPECT_EQ(name.setLocalAlias(ZoFileName(L"C:\\cache\\f")), 0);
  ZoFileName copy(name);
  ASSERT_EQ(copy.getLocalAlias(alias), 0);
  const std::unique_ptr<ZoFileName> owned(alias);
  EXPECT_EQ(*owned, L"C:\\cache\\f");
  copy.toUpper();
  copy.setDelimiter(L'\\');
  EXPECT_EQ(copy.localAlias(), L"C:\\cache\\f");
  copy.setFileName(L"g");
  EXPECT_TRUE(copy.localAlias().isEmpty());
  name.setLocalAlias(name);
  EXPECT_EQ(name.localAlias(), name);
  EXPECT_EQ(name.setLocalAlias(ZoFileName()), 0);
  EXPECT_EQ(name.getLocalAlias(alias), 1);
}

// ---- Sharing ----

TEST(FileNameSharing, AChangeThroughAnyDoorLeavesTheCopyAlone) {
  using Change = void (*)(ZoFileName&);
  using N = ZoFileName&;
  const Change changes[] = {[](N n) { n.setFullName(L"x"); },
                            [](N n) { n = L"x"; },
                            [](N n) { n = ZoString(L"x"); },
                            [](N n) { n = ZoFileName(L"x"); },
                            [](N n) { n.empty(); },
                            [](N n) { n.toLower(); },
                            [](N n) { n.toUpper(); },
                            [](N n) { n.setDrive(L"D"); },
                            [](N n) { n.setDirectory(L"x"); },
                            [](N n) { n.setFileName(L"x"); },
                            [](N n) { n.setExtension(L"x"); },
                            [](N n) { n.setFileNameExt(L"x"); },
                            [](N n) { n.makePath(L"", L"", L"x", L""); },
                            [](N n) { n.appendDirectory(L"x"); },
                            [](N n) { n.removeLastDir(); },
                            [](N n) { n.setDelimiter(L'/'); },
                            [](N n) { n.setMacro(L"x", L"C:\\Dir"); },
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
  const ZoFileName original(text.c_str());
  const ZoFileName deep = original.deepCopy();
  EXPECT_EQ(deep, original);
  EXPECT_NE(deep.fullName(), original.fullName());
  EXPECT_NE(deep.directory(), original.directory());
}

TEST(FileNameSharing, MovedFromNamesAreEmptyAndUsable) {
  ZoFileName from(L"C:\\a");
  const wchar_t* const text = from.fullName();
  ZoFileName to(std::move(from));
  ZoFileName second(std::move(from));
  expectParts(from, {});
  EXPECT_EQ(from.setFullName(L"b"), 0);
  EXPECT_STREQ(from.fullName(), L"b");
  expectParts(second, {});
  second = std::move(to);
  ZoFileName& self = second;
  second = std::move(self);
  second = self;
  EXPECT_EQ(second.fullName(), text);
  swap(second, from);
  EXPECT_EQ(from.fullName(), text);
  static_assert(std::is_nothrow_move_constructible_v<ZoFileName>);
  static_assert(std::is_nothrow_move_assignable_v<ZoFileName>);
}

// ---- Questions ----

TEST(FileNameQuestion, DevicesPlacesOutsideAndImpossibleNamesAreRecognised) {
  const std::wstring long255(255, L'n');
  struct Case {
    bool device, contained, possible;
    std::vector<std::wstring> texts;
  };
  const Case cases[] = {
      {false,
       true,
       true,
       {L"a\\b.c", L"a\\..\\b", L".\\a", L"a\\b\\", L"com0", L"com10", L"console", L"xcon",
        L"a.con", L" con", long255 + L"\\a", std::wstring(254, L'n') + L"\\" + long255}},
      {false,
       false,
       true,
       {L"..", L"a\\..\\..\\b", L"..\\a\\b", L"\\a", L"C:\\a", L"C:a", L"a:b", L"\\\\s\\t\\a",
        L"http://h/con./ ", L"cd://l/a", L"$M'a", L"\\\\con\\nul\\a"}},
      {false,
       false,
       false,
       {L"mailto:a", L"", L"a*", L"ab\\c:d", L"a\\b ", L"a.\\b", L".. \\b", L"a\\...\\b", L"\\\\",
        long255 + L"n\\a"}},
      {true,
       false,
       false,
       {L"con", L"CON.txt", L"a\\nul\\b", L"C:\\Prn", L"aux .a.b", L"com1", L"lpt9.x", L"com\xB9",
        L"lpt\xB3", L"conin$", L"CONOUT$", L"clock$"}}};
  for (const Case& c : cases) {
    for (const std::wstring& text : c.texts) {
      SCOPED_TRACE(shown(text));
      const ZoFileName name(text.c_str());
      EXPECT_EQ(name.hasDeviceName(), c.device);
      EXPECT_EQ(name.isContained(), c.contained);
      EXPECT_EQ(name.possibleOnVolume(), c.possible);
    }
  }
}

TEST(FileNameQuestion, IsAnsiIsWhatTheCodePageHolds) {
  EXPECT_TRUE(ZoFileName().isAnsi());
  for (unsigned int c = 1; c < 0x10000; c += c < 0x200 ? 1 : 37) {
    const wchar_t text[] = {L'a', static_cast<wchar_t>(c), L'b', 0};
    const std::unique_ptr<char[]> bytes(ZoString(text).getMBString());
    const bool escaped = std::string(bytes.get()).find("\\U+") != std::string::npos;
    EXPECT_EQ(ZoFileName(text).isAnsi(), !escaped) << c;
  }
  EXPECT_FALSE(ZoFileName(L"a\xD800").isAnsi());
  EXPECT_FALSE(ZoFileName(L"\xDC00\xD800").isAnsi());
}

// ---- Computed names ----

TEST(FileNameComputed, NormalizedNamesHaveNoSuperfluousLevels) {
  struct Case {
    const wchar_t *text, *normal;
  };
  for (const Case& c : {Case{L"C:/a\\.\\b/../c.x", L"C:\\a\\c.x"},
                        Case{L"C:\\..\\..\\a", L"C:\\a"},
                        Case{L"C:..\\a", L"C:..\\a"},
                        Case{L"C:a\\..", L"C:"},
                        Case{L"a//b\\\\c/", L"a\\b\\c\\"},
                        Case{L"a\\..\\..\\b", L"..\\b"},
                        Case{L"..\\..\\a", L"..\\..\\a"},
                        Case{L"a\\..", L".\\"},
                        Case{L"a\\b\\..", L"a\\"},
                        Case{L"a\\b\\.", L"a\\b\\"},
                        Case{L".", L".\\"},
                        Case{L"", L""},
                        Case{L"/..", L"\\"},
                        Case{L"//s\\t//a/../../b", L"\\\\s\\t\\b"},
                        Case{L"http:\\\\h/a/../b\\c", L"http://h/b/c"},
                        Case{L"http://..", L"http://.."},
                        Case{L"CD:\\\\l\\a\\..\\..\\b", L"CD://l/b"},
                        Case{L"$M'a/../../b", L"$M'\\b"},
                        Case{L"a\\..\\$b", L".\\$b"},
                        Case{L"mailto:a/../b", L"mailto:a/../b"}}) {
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
  ZoFileName base(L"a\\");
  base.setMacro(L"M", L"C:\\r");
  EXPECT_STREQ(ZoFileName(L"f").resolvedAgainst(base).fullName(), L"C:\\r\\a\\f");
  ZoFileName digit;
  set(digit, L"1:\\a\\", {.anyDrive = true});
  EXPECT_STREQ(ZoFileName(L"f").resolvedAgainst(digit).fullName(), L"1:\\a\\f");
}

// ---- Comparing and converting ----

TEST(FileNameCompare, WholeNamesCompareIgnoringCaseAndHashAlike) {
  const std::wstring x62(62, L'x');
  struct Ranked {
    int rank;
    std::wstring text;
  };
  // Lower case decides: _ precedes a. The long ones are around the length compared in one go.
  const Ranked names[] = {{0, L""},
                          {1, L"A"},
                          {1, L"a"},
                          {2, L"a_b"},
                          {3, L"ab"},
                          {3, L"aB"},
                          {4, L"abcdefgh"},
                          {4, L"ABCDEFGH"},
                          {5, L"abcdefgh\\"},
                          {6, L"abcdefgh_abcdefgh\xC4\x416"},
                          {6, L"ABCDEFGH_ABCDEFGH\xE4\x436"},
                          {7, L"abcdefgh_abcdefgh\xE4\x437"},
                          {8, L"b\\\xDF"},
                          {9, L"b\\\x3A9"},
                          {9, L"b\\\x3C9"},
                          {10, L"b\\\xD83D\xDE00"},
                          {11, L"c" + x62 + L"x"},
                          {11, L"C" + x62 + L"X"},
                          {12, L"c" + x62 + L"xy"},
                          {12, L"c" + x62 + L"xY"},
                          {13, L"c" + x62 + L"xz"},
                          {14, L"c" + x62 + L"z"}};
  for (const Ranked& left : names) {
    for (const Ranked& right : names) {
      SCOPED_TRACE(shown(left.text) + " " + shown(right.text));
      const ZoFileName a(left.text.c_str()), b(right.text.c_str());
      const bool equal = left.rank == right.rank, less = left.rank < right.rank;
      EXPECT_TRUE((a == b) == equal && (a != b) != equal && a.isEqual(b) == equal);
      EXPECT_TRUE((a < b) == less && (a >= b) != less && (b > a) == less && (b <= a) != less);
      EXPECT_EQ(a.isEqual(b, true), left.text == right.text);
      EXPECT_TRUE((a == right.text.c_str()) == equal && (a == ZoString(b)) == equal &&
                  (a == std::wstring_view(right.text)) == equal);
      EXPECT_EQ(std::hash<ZoFileName>()(a) == std::hash<ZoFileName>()(b), equal);
    }
  }
  ZoFileName below(L"x");
  below.setMacro(L"M", L"C:\\R");
  EXPECT_EQ(below, ZoFileName(L"c:\\r\\X")) << "the whole name is the expanded one";
  ZoHashDict<int, ZoFileName> sizes;
  EXPECT_EQ(sizes.insertAt(ZoFileName(L"C:\\x.dwg"), 5), 0);
  EXPECT_TRUE(sizes.contains(ZoFileName(L"c:\\X.DWG")));
  EXPECT_FALSE(sizes.contains(ZoFileName(L"c:\\X.DW")));
}

TEST(FileNameConvert, GoesToAndFromTheTextAndPathTypes) {
  const ZoFileName name(L"C:\\dir\\\x4E00.ext");
  const ZoString string = name;
  const wchar_t* const pointer = name;
  const std::wstring_view view = name;
  const auto path = static_cast<std::filesystem::path>(name);
  std::wostringstream stream;
  stream << name;
  EXPECT_EQ(string.data(), name.fullName()) << "one storage";
  EXPECT_EQ(pointer, name.fullName());
  EXPECT_EQ(view, L"C:\\dir\\\x4E00.ext");
  EXPECT_EQ(path.native(), view);
  EXPECT_EQ(stream.str(), view);
  EXPECT_EQ(ZoFileName(path), name);
  EXPECT_EQ(ZoFileName(view), name);
  EXPECT_EQ(name[3], L'd');
  EXPECT_EQ(name[name.fullNameSize()], 0);
  EXPECT_EQ(name[0xFFFFFFFF], 0);
}

}  // namespace
