// The standard message service over files in a folder.
#include <zo/library/library.h>
#include <zo/result_text.h>
#include <zo/system.h>

#include <thread>

#include "messages/message_fixture.h"
#include "support/registry_base.h"

using zo::test::MessageTest;

namespace {

const ZoString kPartsName(L"parts");

TEST_F(MessageTest, LooksUpByFileAndNumberInAnyCase) {
  write("parts.msg", "1 one\n0xFFFFFFFF last\n3\n");
  EXPECT_EQ(load(L"none.msg"), ZoResult::refused);
  EXPECT_EQ(load(L""), ZoResult::refused);
  std::ofstream(folder_.path() / "other.msg") << "no messages";
  EXPECT_EQ(load(L"other"), ZoResult::invalid);
  EXPECT_EQ(text(L"parts", 1), L"");
  EXPECT_EQ(load(L"Parts.MSG"), 0);
  for (const wchar_t* file : {L"parts", L"PARTS"}) EXPECT_EQ(text(file, 1), L"one");
  EXPECT_EQ(text(L"parts", -1), L"last");
  ZoString kept(L"kept");
  EXPECT_EQ(service().getText(kPartsName, 2, kept), ZoResult::refused);
  EXPECT_EQ(service().getText(L"part", 1, kept), ZoResult::refused);
  EXPECT_EQ(kept, L"kept");
  EXPECT_EQ(service().getText(kPartsName, 3, kept), 0);
  EXPECT_TRUE(kept.isEmpty());
}

TEST_F(MessageTest, PutsReferencesAndArgumentsInTheirPlaces) {
  write("parts.msg",
        "1 a%{2}c\n2 b\n3 %{F:9} %1\n4 %{77} %{none:1}\n5 50%% of %1, 100 %\n6 %2 %1 %2%012 %3\n"
        "7 %{?1 one|many} %{?2 %1 a%|b%}|%{2} %{?1 x|y}}\n8 %{?3 a|b}\n9 %{6}\n");
  write("f.msg", "9 other\n");
  ASSERT_EQ(load(L"parts"), 0);
  ASSERT_EQ(load(L"f"), 0);
  EXPECT_EQ(text(L"parts", 1), L"abc");
  EXPECT_EQ(text(L"parts", 3), L"other %1");
  EXPECT_EQ(text(L"parts", 4), L"4: %{77} %{none:1}");
  EXPECT_EQ(text(L"parts", 5), L"50% of %1, 100 %");
  EXPECT_EQ(text(L"parts", 7), L"%{?1 one|many} %{?2 %1 a%|b%}|%{2} %{?1 x|y}}") << "as written";
  EXPECT_EQ(format(3, {L"x", 2}), L"other x") << "one more does not matter";
  EXPECT_EQ(format(5, {L"%1 %{2} %{?1 a}"}), L"50% of %1 %{2} %{?1 a}, 100 %") << "not looked at";
  EXPECT_EQ(format(6, {1, L"b"}), L"4: b 1 b12 %3");
  EXPECT_EQ(format(9, {1, 2, 3}), L"2 1 212 3") << "references see the arguments, too";
  EXPECT_EQ(format(7, {1, 1}), L"one 1 a|b}");
  EXPECT_EQ(format(7, {2, -2}), L"many b y");
  EXPECT_EQ(format(8, {1, 2}), L"4: %{?3 a|b}");
  EXPECT_EQ(format(77, {1}), L"");
  ZoString text;
  EXPECT_EQ(service().format(L"parts", 6, ZoList<ZoVariant>(ZoArray<ZoVariant>{1, 2, 3}), text), 0);
  EXPECT_EQ(text, L"2 1 212 3");
}

TEST_F(MessageTest, PrintsValuesAsTheUserWantsThem) {
  write("parts.msg", "1 %1\n2 %{?1 one|many}\n");
  ASSERT_EQ(load(L"parts"), 0);
  ZoUnitFormat inches{.unit = L"in", .precision = 2, .decimal = L','};
  ASSERT_EQ(ZoSystem::units().setFormat(ZoTypeCode::Length, inches), 0);
  int variable = 7;
  const struct {
    ZoVariant value;
    const wchar_t *printed, *form;
  } table[] = {{ZoVariant(25.4, ZoTypeCode::Length), L"1,00 in", L"many"},
               {ZoVariant(1.0), L"1", L"one"},
               {ZoVariant(1.5), L"1,5", L"many"},
               {ZoVariant(-1), L"-1", L"one"},
               {ZoVariant(std::int64_t{1}), L"1", L"one"},
               {ZoVariant(&variable), L"7", L"many"},
               {ZoVariant(true), L"1", L"one"},
               {ZoVariant(L"\u00E4"), L"\u00E4", L"many"},
               {ZoVariant(ZoVariant::kEmpty, ZoTypeCode::Length), L"", L"many"},
               {ZoVariant(-0x1p63), L"-9223372036854776000", L"many"}};
  for (const auto& [value, printed, form] : table) {
    EXPECT_EQ(format(1, {value}), printed);
    EXPECT_EQ(format(2, {value}), form) << printed;
  }
}

// Circles, depths and the "billion laughs": each ends within the bounds that the contract tells.
TEST_F(MessageTest, ReferencesEndWithinTheirBounds) {
  std::string lines = "1 a%{2}\n2 b%{1}\n3 %{3}\n";
  for (int i = 100; i < 130; ++i)
    lines += std::to_string(i) + " %{" + std::to_string(i + 1) + "}\n";
  lines += "130 end\n200 ha\n300\n";
  for (const int base : {201, 301})
    for (int i = base; i < base + 15; ++i) {
      lines += std::to_string(i) + ' ';
      for (int n = 0; n < 10; ++n) lines += "%{" + std::to_string(i - 1) + "}";
      lines += "\n";
    }
  write("parts.msg", lines + "400 " + std::string(65535, 'x') +
                         "\\uD83D\\uDE00\n401 %{402}z\n402 " + std::string(65535, 'x'));
  ASSERT_EQ(load(L"parts"), 0);
  EXPECT_EQ(text(L"parts", 1), L"4: ab%{1}");
  EXPECT_EQ(text(L"parts", 3), L"4: %{3}");
  EXPECT_EQ(text(L"parts", 131 - ZoMessage::kMaxDepth), L"end");
  EXPECT_EQ(text(L"parts", 130 - ZoMessage::kMaxDepth), L"4: %{130}");
  const std::wstring laughs = text(L"parts", 215), silence = text(L"parts", 315);
  EXPECT_EQ(laughs.size(), 3 + ZoMessage::kMaxLength);
  EXPECT_TRUE(laughs.starts_with(L"4: haha"));
  EXPECT_TRUE(silence.starts_with(L"4: %{") && silence.size() < ZoMessage::kMaxLength + 4)
      << "reading ends, too";
  EXPECT_EQ(text(L"parts", 401).size(), 65536u);
  EXPECT_EQ(text(L"parts", 400), L"") << "too long for a message";
  const std::wstring filled = format(401, {std::wstring(3, L'y')});
  EXPECT_EQ(filled.size(), 65536u);
}

TEST_F(MessageTest, TriesEveryLanguageForEveryReference) {
  write("parts.msg", "@language en\n1 en %{2}\n2 two\n3 three\n4 %{?1 one|other}\n");
  write("parts.de.msg", "@language de\n1 de %{2}\n2 zwei\n");
  write("parts.de-AT.msg", "@language de-AT\n1 at %{2} %{3}\n");
  write("parts.pl.msg", "@language pl\n@fallback cs\n1 pl\n4 %{?1 a|b|c}\n");
  write("parts.cs.msg", "@fallback pl\n1 cs\n2 dva\n");
  write("parts.ru.msg", "4 %{?1 odna|dve|pyat}\n");  // its name says the language
  ASSERT_EQ(load(L"parts"), 0);
  for (const auto& [languages, one, two] :
       std::vector<std::tuple<std::vector<ZoString>, const wchar_t*, const wchar_t*>>{
           {{L"de-AT"}, L"at zwei three", L"zwei"},
           {{L"de-CH", L"en"}, L"de zwei", L"zwei"},
           {{L"en-US", L"de"},
            L"en two",
            L"two"},  // the file without a language says it is English
           {{L"EN", L"de"}, L"en two", L"two"},
           {{L"fr", L"pl"}, L"pl", L"dva"},
           {{L"fr"}, L"en two", L"two"}}) {
    ZoArray<ZoString> tags;
    for (const ZoString& tag : languages) ASSERT_EQ(tags.append(tag), 0);
    ASSERT_EQ(service().setLanguages(tags), 0);
    EXPECT_EQ(text(L"parts", 1), one);
    EXPECT_EQ(text(L"parts", 2), two);
  }
  setLanguages({L"pl_PL"});
  EXPECT_EQ(format(4, {5}), L"c");
  setLanguages({L"ru"});
  EXPECT_EQ(format(4, {21}), L"odna");
  setLanguages({L"de"});
  EXPECT_EQ(format(4, {5}), L"other") << "the rule of the language that the text is in";
  ZoArray<ZoString> now;
  EXPECT_EQ(setLanguages({L"de", L"..\\x"}), ZoResult::refused);
  EXPECT_EQ(setLanguages({L"de-AT", L"DE", L"en-GB"}), 0);
  ASSERT_EQ(service().getLanguages(now), 0);
  EXPECT_EQ(ZoString::join(now, L" "), L"de-AT de en-GB en");
}

TEST_F(MessageTest, BeginsWithTheSettingAndTheUsersLanguages) {
  const zo::test::RegistryBase base;
  ASSERT_EQ(ZoSystem::cfg().init(base.path().c_str(), nullptr), 0);
  ASSERT_EQ(ZoSystem::cfg().put(L"messages@language", L"fr-CA; ../x,de"), 0);
  ZoArray<ZoString> chosen, users;
  ASSERT_EQ(service().getLanguages(chosen), 0);
  ASSERT_GE(chosen.entries(), 3u);
  EXPECT_TRUE(chosen[0] == L"fr-CA" && chosen[1] == L"fr" && chosen[2] == L"de");
  ASSERT_EQ(ZoSystem::cfg().removeAt(L"messages@language"), 0);
  ASSERT_EQ(setLanguages({}), 0);
  ASSERT_EQ(service().getLanguages(users), 0);
  EXPECT_EQ(users.entries(), chosen.entries() - 3) << "and behind the setting the user's";
  EXPECT_FALSE(users.isEmpty());
}

TEST_F(MessageTest, FilesMayLieInALibrary) {
  write("parts.msg", "@language en\n1 one\n");
  write("parts.de.msg", "1 eins\n");
  const ZoFileName library = full(L"app.lib");
  {
    ZoLibrary made;
    ASSERT_EQ(made.open(library, ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
    for (const wchar_t* name : {L"parts.msg", L"parts.de.msg"})
      ASSERT_EQ(made.addFile(full(name), name), 0);
    ASSERT_EQ(made.addFile(full(L"parts.msg"), L"texts/other.msg"), 0);
  }
  for (const wchar_t* name : {L"parts.msg", L"parts.de.msg"})
    std::filesystem::remove(folder_.path() / name);
  setLanguages({L"de", L"en"});
  ASSERT_EQ(service().load(L"parts", L"a"), ZoResult::refused);
  ASSERT_EQ(load(L"app.lib|texts/other", L"a"), 0);
  EXPECT_EQ(text(L"other", 1), L"one");
  ASSERT_EQ(ZoSystem::fileSearch().addLibrary(library, L"a"), 0);
  ASSERT_EQ(service().load(L"parts", L"a"), 0);
  EXPECT_EQ(text(L"parts", 1), L"eins");
}

TEST_F(MessageTest, FilesComeThroughTheSearchAndGoWithTheirModule) {
  std::filesystem::create_directories(folder_.path() / "sub");
  write("parts.msg", "@language en\n1 one\n2 two\n");
  write("sub/parts.msg", "@language en\n1 customer's\n");
  write("sub/parts.de.msg", "1 deutsch\n");
  ASSERT_EQ(service().load(L"parts", L"a"), ZoResult::refused);
  ASSERT_EQ(ZoSystem::fileSearch().addPath(ZoFileName(folder_.path().wstring()), L"a"), 0);
  ASSERT_EQ(service().load(L"parts", L"a"), 0);
  ASSERT_EQ(load(L"sub\\parts.msg", L"b"), 0);
  ASSERT_EQ(load(L"sub\\parts.msg", L"B"), 0) << "once more";
  EXPECT_EQ(text(L"parts", 1), L"customer's") << "the one loaded last comes first";
  EXPECT_EQ(text(L"parts", 2), L"two");
  setLanguages({L"de"});
  EXPECT_EQ(text(L"parts", 1), L"deutsch");
  setLanguages({L"en", L"de"});
  EXPECT_EQ(text(L"parts", 1), L"customer's");
  std::filesystem::remove(folder_.path() / "sub" / "parts.msg");
  ASSERT_EQ(service().reload(), 0);
  EXPECT_EQ(text(L"parts", 1), L"one") << "but no other language before the wanted one";
  ZoVariant data(ZoVariant::kDict);
  ASSERT_EQ(data.put(L"Module", L"B"), 0);
  ASSERT_EQ(ZoSystem::sysDisp().sendNotice(ZoSysNotice::moduleReleased, data), 0);
  setLanguages({L"de"});
  EXPECT_EQ(text(L"parts", 1), L"one");
  service().poolRelease(nullptr);
  service().poolRelease(L"a");
  EXPECT_EQ(text(L"parts", 1), L"");
}

TEST_F(MessageTest, ReloadsWithoutARestartAndLastingTextsStay) {
  write("parts.msg", "1 first\n2 %{1}!\n3 %{4}\n");
  ASSERT_EQ(load(L"parts"), 0);
  const wchar_t* const first = service().lasting(L"parts", 1, L"default");
  const wchar_t* const composed = service().lasting(L"parts", 2, L"default");
  const wchar_t* const byDefault = L"default";
  EXPECT_EQ(service().lasting(L"parts", 1, L"x"), first);
  EXPECT_EQ(service().lasting(L"parts", 3, byDefault), byDefault) << "incomplete";
  EXPECT_EQ(service().lasting(nullptr, 1, byDefault), byDefault);
  EXPECT_EQ(service().lasting(L"parts", 7, nullptr), nullptr);
  write("parts.msg", "1 second\n2 %{1}!\n");
  EXPECT_EQ(text(L"parts", 1), L"first");
  EXPECT_EQ(service().reload(), 0);
  EXPECT_EQ(text(L"parts", 1), L"second");
  std::filesystem::remove(folder_.path() / "parts.msg");
  EXPECT_EQ(service().reload(), ZoResult::refused);
  EXPECT_STREQ(service().lasting(L"parts", 2, byDefault), L"second!") << "what it had";
  service().poolRelease(L"mine");
  EXPECT_STREQ(first, L"first");
  EXPECT_STREQ(composed, L"first!");
}

// A units service in the middle of a look-up: meanwhile another thread changes everything.
TEST_F(MessageTest, ALookUpKeepsItsStateWhileAnotherThreadChangesIt) {
  struct Units : ZoStdUnits {
    explicit Units(ZoMessage& messages) : ZoStdUnits(L'.', 0), messages_(messages) {}
    int print(double, ZoTypeCode, ZoString& text) override {
      std::thread([this] {
        for (int i = 0; i < 3; ++i) EXPECT_EQ(messages_.reload(), 0);
        messages_.poolRelease(L"mine");
      }).join();
      text = L"printed";
      return 0;
    }
    ZoMessage& messages_;
  };
  write("parts.msg", "1 %1 %{2} %{?2 x|%{2}}\n2 still here\n");
  ASSERT_EQ(load(L"parts"), 0);
  ZoSystem::setUnits(new Units(service()));
  EXPECT_EQ(format(1, {1.5, 2}), L"printed still here still here");
  EXPECT_EQ(text(L"parts", 2), L"");
  delete &ZoSystem::units();
  ZoSystem::setUnits(nullptr);
}

TEST_F(MessageTest, ThreadsLookUpWhileOthersReload) {
  write("parts.msg", "1 %{2}%1\n2 text\n");
  ASSERT_EQ(load(L"parts"), 0);
  std::thread reader([this] {
    for (int i = 0; i < 300; ++i) {
      EXPECT_EQ(format(1, {L"!"}), L"text!");
      EXPECT_STREQ(service().lasting(L"parts", 2, L""), L"text");
    }
  });
  for (int i = 0; i < 30; ++i) EXPECT_EQ(service().reload(), 0);
  reader.join();
}

// ---- Services of a client's own, and the texts that variants take from any ----

struct Own : ZoMessage {
  int getText(const ZoString& file, int number, ZoString& text) override {
    if (throws) throw std::runtime_error("not now");
    ++asked;
    text = file.view() == L"zotype" ? L"T%01" : L"F";
    text += ZoString(std::to_wstring(number));
    return result;
  }
  int asked = 0, result = 0;
  bool throws = false;
};

TEST(OwnMessages, NeedNoMoreThanGetText) {
  const zo::test::Attached attached;
  Own own;
  ZoSystem::setMessage(&own);
  ZoString text(L"old");
  EXPECT_EQ(own.format(L"zotype", 12, {L"a"}, text), 0);
  EXPECT_EQ(text, L"Ta12") << "a place of two digits";
  EXPECT_EQ(own.load(ZoFileName(L"x"), L"m"), ZoResult::refused);
  EXPECT_EQ(own.reload(), ZoResult::refused);
  for (const unsigned int flag : {1u, 0x100000u}) {
    EXPECT_EQ(ZoType::flagToMessage(flag), L"F" + std::to_wstring(flag));
    EXPECT_EQ(ZoType::messageToFlag((L"f" + std::to_wstring(flag)).c_str()), flag);
  }
  EXPECT_STREQ(ZoType::codeToLocString(ZoTypeCode::Length), L"T%018961");
  EXPECT_EQ(ZoType::stringToCode(L"t%018961"), ZoTypeCode::Length);
  EXPECT_GT(own.asked, 4);
  own.throws = true;
  EXPECT_STREQ(ZoType::codeToLocString(ZoTypeCode::Length), L"Length");
  EXPECT_EQ(zoResultText(0, ZoResultFamily::common), L"Success.");
  own.throws = false;
  own.result = ZoResult::incomplete;
  EXPECT_STREQ(ZoType::flagToMessage(0), L"No Flag");
  EXPECT_EQ(own.format(L"zoflag", 1, ZoArray<ZoVariant>(), text), ZoResult::incomplete);
}

}  // namespace
