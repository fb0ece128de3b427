// The message files that are installed: the English ones are what stands in the code (those of the
// tool are compared by its own test), and the others have the same numbers and marks.
#include <zo/system.h>

#include <cstdlib>
#include <iomanip>
#include <set>
#include <sstream>

#include "attach/result_table.h"
#include "dialogs/dialog_texts.h"
#include "messages/message_fixture.h"
#include "support/documents.h"
#include "support/file_bytes.h"
#include "variant/code_names.h"
#include "variant/type_texts.h"

namespace {

const std::string kFolder = zo::test::sourcePath("share/messages/").string();
constexpr const char* kNames[] = {"zotype", "zoflag", "zoresult", "zodialog"};

class Writer {
 public:
  explicit Writer(const char* comment) {
    out_ << "@messages 1\n@language en\n# " << comment << "\n";
  }
  void heading(const std::string& text) { out_ << "\n# " << text << '\n'; }
  void message(unsigned int number, const wchar_t* text) {
    out_ << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << number << ' '
         << ZoString(text).toUtf8() << '\n';
  }
  [[nodiscard]] std::string text() const { return out_.str(); }

 private:
  std::ostringstream out_;
};

std::string types() {
  Writer writer("Names of type codes; the number is the code.");
  for (const zo::CodeNames& row : zo::codeNames())
    if (row.userName) writer.message(static_cast<unsigned int>(row.code), row.userName);
  return writer.text();
}

std::string flags() {
  Writer writer(
      "Texts of flags; the number is the flag's value, from 0x80000001 on without a flag.");
  for (const zo::FlagText& row : zo::flagTexts()) writer.message(row.number, row.text);
  return writer.text();
}

std::string results() {
  Writer writer("Texts of result codes; the number is 0x10000 times the family, and the code.");
  for (const zo::ResultEntry* before = nullptr; const zo::ResultEntry& row : zo::resultTable()) {
    if (!before || before->family != row.family)
      writer.heading("family " + std::to_string(static_cast<int>(row.family)));
    writer.message(static_cast<unsigned int>(zo::resultNumber(row.code, row.family)), row.text);
    before = &row;
  }
  writer.heading("all others");
  writer.message(zo::kUnknownResult, zo::kUnknownResultText);
  return writer.text();
}

std::string dialogs() {
  Writer writer("Words in dialogs.");
  for (const zo::DialogTextEntry& row : zo::dialogTexts())
    writer.message(static_cast<unsigned int>(row.number), row.text);
  return writer.text();
}

// With ZO_WRITE_MESSAGES in the environment they are written anew.
TEST(ShippedMessages, EnglishIsWhatStandsInTheCode) {
  const std::string files[] = {types(), flags(), results(), dialogs()};
  for (int i = 0; i < 4; ++i) {
    const std::string path = kFolder + kNames[i] + ".msg";
    if (std::getenv("ZO_WRITE_MESSAGES")) std::ofstream(path, std::ios::binary) << files[i];
    EXPECT_EQ(zo::test::fileBytes(path), files[i])
        << "to write it: ZO_WRITE_MESSAGES=1 scripts/wine-run .../messages_tests.exe";
  }
}

ZoMessageMap read(const std::string& path) {
  ZoMessageMap map;
  std::vector<ZoMessageFault> faults;
  EXPECT_EQ(map.parse(zo::test::fileBytes(path), &faults), 0) << path;
  for (const ZoMessageFault& fault : faults)
    ADD_FAILURE() << path << ':' << fault.line << ": reason " << fault.reason;
  return map;
}

// Kind and number of each mark.
std::multiset<std::pair<int, unsigned int>> marksOf(std::wstring_view text) {
  std::multiset<std::pair<int, unsigned int>> marks;
  for (const ZoMessageMark& mark : zoMessageMarks(text)) marks.emplace(mark.kind, mark.number);
  return marks;
}

TEST(ShippedMessages, TranslationsHaveTheSameNumbersAndMarks) {
  for (const std::string name : {"zotype", "zoflag", "zoresult", "zodialog", "zolib", "zoval"}) {
    const ZoMessageMap english = read(kFolder + name + ".msg");
    const ZoMessageMap german = read(kFolder + name + ".de.msg");
    EXPECT_EQ(german.language(), L"de");
    ASSERT_EQ(german.entries(), english.entries()) << name;
    for (unsigned int i = 0; i < english.entries(); ++i) {
      EXPECT_EQ(german.number(i), english.number(i)) << name;
      EXPECT_EQ(marksOf(german.text(i)), marksOf(english.text(i))) << german.number(i);
      EXPECT_EQ(german.text(i).back() == L'.', english.text(i).back() == L'.') << german.number(i);
    }
  }
}

TEST(ShippedMessages, SpeakGermanWhereTheyAreLoaded) {
  const zo::test::Attached attached;
  const auto expectAll = [](const wchar_t* length, const wchar_t* flag, unsigned int value,
                            const wchar_t* result, const wchar_t* unknown) {
    EXPECT_STREQ(ZoType::codeToLocString(ZoTypeCode::Length), length);
    EXPECT_EQ(ZoType::stringToCode(length), ZoTypeCode::Length);
    EXPECT_STREQ(ZoType::flagToMessage(2), flag);
    EXPECT_EQ(ZoType::messageToFlag(L"im browser SICHTBAR"), value);
    EXPECT_EQ(zoResultText(1001, ZoResultFamily::libraries), result);
    EXPECT_EQ(zoResultText(-77, ZoResultFamily::waits), unknown);
  };
  const auto expectEnglish = [&] {
    expectAll(L"Length", L"Visible in Browser", 0,
              L"The library has a member of that name already.", L"Unknown result code -77.");
  };
  expectEnglish();
  ZoMessage& messages = ZoSystem::message();
  ASSERT_EQ(messages.setLanguages(ZoArray<ZoString>{L"de-AT", L"en"}), 0);
  ASSERT_EQ(ZoSystem::fileSearch().addPath(ZoFileName(ZoString::fromUtf8(kFolder)), L"m"), 0);
  for (const char* const name : kNames)
    ASSERT_EQ(messages.load(ZoFileName(ZoString::fromUtf8(name)), L"m"), 0);
  expectAll(L"L\u00E4nge", L"Im Browser sichtbar", 2,
            L"Die Bibliothek hat bereits ein Mitglied dieses Namens.",
            L"Unbekannter Ergebniscode -77.");
  ZoString text;
  EXPECT_EQ(messages.getText(L"zoflag", static_cast<int>(0x80000003), text), 0);
  EXPECT_EQ(text, L"Inaktiv");
  const wchar_t* const given = ZoType::codeToLocString(ZoTypeCode::Length);
  ASSERT_EQ(messages.setLanguages(ZoArray<ZoString>{L"en"}), 0);
  expectEnglish();
  messages.poolRelease(L"M");
  expectEnglish();
  EXPECT_STREQ(given, L"L\u00E4nge");
}

TEST(ShippedMessages, AreNotNeeded) {
  EXPECT_STREQ(ZoType::codeToLocString(ZoTypeCode::Class), L"Folder");  // nothing is attached
  EXPECT_STREQ(ZoType::flagToMessage(0x40), L"Global Value");
  EXPECT_EQ(ZoType::messageToFlag(L"Inactive"), 0u) << "a text without a flag";
}

}  // namespace
