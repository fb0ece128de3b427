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
      {L"C:\\dir\\file.ext", L"drive", L"C:", L"\\dir\\", L"file", L".ext", L"C:", 0},
      {L"c:/dir\\a.b.c", L"drive", L"c:", L"/dir\\", L"a.b", L".c", L"c:", 0},
      {L"z:name", L"drive", L"z:", L"", L"name", L"", L"z:", 0},
      {L"C:", L"drive", L"C:", L"", L"", L"", L"C:", 0},
      {L"dir.d\\name", L"plain", L"", L"dir.d\\", L"name", L"", L"", 0},
      {L"\\dir\\", L"plain", L"", L"\\dir\\", L"", L"", L"", 0},
      {L".hidden", L"plain", L"", L"", L"", L".hidden", L"", 0},
      {L"cD:/\\label/dir/f.x", L"disc", L"", L"cD:/\\label/dir/", L"f", L".x", L"cD:/\\label", 10},
      {L"cd://label", L"disc", L"", L"cd://", L"label", L"", L"cd://label", 10},
      {L"http://h.com:80/d/f.x", L"url", L"", L"http://h.com:80/d/", L"f", L".x",
       L"http://h.com:80", 15},
      {L"ftp:\\\\host\\d\\f", L"url", L"", L"ftp:\\\\host\\d\\", L"f", L"", L"ftp:\\\\host", 10},
      {L"file:///x", L"url", L"", L"file:///", L"x", L"", L"file://", 7},
      {L"\\\\srv\\shr\\d\\f.x", L"network", L"", L"\\\\srv\\shr\\d\\", L"f", L".x", L"", 9},
      {L"//srv/shr", L"network", L"", L"//srv/", L"shr", L"", L"", 9},
      {L"\\\\srv\\\\d", L"network", L"", L"\\\\srv\\\\", L"d", L"", L"", 5},
      {L"MailTo:a@b.c", L"mail", L"", L"", L"", L"", L"", 0},
      {L"\"C:\\a b\"", L"drive", L"C:", L"\\", L"a b", L"", L"C:", 0, L"", L"C:\\a b"},
      {L"$LIB'\\d\\f.x", L"plain", L"", L"\\d\\", L"f", L".x", L"", 0, L"LIB"},
      {L"$LIB\"d\\f.x\"", L"plain", L"", L"\\d\\", L"f", L".x", L"", 0, L"LIB", L"$LIB'\\d\\f.x"},
      {L"\"$L\"/f\"", L"plain", L"", L"/", L"f", L"", L"", 0, L"L", L"$L'/f"},
      {L"$A\"B'", L"plain", L"", L"\\", L"", L"", L"", 0, L"A\"B", L"$A\"B'\\"},
      {L"$'x", L"plain", L"", L"\\", L"x", L"", L"", 0, L"", L"\\x"},
      {L"$M'\\\\srv\\shr\\f", L"network", L"", L"\\\\srv\\shr\\", L"f", L"", L"", 9, L"M"},
  };
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
    const wchar_t* text;
    int result, withWildcards, withAnyDrive;
  };
  const Case cases[] = {
      {L"C:\\a*.?x", 7, 0, 7},
      {L"C:\\a*\\b", 7, 7, 7},
      {L"C:\\a|b", 7, 7, 7},
      {L"a\x1F", 7, 7, 7},
      {L"a\x7F", 0, 0, 0},
      {L"C:a:b", 7, 7, 7},
      {L"http://a*/b?/c", 0, 0, 0},
      {L"http://h/a:b", 0, 0, 0},
      {L"http://h/a?", 7, 0, 7},
      {L"http://h/a.b:c", 7, 7, 7},
      {L"http://h:80", 0, 0, 0},
      {L"http://w.h.com:80", 7, 7, 7},
      {L"cd://a?*b/c", 0, 0, 0},
      {L"cd://a/c?/d", 7, 7, 7},
      {L"cd://<|/d", 0, 0, 0},
      {L"cd://a:b", 7, 7, 7},
      {L"\\\\s*\\t\\u", 7, 7, 7},
      {L"1:\\a", 7, 7, 0},
      {L"1:", 7, 7, 0},
      {L"::\\a", 7, 7, 0},
      {L"ab:c", 7, 7, 7},
      {L"cd:x", 7, 7, 7},
      {L"ab:/", 7, 7, 7},
      {L"ab:/x/", 7, 7, 7},
      {L"://x", 7, 7, 7},
      {L"a b://x", 7, 7, 7},
      {L"9p://x", 7, 7, 7},
      {L"\\\\", 7, 7, 7},
      {L"\\\\\\s", 7, 7, 7},
      {L"cd://", 7, 7, 7},
      {L"\"", 7, 7, 7},
      {L"\"\"", 7, 7, 7},
      {L"\"a", 7, 7, 7},
      {L"\"a\"b", 7, 7, 7},
      {L"\"a\"b\"", 7, 7, 7},
      {L"$a", 1, 1, 1},
      {L"\"$a\"", 1, 1, 1},
      {L"$", 1, 1, 1},
      {L"$a'x:y", 7, 7, 7},
      {L"a ", 8, 8, 8},
      {L"a. ", 8, 8, 8},
      {L"a.b ", 8, 8, 8},
      {L"a.", 9, 9, 9},
      {L"a...", 9, 9, 9},
      {L"a .", 9, 9, 9},
      {L"...", 9, 9, 9},
      {L".", 0, 0, 0},
      {L"..", 0, 0, 0},
      {L"d\\..", 0, 0, 0},
      {L"a .b", 0, 0, 0},
      {L"d. \\a", 0, 0, 0},
      {L"<. ", 7, 7, 7},
      {L"\\\\\\s.", 7, 7, 7},
      {L"", 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(shown(c.text));
    ZoFileName name;
    EXPECT_EQ(set(name, c.text), c.result);
    EXPECT_EQ(set(name, c.text, {.wildcards = true}), c.withWildcards);
    EXPECT_EQ(set(name, c.text, {.anyDrive = true}), c.withAnyDrive);
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
  const Case cases[] = {
      {L"C:/a\\b", L"C:\\a\\b", L"C:/a\\b\\"},
      {L"C:", L"C:", L"C:"},
      {L"a/", L"a\\", L"a/"},
      {L"a.b", L"a.b", L"a.b\\"},
      {L"http:\\\\h/x", L"http://h/x", L"http:\\\\h/x/"},
      {L"cd:\\\\l", L"cd://l", L"cd:\\\\l/"},
      {L"//s/t", L"\\\\s\\t", L"//s/t\\"},
      {L"$M'a/b", L"$M'\\a\\b", L"$M'\\a/b\\"},
      {L"$M'/a", L"$M'\\a", L"$M'/a\\"},
      {L"", L"", L""},
  };
  for (const Case& c : cases) {
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

TEST(FileNameParse, NamesCutAtEveryLengthFollowTheRules) {
  for (const std::wstring& text : kCorpus) {
    for (size_t length = 0; length <= text.size(); ++length) {
      expectLikeModel(text.substr(0, length), false, false);
      expectLikeModel(text.substr(text.size() - length), true, true);
      if (HasFailure()) FAIL() << "cut at " << length << " of " << shown(text);
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
    const std::wstring text = mutated(random);
    const std::wstring other = mutated(random);
    SCOPED_TRACE("mutation " + std::to_string(i) + ": " + shown(text) + ' ' + shown(other));
    ZoFileName name(text.c_str());
    const ZoFileName base(other.c_str());
    const ZoFileName normal = name.normalized();
    EXPECT_EQ(normal.normalized(), normal);
    (void)name.resolvedAgainst(base);
    const ZoFileName relative = name.relativeTo(base);
    const bool isBare = name.fullNameSize() == name.volumePrefixLength();
    if (relative != normal && name.possibleOnVolume() && !isBare) {
      EXPECT_EQ(relative.resolvedAgainst(base), normal);
    }
    EXPECT_TRUE(name.isRelativ() || !name.isContained());
    EXPECT_TRUE(name.isKindOf(name.isKindOf()));
    (void)name.hasDeviceName();
    (void)name.isAnsi();
    (name.*edits[static_cast<size_t>(i) % std::size(edits)])(other.c_str());
    name.removeLastDir();
    while (name.nextDirPart()) continue;
    name.setMacro(L"M", other.c_str());
    name.resetMacro(L"");
    if (name.isValid()) {
      expectParts(ZoFileName(name.fullName()), modelParse(name.fullName()));
    }
    if (HasFailure()) FAIL();
  }
}

TEST(FileNameParse, IsValidAsksAboutATextOrTheNameItself) {
  ZoFileName name(L"C:\\a");
  EXPECT_TRUE(name.isValid());
  EXPECT_TRUE(name.isValid(L"b.c"));
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
  const Case cases[] = {
      {L"ftp://u:p@h:21/x", 0, L"h", L"/x", L"u", L"p"},
      {L"FTP://u:p@h/x/y.z", 0, L"h", L"/x/y.z", L"u", L"p"},
      {L"http://h/x", 1, L"h", L"/x", L"", L""},
      {L"https://h.com", 1, L"h.com", L"", L"", L""},
      {L"gopher://h/", 2, L"h", L"/", L"", L""},
      {L"ftps://h/", 0, L"h", L"/", L"", L""},
      {L"news://h/x", 77, L"h", L"/x", L"", L""},
      {L"gophe://h/x", 77, L"h", L"/x", L"", L""},
      // A port without a user, not mended.
      {L"ftp://h:21/x", 0, L"h:21", L"/x", L"h", L""},
      {L"http://h:80", 1, L"h:80", L"", L"h", L""},
      {L"ftp://u@h:21/x", 0, L"u@h:21", L"/x", L"u@h", L""},
      {L"http://[::1]/x", 1, L"[::1]", L"/x", L"[", L""},
      // A user without a password stays with the host.
      {L"ftp://u@h/x", 0, L"u@h", L"/x", L"", L""},
      {L"ftp://u:@h/x", 0, L"h", L"/x", L"u", L""},
      {L"ftp://:p@h/x", 0, L"h", L"/x", L"", L"p"},
      {L"ftp://u:p@q@h/x", 0, L"q@h", L"/x", L"u", L"p"},
      {L"ftp://u:p@:21/x", 0, L":21", L"/x", L"u", L"p"},
      // Only the authority has users and ports.
      {L"http://h/a:b@c", 1, L"h", L"/a:b@c", L"", L""},
      {L"http://h:8/a@b", 1, L"h:8", L"/a@b", L"h", L""},
      {L"file:///c:/x", 77, L"", L"/c:/x", L"", L""},
      {L"http:\\\\h\\x", 1, L"h\\x", L"", L"", L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(shown(c.text));
    const ZoFileName name(c.text);
    for (int results = 2; results <= 5; ++results) {
      int protocol = 77;
      ZoString host(L"-"), path(L"-"), user(L"-"), password(L"-");
      const int result = results == 5   ? name.parseURL(protocol, host, path, user, password)
                         : results == 4 ? name.parseURL(protocol, host, path, user)
                         : results == 3 ? name.parseURL(protocol, host, path)
                                        : name.parseURL(protocol, host);
      EXPECT_EQ(result, 0);
      EXPECT_EQ(protocol, c.protocol);
      EXPECT_EQ(host, c.host);
      EXPECT_EQ(path, results > 2 ? c.path : L"-");
      EXPECT_EQ(user, results > 3 ? c.user : L"-");
      EXPECT_EQ(password, results > 4 ? c.password : L"-");
    }
  }
  int protocol = 77;
  ZoString kept(L"kept");
  for (const wchar_t* text : {L"C:\\a", L"cd://l/x", L"\\\\s\\t", L"a", L"", L"mailto:u@h"}) {
    EXPECT_EQ(ZoFileName(text).parseURL(protocol, kept, kept, kept, kept), 1);
  }
  EXPECT_EQ(protocol, 77);
  EXPECT_EQ(kept, L"kept");
}

TEST(FileNameSplit, NetworkAndDiscNamesFallIntoVolumeAndRest) {
  struct Case {
    const wchar_t *text, *volume, *rest;
  };
  for (const Case& c :
       {Case{L"\\\\s\\t\\d\\f.x", L"\\\\s\\t", L"\\d\\f.x"}, Case{L"//s/t", L"//s/t", L""},
        Case{L"\\\\s", L"\\\\s", L""}, Case{L"\\\\s\\\\d", L"\\\\s", L"\\\\d"},
        Case{L"$M'\\\\s\\t\\d", L"\\\\s\\t", L"\\d"}}) {
    ZoString volume, rest, kept(L"kept");
    EXPECT_EQ(ZoFileName(c.text).parseUNC(volume, rest), 0);
    EXPECT_EQ(volume, c.volume);
    EXPECT_EQ(rest, c.rest);
    EXPECT_EQ(ZoFileName(c.text).parseCD(kept, kept), 1);
    EXPECT_EQ(kept, L"kept");
  }
  for (const Case& c : {Case{L"cd://l/d/f.x", L"cd://l", L"/d/f.x"},
                        Case{L"CD:\\/l", L"CD:\\/l", L""}, Case{L"cd:///f", L"cd://", L"/f"}}) {
    ZoString volume, rest, kept(L"kept");
    EXPECT_EQ(ZoFileName(c.text).parseCD(volume, rest), 0);
    EXPECT_EQ(volume, c.volume);
    EXPECT_EQ(rest, c.rest);
    EXPECT_EQ(ZoFileName(c.text).parseUNC(kept, kept), 1);
    EXPECT_EQ(kept, L"kept");
  }
}

// ---- Kinds of files ----

TEST(FileNameKind, FollowsTheExtensionInAnyCase) {
  struct Case {
    const wchar_t* extension;
    std::vector<unsigned int> kinds;  // without 24, which every name is
  };
  const Case cases[] = {
      {L".gdb", {0}},      {L".sld", {1, 3}},     {L".sle", {1, 5}},
      {L".slg", {2}},      {L".slb", {4}},        {L".dxf", {6}},
      {L".dwg", {7}},      {L".val", {11, 14}},   {L".xls", {12}},
      {L".mdb", {13, 14}}, {L".mld", {15}},       {L".jpg", {16}},
      {L".bmp", {17}},     {L".tga", {18}},       {L".g3p", {19}},
      {L".sat", {20}},     {L".vgr", {21}},       {L".wsk", {22}},
      {L".dmc", {23}},     {L".gpl", {10}},       {L"", {}},
      {L".", {}},          {L".gdbx", {}},        {L".gd", {}},
      {L".sld.txt", {}},   {L".txt.sld", {1, 3}},
  };
  for (const Case& c : cases) {
    for (const bool upper : {false, true}) {
      ZoFileName name((std::wstring(L"part") + c.extension).c_str());
      if (upper) name.toUpper();
      for (unsigned int kind = 0; kind < 30; ++kind) {
        const bool expected =
            kind == 24 || std::find(c.kinds.begin(), c.kinds.end(), kind) != c.kinds.end();
        EXPECT_EQ(name.isKindOf(static_cast<ZoFileName::FileKind>(kind)), expected)
            << shown(name.fullName()) << ' ' << kind;
      }
      EXPECT_FALSE(name.isKindOf(static_cast<ZoFileName::FileKind>(0xFFFFFFFF)));
      EXPECT_EQ(name.isKindOf(), c.kinds.empty() ? 24u : c.kinds[0]);
    }
  }
}

TEST(FileNameKind, AGplFileIsComparedWithItsFirstDirectoryLevel) {
  struct Case {
    const wchar_t* text;
    unsigned int kind;
  };
  for (const Case& c :
       {Case{L"gear\\gear.gpl", 8}, Case{L"C:\\GEAR\\a\\b\\gear.gpl", 8},
        Case{L"gear\\bolt.gpl", 9}, Case{L"C:\\a\\gear\\gear.gpl", 9}, Case{L"gear.gpl", 10},
        Case{L"\\gear.gpl", 10}, Case{L"C:gear.gpl", 10}, Case{L"\\\\srv\\shr\\gear\\gear.gpl", 8},
        Case{L"http://h/x/gear.gpl", 9}, Case{L"\\\\gear\\gear.gpl", 10},
        Case{L"\xC4\\\xE4.gpl", 8}, Case{L"$gear'\\bolt\\bolt.gpl", 8}}) {
    const ZoFileName name(c.text);
    EXPECT_EQ(name.isKindOf(), c.kind) << shown(c.text);
    for (unsigned int kind = 8; kind <= 10; ++kind) {
      EXPECT_EQ(name.isKindOf(static_cast<ZoFileName::FileKind>(kind)),
                kind == c.kind || kind == 10);
    }
  }
}

}  // namespace
