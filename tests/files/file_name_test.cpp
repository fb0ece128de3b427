// How a file name is split and checked, and what is answered from its parts.
#include <gtest/gtest.h>
#include <zo/files/file_name.h>

#include <random>
#include <string>
#include <vector>

#include "files/file_name_model.h"

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
    L"cd://label/dir/file.gdb",
    L"CD:\\\\label\\x.y",
    L"http://host.com/dir/file.html",
    L"ftp://u:p@h:21/x/y.z",
    L"mailto:someone@host",
    L"\"C:\\a dir\\b c.txt\"",
    L"$MACRO'\\dir\\file.ext",
    L"$MACRO\"dir\\file.ext\"",
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

// ---- Splitting ----

TEST(FileNameParse, SplitsEachFormIntoItsParts) {
  struct Case {
    const wchar_t* text;
    const wchar_t *form, *drive, *directory, *fileName, *extension, *volume;
    size_t prefix;
    const wchar_t* macro = L"";
    const wchar_t* whole = nullptr;  // when it is not the text
  };
  const Case cases[] = {
      {L"c:/dir\\a.b.c", L"drive", L"c:", L"/dir\\", L"a.b", L".c", L"c:", 0},
      {L"C:", L"drive", L"C:", L"", L"", L"", L"C:", 0},
      {L"dir.d\\name", L"plain", L"", L"dir.d\\", L"name", L"", L"", 0},
      {L".hidden", L"plain", L"", L"", L"", L".hidden", L"", 0},
      {L"cD:/\\label/dir/f.x", L"disc", L"", L"cD:/\\label/dir/", L"f", L".x", L"cD:/\\label", 10},
      {L"cd://label", L"disc", L"", L"cd://", L"label", L"", L"cd://label", 10},
      {L"http://h.com:80/d/f.x", L"url", L"", L"http://h.com:80/d/", L"f", L".x",
       L"http://h.com:80", 15},
      {L"file:///x", L"url", L"", L"file:///", L"x", L"", L"file://", 7},
      {L"\\\\srv\\shr\\d\\f.x", L"network", L"", L"\\\\srv\\shr\\d\\", L"f", L".x", L"", 9},
      {L"\\\\srv\\\\d", L"network", L"", L"\\\\srv\\\\", L"d", L"", L"", 5},
      {L"MailTo:a@b.c", L"mail", L"", L"", L"", L"", L"", 0},
      {L"\"C:\\a b\"", L"drive", L"C:", L"\\", L"a b", L"", L"C:", 0, L"", L"C:\\a b"},
      {L"$LIB\"d\\f.x\"", L"plain", L"", L"\\d\\", L"f", L".x", L"", 0, L"LIB", L"$LIB'\\d\\f.x"},
      {L"\"$L\"/f\"", L"plain", L"", L"/", L"f", L"", L"", 0, L"L", L"$L'/f"},
      {L"$A\"B'", L"plain", L"", L"\\", L"", L"", L"", 0, L"A\"B", L"$A\"B'\\"},
      {L"$'x", L"plain", L"", L"\\", L"x", L"", L"", 0, L"", L"\\x"},
      {L"$M'\\\\srv\\shr\\f", L"network", L"", L"\\\\srv\\shr\\", L"f", L"", L"", 9, L"M"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(shown(c.text));
    ZoFileName name;
    EXPECT_EQ(name.setFullName(c.text), 0);
    expectParts(name, {0, c.whole ? c.whole : c.text, c.macro, c.drive, c.directory, c.fileName,
                       c.extension, c.volume, c.form, c.prefix});
    expectParts(ZoFileName(c.text), modelParse(c.text));
  }
}

TEST(FileNameParse, ReportsTheFirstOfItsCodes) {
  struct Case {
    int result, withWildcards, withAnyDrive;
    std::vector<const wchar_t*> texts;
  };
  const Case cases[] = {
      {0,
       0,
       0,
       {L"", L".", L"..", L"d\\..", L"a .b", L"d. \\a", L"a\x7F", L"http://a*/b?/c",
        L"http://h/a:b", L"http://h:80", L"cd://a?*b/c", L"cd://<|/d"}},
      {7, 0, 7, {L"C:\\a*.?x", L"http://h/a?"}},
      {7, 7, 0, {L"1:\\a", L"1:", L"::\\a"}},
      {7, 7, 7, {L"C:\\a*\\b",   L"C:\\a|b",        L"a\x1F",
                 L"C:a:b",       L"http://h/a.b:c", L"http://w.h.com:80",
                 L"cd://a/c?/d", L"cd://a:b",       L"\\\\s*\\t\\u",
                 L"ab:c",        L"cd:x",           L"ab:/x/",
                 L"://x",        L"a b://x",        L"9p://x",
                 L"\\\\",        L"\\\\\\s",        L"cd://",
                 L"\"",          L"\"\"",           L"\"a",
                 L"\"a\"b",      L"\"a\"b\"",       L"$a'x:y",
                 L"<. ",         L"\\\\\\s."}},
      {1, 1, 1, {L"$a", L"\"$a\"", L"$"}},
      {8, 8, 8, {L"a ", L"a. ", L"a.b "}},
      {9, 9, 9, {L"a.", L"a...", L"a .", L"..."}}};
  for (const Case& c : cases) {
    for (const wchar_t* text : c.texts) {
      SCOPED_TRACE(shown(text));
      ZoFileName name;
      EXPECT_EQ(set(name, text), c.result);
      EXPECT_EQ(set(name, text, {.wildcards = true}), c.withWildcards);
      EXPECT_EQ(set(name, text, {.anyDrive = true}), c.withAnyDrive);
    }
  }
}

TEST(FileNameParse, KeepsThePartsAfterAFailedCheckAndNoneAfterAFailedSplit) {
  ZoFileName name(L"C:\\old\\name.txt");
  EXPECT_EQ(name.setFullName(L"D:\\a|b\\c?.d"), 7);
  expectParts(name, {7, L"D:\\a|b\\c?.d", L"", L"D:", L"\\a|b\\", L"c?", L".d", L"D:", L"drive"});
  EXPECT_EQ(name.setFullName(L"ab:c"), 7);
  expectParts(name, {});
  name = L"C:\\old\\name.txt";
  EXPECT_EQ(name.setFullName(L"$M'ab:c"), 7);
  EXPECT_TRUE(name.isEmpty());
  EXPECT_STREQ(name.macro(), L"M") << "what was read by then";
  EXPECT_EQ(name.setFullName(nullptr), 0);
  expectParts(name, {});
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
    EXPECT_TRUE(name.isDirectory());
  }
  ZoFileName kept;
  set(kept, L"a/b", {.ownDelimiters = true, .wildcards = true, .anyDrive = true});
  EXPECT_EQ(kept.setDirectory(L"x/y"), 0);
  EXPECT_EQ(kept.setFileName(L"*"), 0);
  EXPECT_EQ(kept.setDrive(L"1"), 0);
  EXPECT_STREQ(kept.fullName(), L"1:x\\y\\*") << "options hold for later changes";
}

// The path is drive, directory, file name and extension; the macro does not count.
TEST(FileNameParse, PathsOf261CharactersAreTooLong) {
  for (const std::wstring start :
       {L"", L"\\", L"C:\\d\\", L"\\\\s\\t\\", L"http://h/", L"cd://l/"}) {
    for (const std::wstring end : {L"", L".", L".e", L"\\", L" "}) {
      for (const size_t length : {259, 260, 261, 262, 1000, 32767, 40000}) {
        const std::wstring text =
            start + std::wstring(length - start.size() - end.size(), L'n') + end;
        const int ending = end == L"." ? 9 : (end == L" " ? 8 : 0);
        ZoFileName name;
        EXPECT_EQ(set(name, text), ending != 0 ? ending : (length > 260 ? 6 : 0)) << length;
        EXPECT_EQ(set(name, L"$macro'\\" + text.substr(start.size())),
                  ending != 0 ? ending : (length + 1 - start.size() > 260 ? 6 : 0));
        expectLikeModel(text, false, false);
      }
    }
  }
}

TEST(FileNameParse, EveryCharacterInEveryPlaceOfEveryFormIsCheckedAsTheRulesSay) {
  const std::wstring forms[] = {L"d#\\n#.e#",         L"C:\\d#\\n#.e#",    L"\\\\s\\t\\d#\\n#.e#",
                                L"http://h/d#/n#.e#", L"cd://l#/d#/n#.e#", L"$m#'\\n#"};
#ifdef ZO_GUARDED
  constexpr unsigned int kEnd = 0x82;
#else
  constexpr unsigned int kEnd = 0x10000;
#endif
  ZoFileName name;
  for (const std::wstring& form : forms) {
    for (size_t at = form.find(L'#'); at != std::wstring::npos; at = form.find(L'#', at + 1)) {
      std::wstring text;
      for (size_t i = 0; i < form.size(); ++i) {
        if (form[i] != L'#' || i == at) text += form[i];
      }
      const size_t place = text.find(L'#');
      for (unsigned int c = 1; c < kEnd; ++c) {  // a zero ends the text
        text[place] = static_cast<wchar_t>(c);
        if (c < 0x80) {
          expectLikeModel(text, false, false);
          expectLikeModel(text, true, true);
        } else {  // all alike, so that the whole range stays quick
          ASSERT_EQ(set(name, text), 0) << c;
          ASSERT_EQ(name[static_cast<unsigned int>(place)], static_cast<wchar_t>(c));
        }
        if (HasFailure()) FAIL() << "character " << c << " in " << shown(text);
      }
    }
  }
  EXPECT_EQ(ZoFileName(std::wstring_view(L"a\0b", 3)).fullNameSize(), 3u);
  EXPECT_FALSE(ZoFileName(std::wstring_view(L"a\0b", 3)).isValid());
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
  for (int i = 0; i < kMutations; ++i) {
    const std::wstring text = mutated(random);
    expectLikeModel(text, i % 2 == 0, i % 3 == 0);
    const ZoFileName name(text.c_str());
    int protocol = 7;
    EXPECT_EQ(name.parseURL(protocol, a, b, c, d), name.isURL() ? 0 : 1);
    EXPECT_EQ(name.parseUNC(a, b), name.isUNC() ? 0 : 1);
    EXPECT_EQ(name.parseCD(a, b), name.isCD() ? 0 : 1);
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
    EXPECT_TRUE(name.isKindOf(name.isKindOf()));
    (void)name.isAnsi();
    (name.*edits[static_cast<size_t>(i) % std::size(edits)])(other.c_str());
    name.removeLastDir();
    while (name.nextDirPart()) continue;
    name.setMacro(L"M", other.c_str());
    name.resetMacro(L"");
    if (name.isValid()) expectParts(ZoFileName(name.fullName()), modelParse(name.fullName()));
    if (HasFailure()) FAIL();
  }
}

TEST(FileNameParse, IsValidAsksAboutATextOrTheNameItself) {
  ZoFileName name(L"C:\\a");
  EXPECT_TRUE(name.isValid());
  EXPECT_TRUE(name.isValid(L"ends in a blank ")) << "characters only";
  EXPECT_TRUE(name.isValid(std::wstring(300, L'x').c_str()));
  for (const wchar_t* text : {L"b*", L"b|c", L"ab:c", L"$m", L"\"x", L"1:\\a"}) {
    EXPECT_FALSE(name.isValid(text)) << shown(text);
  }
  EXPECT_STREQ(name.fullName(), L"C:\\a");
  set(name, L"a*", {.wildcards = true, .anyDrive = true});
  EXPECT_TRUE(name.isValid());
  EXPECT_TRUE(name.isValid(L"1:\\a?")) << "with the options of the name";
  name.setFullName(L"a*");
  EXPECT_FALSE(name.isValid());
}

// ---- URLs and volumes ----

TEST(FileNameSplit, UrlsFallIntoProtocolHostPathUserAndPassword) {
  struct Case {
    const wchar_t* text;
    int protocol;
    const wchar_t *host, *path, *user, *password;
  };
  for (const Case& c : {Case{L"ftp://u:p@h:21/x", 0, L"h", L"/x", L"u", L"p"},
                        Case{L"HTTPS://h.com", 1, L"h.com", L"", L"", L""},
                        Case{L"gopher://h/", 2, L"h", L"/", L"", L""},
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
    int protocol = 77, same = 77;
    ZoString host(L"-"), path(L"-"), user(L"-"), password(L"-"), host2, path2, user2;
    EXPECT_EQ(name.parseURL(protocol, host, path, user, password), 0);
    EXPECT_EQ(protocol, c.protocol);
    EXPECT_EQ(host, c.host);
    EXPECT_EQ(path, c.path);
    EXPECT_EQ(user, c.user);
    EXPECT_EQ(password, c.password);
    EXPECT_EQ(name.parseURL(same, host2, path2, user2), 0);
    EXPECT_TRUE(same == protocol && host2 == host && path2 == path && user2 == user);
    host2 = path2 = L"-";
    EXPECT_EQ(name.parseURL(same, host2, path2), 0);
    EXPECT_TRUE(host2 == host && path2 == path);
    EXPECT_EQ(name.parseURL(same = 77, host2 = L"-"), 0);
    EXPECT_TRUE(same == protocol && host2 == host);
  }
  int protocol = 77;
  ZoString kept(L"kept");
  for (const wchar_t* text : {L"C:\\a", L"cd://l/x", L"\\\\s\\t", L"", L"mailto:u@h"})
    EXPECT_EQ(ZoFileName(text).parseURL(protocol, kept, kept, kept, kept), 1);
  EXPECT_EQ(protocol, 77);
  EXPECT_EQ(kept, L"kept");
}

TEST(FileNameSplit, NetworkAndDiscNamesFallIntoVolumeAndRest) {
  struct Case {
    const wchar_t *text, *volume, *rest;
    bool disc = false;
  };
  for (const Case& c : {Case{L"//s/t", L"//s/t", L""}, Case{L"\\\\s\\\\d", L"\\\\s", L"\\\\d"},
                        Case{L"$M'\\\\s\\t\\d", L"\\\\s\\t", L"\\d"},
                        Case{L"cd://l/d/f.x", L"cd://l", L"/d/f.x", true},
                        Case{L"cd:///f", L"cd://", L"/f", true}}) {
    ZoString volume, rest, kept(L"kept");
    const ZoFileName name(c.text);
    EXPECT_EQ(c.disc ? name.parseCD(volume, rest) : name.parseUNC(volume, rest), 0);
    EXPECT_EQ(volume, c.volume);
    EXPECT_EQ(rest, c.rest);
    EXPECT_EQ(c.disc ? name.parseUNC(kept, kept) : name.parseCD(kept, kept), 1);
    EXPECT_EQ(kept, L"kept");
  }
}

// ---- Kinds of files ----

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
        Case{L"x.vgr", 21}, Case{L"x.wsk", 22}, Case{L"x.dmc", 23}, Case{L"x"}, Case{L"x.gdbx"},
        Case{L"x.gd"}, Case{L"x.sld.txt"}, Case{L"x.txt.sld", 1, 3},
        // Compared with the first directory level.
        Case{L"C:\\GEAR\\a\\gear.gpl", 8, 10}, Case{L"gear\\bolt.gpl", 9, 10},
        Case{L"C:\\a\\gear\\gear.gpl", 9, 10}, Case{L"\\gear.gpl", 10}, Case{L"C:gear.gpl", 10},
        Case{L"\\\\srv\\shr\\gear\\gear.gpl", 8, 10}, Case{L"\\\\gear\\gear.gpl", 10},
        Case{L"http://h/x/gear.gpl", 9, 10}, Case{L"\xC4\\\xE4.gpl", 8, 10},
        Case{L"$gear'\\bolt\\bolt.gpl", 8, 10}}) {
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
