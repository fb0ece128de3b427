// How a file name is split and checked, and what is answered from its parts.
#include <gtest/gtest.h>
#include <zo/names/file_name.h>

#include <cwchar>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "names/file_name_model.h"

namespace {

using names::expectParts;
using names::modelParse;
using names::Options;
using names::Parts;
using names::set;
using names::shown;

#ifdef ZO_GUARDED
constexpr int kMutations = 2000;
#else
constexpr int kMutations = 200000;
#endif

// One of each form, and what stands around them.
const std::wstring kCorpus[] = {
    L"C:\\dir\\sub\\file.ext",
    L"c:file",
    L"dir/sub\\file.tar.gz",
    L"\\dir\\file",
    L"..\\a\\.\\b\\..",
    L"\\\\server\\share\\dir\\file.ext",
    L"\\\\server",
    L"\\\\server\\\\dir",
    L"cd://label/dir/file.gdb",
    L"CD:\\\\label\\x.y",
    L"http://host.com/dir/file.html",
    L"ftp://u:p@h:21/x/y.z",
    L"mailto:someone@host",
    L"\"C:\\a dir\\b c.txt\"",
    L"$MACRO'\\dir\\file.ext",
    L"$MACRO\"dir\\file.ext\"",
    L"$A\"B'",
    L"$'x",
    L"",
    L"name .ext",
    L"\xE4\x4E00\xD83D\xDE00.\xDF",
};

void expectLikeModel(const std::wstring& text, bool wildcards, bool anyDrive) {
  const Parts expected = modelParse(text, wildcards, anyDrive);
  ZoFileName name(L"C:\\what\\was.before");
  const int result = set(name, text, {.wildcards = wildcards, .anyDrive = anyDrive});
  EXPECT_EQ(result, expected.result);
  expectParts(name, expected);
}

// Each at the edge of a rule.
TEST(FileNameParse, FollowsTheRulesWithEveryOption) {
  for (const wchar_t* text : {L".",
                              L"..",
                              L"d\\..",
                              L"a .b",
                              L"d. \\a",
                              L"http://a*/b?/c",
                              L"http://h/a:b",
                              L"http://h:80",
                              L"cd://a?*b/c",
                              L"cd://<|/d",
                              L"C:\\a*.?x",
                              L"http://h/a?",
                              L"1:\\a",
                              L"1:",
                              L"::\\a",
                              L"C:\\a*\\b",
                              L"a\x1F",
                              L"C:a:b",
                              L"http://h/a.b:c",
                              L"http://w.h.com:80",
                              L"cd://a:b",
                              L"\\\\s*\\t\\u",
                              L"ab:c",
                              L"ab:/x/",
                              L"9p://x",
                              L"\\\\",
                              L"cd://",
                              L"\"",
                              L"\"\"",
                              L"\"a\"b",
                              L"$a'x:y",
                              L"<. ",
                              L"\\\\\\s.",
                              L"$a",
                              L"\"$a\"",
                              L"$",
                              L"a ",
                              L"a. ",
                              L"a.b ",
                              L"a.",
                              L"a...",
                              L"a .",
                              L"...",
                              L"D:\\a|b\\c?.d",
                              L"$M'ab:c"}) {
    SCOPED_TRACE(shown(text));
    for (const bool wildcards : {false, true}) {
      expectLikeModel(text, wildcards, false);
      expectLikeModel(text, wildcards, true);
    }
  }
}

TEST(FileNameParse, DelimitersAndFinalDelimiterAreWrittenOnRequest) {
  struct Case {
    const wchar_t *text, *own, *directory;
  };
  for (const Case& c :
       {Case{L"C:", L"C:", L"C:"}, Case{L"a/", L"a\\", L"a/"}, Case{L"a.b", L"a.b", L"a.b\\"},
        Case{L"http:\\\\h/x", L"http://h/x", L"http:\\\\h/x/"},
        Case{L"cd:\\\\l", L"cd://l", L"cd:\\\\l/"}, Case{L"//s/t", L"\\\\s\\t", L"//s/t\\"},
        Case{L"$M'a/b", L"$M'\\a\\b", L"$M'\\a/b\\"}, Case{L"", L"", L""}}) {
    ZoFileName name;
    EXPECT_EQ(set(name, c.text, {.ownDelimiters = true}), 0);
    EXPECT_STREQ(name.fullName(), c.own);
    EXPECT_EQ(set(name, c.text, {.asDirectory = true}), 0);
    EXPECT_STREQ(name.fullName(), c.directory);
  }
  ZoFileName kept;  // the options hold for later changes
  set(kept, L"a/b", {.ownDelimiters = true, .wildcards = true});
  EXPECT_EQ(kept.setDirectory(L"x/y"), 0);
  EXPECT_EQ(kept.setFileName(L"*"), 0);
  EXPECT_STREQ(kept.fullName(), L"x\\y\\*");
}

// The path is drive, directory, file name and extension; the macro does not count.
TEST(FileNameParse, PathsOf261CharactersAreTooLong) {
  for (const std::wstring start :
       {L"", L"\\", L"C:\\d\\", L"\\\\s\\t\\", L"http://h/", L"cd://l/"}) {
    for (const std::wstring end : {L"", L".", L".e", L"\\", L" "}) {
      for (const size_t length : {259, 260, 261, 262, 1000, 32767, 40000}) {
        const std::wstring text =
            start + std::wstring(length - start.size() - end.size(), L'n') + end;
        expectLikeModel(text, false, false);
        expectLikeModel(L"$macro'\\" + text.substr(start.size()), false, false);
      }
    }
  }
}

std::wstring mutated(std::mt19937& random) {
  const auto below = [&](size_t n) { return static_cast<size_t>(random() % n); };
  std::wstring text = kCorpus[below(std::size(kCorpus))];
  for (size_t edits = below(5); edits > 0; --edits) {
    static const std::wstring kSigns = L"\\/\\/\\/:.$'\"@*? <|cdCD1a\x01\x7F\xE4\xD800\xFFFF";
    const size_t at = below(text.size() + 1);
    switch (below(4)) {
      case 0:
        text.insert(at, 1, kSigns[below(kSigns.size())]);
        break;
      case 1:
        text.erase(at, 1 + below(4));
        break;
      case 2:
        text.insert(at, kCorpus[below(std::size(kCorpus))]);
        break;
      default:
        if (at < text.size()) text[at] = static_cast<wchar_t>(1 + below(0xFFFF));
    }
  }
  return text;
}

TEST(FileNameParse, MutatedNamesFollowTheRules) {
  std::mt19937 random(20240612);
  ZoString a, b, c, d;
  ZoFileName reused, kept;  // one object for all, whose memory the next name may take over
  using Text = const wchar_t* (ZoFileName::*)() const noexcept;
  constexpr Text kTexts[] = {&ZoFileName::directory,   &ZoFileName::fileName,
                             &ZoFileName::fileNameExt, &ZoFileName::extension,
                             &ZoFileName::volume,      &ZoFileName::fullName};
  for (int i = 0; i < kMutations; ++i) {
    const std::wstring text = mutated(random);
    expectLikeModel(text, i % 2 == 0, i % 3 == 0);
    const ZoFileName name(text.c_str());
    if (i % 4 == 0) kept = reused;
    const ZoString keptText(kept.fullName());
    reused = text;
    expectParts(reused, modelParse(text));
    EXPECT_STREQ(kept.fullName(), keptText.data());
    const auto part = kTexts[static_cast<size_t>(i) % std::size(kTexts)];
    const std::wstring own = (reused.*part)();
    reused = (reused.*part)();
    expectParts(reused, modelParse(own));
    int protocol = 7;
    EXPECT_EQ(name.parseURL(protocol, a, b, c, d), name.isURL() ? 0 : 1);
    EXPECT_EQ(name.parseUNC(a, b), name.isUNC() ? 0 : 1);
    EXPECT_EQ(name.parseCD(c, d), name.isCD() ? 0 : 1);
    if (name.isUNC() || name.isCD()) {
      const ZoString &volume = name.isCD() ? c : a, &rest = name.isCD() ? d : b;
      const size_t macro = name.hasMacro() ? std::wcslen(name.macro()) + 2 : 0;
      EXPECT_EQ(volume + rest, name.fullName() + macro);
      EXPECT_EQ(volume.length(), name.volumePrefixLength());
    }
    if (HasFailure()) FAIL() << "mutation " << i << ": " << shown(text);
  }
}

// Whatever a name is made of, no operation comes to harm, and its parts stay those of its text.
TEST(FileNameParse, OperationsOnMutatedNamesAreSafe) {
  std::mt19937 random(20240613);
  using Edit = int (ZoFileName::*)(const wchar_t*);
  const Edit edits[] = {&ZoFileName::setDrive,       &ZoFileName::setDirectory,
                        &ZoFileName::setFileName,    &ZoFileName::setExtension,
                        &ZoFileName::setFileNameExt, &ZoFileName::appendDirectory,
                        &ZoFileName::resetMacro};
  for (int i = 0; i < kMutations / 5; ++i) {
    const std::wstring text = mutated(random), other = mutated(random);
    SCOPED_TRACE("mutation " + std::to_string(i) + ": " + shown(text) + ' ' + shown(other));
    ZoFileName name(text.c_str());
    const ZoFileName base(other.c_str()), normal = name.normalized(),
                                          relative = name.relativeTo(base);
    EXPECT_EQ(normal.normalized(), normal);
    const bool isBare = name.fullNameSize() == name.volumePrefixLength();
    if (relative != normal && name.possibleOnVolume() && !isBare) {
      EXPECT_EQ(relative.resolvedAgainst(base), normal);
    }
    EXPECT_TRUE(name.isRelativ() || !name.isContained());
    (name.*edits[static_cast<size_t>(i) % std::size(edits)])(other.c_str());
    static_cast<void>(name.removeLastDir());
    while (name.nextDirPart()) continue;
    static_cast<void>(name.setMacro(L"M", other.c_str()));
    static_cast<void>(name.resetMacro(L""));
    if (name.isValid()) expectParts(ZoFileName(name.fullName()), modelParse(name.fullName()));
    if (HasFailure()) FAIL();
  }
}

TEST(FileNameSplit, UrlsFallIntoProtocolHostPathUserAndPassword) {
  struct Case {
    const wchar_t* text;
    int protocol;
    const wchar_t *host, *path, *user, *password;
  };
  for (const Case& c : {Case{L"ftp://u:p@h:21/x", 0, L"h", L"/x", L"u", L"p"},
                        Case{L"HTTPS://h.com", 1, L"h.com", L"", L"", L""},
                        Case{L"gophe://h/x", 77, L"h", L"/x", L"", L""},
                        // A port without a user, not mended.
                        Case{L"ftp://h:21/x", 0, L"h:21", L"/x", L"h", L""},
                        Case{L"ftp://u@h:21/x", 0, L"u@h:21", L"/x", L"u@h", L""},
                        // A user without a password stays with the host.
                        Case{L"ftp://u@h/x", 0, L"u@h", L"/x", L"", L""},
                        Case{L"ftp://u:p@q@h/x", 0, L"q@h", L"/x", L"u", L"p"},
                        Case{L"ftp://u:p@:21/x", 0, L":21", L"/x", L"u", L"p"},
                        // Only the authority has users and ports.
                        Case{L"http://h/a:b@c", 1, L"h", L"/a:b@c", L"", L""},
                        Case{L"http://h:8/a@b", 1, L"h:8", L"/a@b", L"h", L""},
                        Case{L"http:\\\\h\\x", 1, L"h\\x", L"", L"", L""}}) {
    SCOPED_TRACE(shown(c.text));
    const ZoFileName name(c.text);
    int protocol = 77;
    ZoString host, path, user, password;
    EXPECT_EQ(name.parseURL(protocol, host, path, user, password), 0);
    EXPECT_EQ(protocol, c.protocol);
    EXPECT_EQ(host, c.host);
    EXPECT_EQ(path, c.path);
    EXPECT_EQ(user, c.user);
    EXPECT_EQ(password, c.password);
  }
}

// Whatever a name is made of or handed to, it stays the same.
TEST(FileNameConversion, WideTextsAndPathsGoInAndOut) {
  const std::wstring text = L"C:\\\x44F\\f.dwg";
  const std::filesystem::path path(text);
  const ZoFileName fromText = text, fromPath = path, fromNull(nullptr);
  ZoFileName assigned, whole, parts;
  assigned = text;
  EXPECT_EQ(whole.setFullName(path), 0);
  EXPECT_EQ(parts.makePath(L"C", std::wstring_view(L"?\\\x44F?").substr(1, 2), text.substr(5, 1),
                           std::filesystem::path(L".dwg")),
            0);
  for (const ZoFileName& name : {fromText, fromPath, assigned, whole, parts}) {
    EXPECT_TRUE(name == text && name == path && text == name);
    EXPECT_TRUE(std::wstring(name) == text && std::filesystem::path(name) == path);
  }
  const std::filesystem::path out = fromText;
  EXPECT_EQ(out, path);
  EXPECT_TRUE(fromNull.isEmpty() && !fromNull.isValid(std::wstring(L"a|b")));
}

TEST(FileNameKind, FollowsTheExtensionInAnyCase) {
  struct Case {
    const wchar_t* text;
    unsigned int first = 24, also = 24;  // the kinds besides 24, which every name is
  };
  for (const Case& c :
       {Case{L"x.gdb", 0}, Case{L"x.sld", 1, 3}, Case{L"x.sle", 1, 5}, Case{L"x.slg", 2},
        Case{L"x.slb", 4}, Case{L"x.dxf", 6}, Case{L"x.dwg", 7}, Case{L"x.val", 11, 14},
        Case{L"x.xls", 12}, Case{L"x.mdb", 13, 14}, Case{L"x.mld", 15}, Case{L"x.jpg", 16},
        Case{L"x.bmp", 17}, Case{L"x.tga", 18}, Case{L"x.g3p", 19}, Case{L"x.sat", 20},
        Case{L"x.vgr", 21}, Case{L"x.wsk", 22}, Case{L"x.dmc", 23}, Case{L"x.sld.txt"},
        // Compared with the first directory level.
        Case{L"C:\\GEAR\\a\\gear.gpl", 8, 10}, Case{L"C:\\a\\gear\\gear.gpl", 9, 10},
        Case{L"C:gear.gpl", 10}, Case{L"\\\\srv\\shr\\gear\\gear.gpl", 8, 10},
        Case{L"\xC4\\\xE4.gpl", 8, 10}, Case{L"$gear'\\bolt\\bolt.gpl", 8, 10}}) {
    for (const bool upper : {false, true}) {
      ZoFileName name(c.text);
      if (upper) name.toUpper();
      SCOPED_TRACE(shown(name.fullName()));
      for (unsigned int kind = 0; kind < 30; ++kind)
        EXPECT_EQ(name.isKindOf(static_cast<ZoFileName::FileKind>(kind)),
                  kind == 24 || kind == c.first || kind == c.also)
            << kind;
      EXPECT_EQ(name.isKindOf(), c.first);
    }
  }
}

}  // namespace
