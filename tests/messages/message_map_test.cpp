// Message files read from bytes: what stands in them, and what is wrong with them.
#include <zo/messages.h>
#include <zo/system/codepage.h>

#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "messages/message_fixture.h"
#include "support/documents.h"

namespace {

using Faults = std::vector<ZoMessageFault>;

// All that is to be seen of a map: "1=text|2=text", and of the faults "!line:column:reason".
std::wstring shown(const ZoMessageMap& map, const Faults& faults) {
  std::wstring all;
  for (unsigned int i = 0; i < map.entries(); ++i) {
    const std::wstring text(map.text(i));
    EXPECT_EQ(map.find(map.number(i)), text);
    all += (i > 0 ? L"|" : L"") + std::to_wstring(map.number(i)) + L'=' + text;
  }
  for (const auto& [line, column, reason] : faults)
    all += L'!' + std::to_wstring(line) + L':' + std::to_wstring(column) + L':' +
           std::to_wstring(reason);
  return all;
}

std::wstring parsed(std::string_view bytes) {
  ZoMessageMap map;
  Faults faults;
  EXPECT_EQ(map.parse(bytes, &faults), 0);
  return shown(map, faults);
}

TEST(MessageMap, ReadsEveryLineOrNamesIt) {
  for (const auto& [lines, wanted] : std::vector<std::pair<std::string, const wchar_t*>>{
           {"", L""},
           {"\n  \t\n# comment\n  # comment\n1 a\r\n2\tb\r3   c d  \n", L"1=a|2=b|3=c d"},
           {"4294967295 z\n0xfF y\n0 x\n7", L"0=x|7=|255=y|4294967295=z"},
           {"1 apostrophe's 'n \"quotes\" # no comment",
            L"1=apostrophe's 'n \"quotes\" # no comment"},
           {R"(1 \n\r\t\\\u00e4\uD83D\uDE00\u0020)", L"1=\n\r\t\\\u00E4\xD83D\xDE00 "},
           {"1 one \\\n   two \\  \n\tthree\\\\\n2 x", L"1=one two three\\|2=x"},
           {"1 100 % of %1, %09, %99%% and %0 %00 %x", L"1=100 % of %1, %09, %99%% and %0 %00 %x"},
           {"1 %{17}%{0x2301}%{a.b-c:5} {} | }", L"1=%{17}%{0x2301}%{a.b-c:5} {} | }"},
           {"1 %{?1 a|b %{?2 c|d}%}%|}", L"1=%{?1 a|b %{?2 c|d}%}%|}"},
           // and what is wrong
           {"x\n1a b\n4294967296 c\n0x d\n-1 e\n1 f", L"1=f!2:1:5!3:1:5!4:1:5!5:1:5!6:1:5"},
           {"2 a\n1 b\n  2 c\n2 \\x\n3 d", L"1=b|2=a|3=d!4:1:6!5:3:7"},
           {"1 \\q\n2 a\\u12g4\n3 \\u0000\n4 \\u12\n5 x", L"5=x!2:3:7!3:4:7!4:3:7!5:3:7"},
           {"1 a\\q\\\n3 this still belongs to 1\n2 b", L"2=b!2:4:7"},
           {"1 a\\", L"!2:1:8"},
           {"1 a \\\n b %{\n2 %{x}\n3 %{:1}\n4 %{1\n5 %{a b:1}\n6 %{4294967296}",
            L"!3:4:9!4:3:9!5:3:9!6:3:9!7:3:9!8:3:9"},
           {"1 %{?1 a\n2 \\n%{?0 a|b}\n3 %{?1a|b}\n4 %{?1 a|%{?2 }",
            L"!2:3:10!3:5:10!4:3:10!5:3:10"},
           {"@fallback en\n@later 1\n@language\n@language d_\n@language de at\n1 a\n@language de",
            L"1=a!3:1:3!4:1:3!5:1:3!6:1:3!8:1:3"},
           {"@language de\n@language en\n@codepage nonsense\n", L"!3:1:3!4:1:4"}})
    EXPECT_EQ(parsed("@messages 1  # the head\n" + lines), wanted) << lines;
}

TEST(MessageMap, KeepsToItsBounds) {
  std::string plurals = "1 ", forms;
  for (int i = 0; i < 8; ++i) {
    plurals += "%{?1 ";
    forms += "}";
  }
  const std::string deepest = plurals + forms;
  EXPECT_EQ(parsed("@messages 1\n" + deepest),
            L"1=" + std::wstring(deepest.begin() + 2, deepest.end()));
  EXPECT_EQ(parsed("@messages 1\n" + plurals + "%{?1 }" + forms), L"!2:43:10");
  const std::string longest(ZoMessageMap::kMaxLength, 'x');
  EXPECT_EQ(parsed("@messages 1\n1 " + longest).size(), 2 + longest.size());
  EXPECT_EQ(parsed("@messages 1\n 1 " + longest + "x\n2 a"), L"2=a!2:2:11");
  ZoMessageMap map;
  Faults faults;
  std::string many = "@messages 1\n";
  for (int i = 0; i < 5000; ++i) many += "?\n";
  EXPECT_EQ(map.parse(many + "1 a", &faults), 0);
  EXPECT_EQ(faults.size(), ZoMessageMap::kMaxFaults);
  EXPECT_STREQ(map.find(1), L"a") << "what comes behind the last fault that is listed";
}

TEST(MessageMap, StaysAsItWasWhenItIsNoMessageFile) {
  ZoMessageMap map;
  ASSERT_EQ(map.parse("@messages 1\n@language de\n1 old"), 0);
  const ZoMessageMap copy = map;
  for (const std::string_view bytes :
       {"", "\n@messages 1", "@messages", "@messages 2\n1 a", "@messages 1 1", "@message 1",
        "# x\n@messages 1", "1 a", "\xFF\xFE", "\xEF\xBB\xBF"}) {
    Faults faults;
    EXPECT_EQ(map.parse(bytes, &faults), ZoResult::refused) << bytes;
    EXPECT_EQ(faults, (Faults{{1, 1, ZoMessageFault::kHead}}));
  }
  ASSERT_EQ(map.parse("@messages 1\n1 new"), 0);
  EXPECT_STREQ(copy.find(1), L"old") << "copies keep what was read";
  EXPECT_EQ(copy.language(), L"de");
  EXPECT_TRUE(map.language().isEmpty());
  for (int reason = ZoMessageFault::kHead; reason <= ZoMessageFault::kTooLong; ++reason)
    EXPECT_GT(std::wcslen(ZoMessageFault{1, 1, ZoMessageFault::Reason(reason)}.text()), 20u);
}

std::string utf16(std::wstring_view text, bool swap) {
  std::string bytes;
  for (const wchar_t c : text) {
    const char low = static_cast<char>(c), high = static_cast<char>(c >> 8);
    bytes += swap ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

// With the code page service and without one.
TEST(MessageMap, KnowsTheEncodingsOfPlainEditors) {
  const std::wstring text = L"@messages 1\n1 \u00E4\u20AC\n2 b";
  const std::string utf8 = "@messages 1\n1 \xC3\xA4\xE2\x82\xAC\n2 b";
  const struct {
    std::string bytes;
    unsigned int codepage;
    const wchar_t* shown;
  } files[] = {
      {utf8, 65001, L"1=\u00E4\u20AC|2=b"},
      {"\xEF\xBB\xBF" + utf8, 65001, L"1=\u00E4\u20AC|2=b"},
      {"\xFF\xFE" + utf16(text, false), 1200, L"1=\u00E4\u20AC|2=b"},
      {"\xFE\xFF" + utf16(text, true), 1201, L"1=\u00E4\u20AC|2=b"},
      {utf16(text, false), 1200, L"1=\u00E4\u20AC|2=b"},
      {"\xFE\xFF" + utf16(text, true) + "x", 1201, L"1=\u00E4\u20AC!3:4:2"},
      {"@messages 1\n# x\n@codepage windows-1252 # x\n1 \xE4\x80\n2 b", 1252,
       L"1=\u00E4\u20AC|2=b"},
      {"@messages 1\n@codepage ibm850\n1 \x84\n", 850, L"1=\u00E4"},
      {"@messages 1\n@codepage utf-8\n1 \xE4\n2 b", 65001, L"2=b!3:3:2"},
      {"@messages 1\n@codepage none\n1 \xC3\xA4", 65001, L"1=\u00E4!2:1:4"},
      {"\xEF\xBB\xBF@messages 1\n1 \xE4z\n2 b\xC3", 65001, L"!2:3:2!3:4:2"},
      {"@messages 1\n@codepage cp932\n1 \x82\xA0\n2 \x82\n3 c", 932, L"1=\u3042|3=c!4:1:2"},
      {std::string("@messages 1\n1 a\0b\n2 b", 21), 65001, L"2=b!2:4:2"},
      {std::string("@messages 1\n1 a\0b\n2 \xC3\xA4", 22), 65001, L"2=\u00E4!2:4:2"},
      {utf16(L"@messages 1\n1 \u4E00\u4E8C\u4E09\u56DB\u4E94\u516D\u4E03\u516B", false), 1200,
       L"1=\u4E00\u4E8C\u4E09\u56DB\u4E94\u516D\u4E03\u516B"},
  };
  for (int round = 0; round < 2; ++round) {
    std::unique_ptr<zo::test::Attached> attached;
    if (round == 1) attached = std::make_unique<zo::test::Attached>();
    for (const auto& [bytes, codepage, wanted] : files) {
      ZoMessageMap map;
      Faults faults;
      EXPECT_EQ(map.parse(bytes, &faults), 0) << bytes;
      EXPECT_EQ(shown(map, faults), wanted) << bytes;
      EXPECT_EQ(map.codepage(), codepage) << bytes;
    }
  }
  // Neither a mark nor UTF-8, in which no file ends inside a character: the system's code page.
  for (const char* const bytes : {"@messages 1\n1 \xE4\n", "@messages 1\n1 \xE4",
                                  "@messages 1\n1 x\xE4", "@messages 1\n1 \xC3\xA4\xE2\x82"}) {
    ZoMessageMap map;
    ASSERT_EQ(map.parse(bytes), 0);
    EXPECT_EQ(map.codepage(), ZoStdCodepage().ansi()) << bytes;
    EXPECT_NE(map.find(1), nullptr) << bytes;
  }
}

TEST(MessageMap, WritesWhatItReadsBackAsTheSame) {
  std::string lines = "@messages 1\n@language de\n@fallback en-GB\n";
  std::mt19937 random(1);
  const std::string_view pieces[] = {"a",       " ",        "\\n",    "\\\\",    "\\u0020",
                                     "%1",      "%{3}",     "\\r\\t", "\\u0001", "\\uD800",
                                     "\\uDC00", "\xC3\xA4", "\\uFFFD"};
  for (int number = 1; number < 300; ++number) {
    lines += std::to_string(number) + " ";
    for (unsigned n = random() % 8; n > 0; --n) lines += pieces[random() % std::size(pieces)];
    lines += "\n";
  }
  ZoMessageMap map, again;
  Faults faults;
  ASSERT_EQ(map.parse(lines, &faults), 0);
  ASSERT_EQ(map.entries() + faults.size(), 299u);
  ZoString written, rewritten;
  EXPECT_EQ(map.write(written), 0);
  EXPECT_EQ(again.parse(written.toUtf8(), &faults), 0);
  EXPECT_EQ(shown(map, {}), shown(again, faults));
  EXPECT_EQ(again.language(), L"de");
  EXPECT_EQ(again.fallback(), L"en-GB");
  EXPECT_EQ(again.write(rewritten), 0);
  EXPECT_EQ(written, rewritten);
}

TEST(MessageMap, ReadsTheDocumentsExample) {
  const std::string bytes = zo::test::hexdumpOf("docs/formats/message-file.md", "hexdump messages");
  ZoMessageMap map;
  Faults faults;
  ASSERT_EQ(map.parse(bytes, &faults), 0);
  EXPECT_EQ(shown(map, faults), L"1=L\u00E4nge|2=%1\n%{1}|7=%{?1 Loch|L\u00F6cher}!7:1:6!8:1:5");
  EXPECT_EQ(map.language(), L"de");
  EXPECT_EQ(map.codepage(), 1252u);
}

// Any bytes: no crash, faults in the file, and what was read is written and read as the same.
TEST(MessageMap, SurvivesDamagedFiles) {
  const std::string sound =
      "@messages 1\n@language pl\n@codepage utf-8\n# x\n1 a %1 %{2} %{f:0x3}\n2 b\\\n c\\u00e4\n"
      "4294967295 %{?1 a|b|%{?2 c|d}%%}\n";
  const char* const rounds = std::getenv("ZO_MUTATIONS");
  std::mt19937 random(7);
  for (int i = rounds ? std::atoi(rounds) : 2000; i > 0; --i) {
    std::string bytes = sound;
    for (unsigned n = 1 + random() % 4; n > 0; --n) {
      const std::size_t at = random() % bytes.size();
      switch (random() % 4) {
        case 0:
          bytes[at] = static_cast<char>(random());
          break;
        case 1:
          bytes.erase(at, 1 + random() % 4);
          break;
        case 2:
          bytes.insert(at, 1, "\\%{}?|@\n\r #0\t\xC3"[random() % 14]);
          break;
        default:
          bytes.resize(at + 1);
      }
      if (bytes.empty()) bytes = "@";
    }
    ZoMessageMap map, again;
    Faults faults;
    if (map.parse(bytes, &faults) != 0) continue;
    for (const ZoMessageFault& fault : faults)
      ASSERT_TRUE(fault.line > 0 && fault.column > 0) << bytes;
    ZoString written;
    ASSERT_EQ(map.write(written), 0);
    ASSERT_EQ(again.parse(written.toUtf8(), &faults), 0);
    ASSERT_EQ(shown(map, {}), shown(again, faults)) << bytes;
  }
}

TEST(MessageMarks, AreFoundInTheOrderOfTheText) {
  using Mark = ZoMessageMark;
  const auto mark = [](Mark::Kind kind, unsigned position, unsigned length, unsigned number,
                       std::wstring_view file = {}, unsigned forms = 0) {
    return Mark{kind, position, length, number, file, forms};
  };
  EXPECT_EQ(
      zoMessageMarks(L"%%1 %12 %{?2 %3|%{f:0x10}|x} %{7} % %{?1a}"),
      (std::vector<Mark>{mark(Mark::kArgument, 4, 3, 12), mark(Mark::kPlural, 8, 20, 2, L"", 3),
                         mark(Mark::kArgument, 13, 2, 3), mark(Mark::kReference, 16, 9, 16, L"f"),
                         mark(Mark::kReference, 29, 4, 7)}));
  EXPECT_TRUE(zoMessageMarks(L"plain").empty());
  EXPECT_TRUE(zoMessageMarks(static_cast<const wchar_t*>(nullptr)).empty());
}

}  // namespace
