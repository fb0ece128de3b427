// Messages when memory runs out: files are loaded or not, texts are there or as they were.
#include "messages/message_fixture.h"
#include "support/failing_memory.h"

namespace {

using zo::test::failEveryRequest;
using MessagesOutOfMemory = zo::test::MessageTest;

TEST_F(MessagesOutOfMemory, FilesAreLoadedOrNot) {
  write("parts.msg", "@language en\n1 one\n2 %{?1 one|%1} of %{1}\n");
  write("parts.de.msg", "@codepage windows-1252\n1 \xE4\n?\n");
  const ZoFileName parts = full(L"parts");
  const auto known = [this] { return text(L"parts", 1); };
  ASSERT_EQ(setLanguages({L"de"}), 0);
  failEveryRequest(
      "load",
      [this] {
        service().poolRelease(L"mine");
        return 0;
      },
      [&](int) { return service().load(parts, L"mine"); },
      [&](int, bool done) { EXPECT_EQ(known(), done ? L"\u00E4" : L""); });
  failEveryRequest(
      "reload", [] { return 0; }, [this](int) { return service().reload(); },
      [&](int, bool) { EXPECT_EQ(known(), L"\u00E4"); });
  failEveryRequest(
      "format", [] { return ZoString(L"old"); },
      [this](ZoString& got) { return service().format(L"parts", 2, {12345678}, got); },
      [](const ZoString& got, bool done) {
        EXPECT_EQ(got, done ? L"12345678 of \u00E4" : L"old");
      });
}

TEST_F(MessagesOutOfMemory, LastingTextsAreThereOrTheDefault) {
  write("parts.msg", "1 a text of some length that was never asked for\n");
  ASSERT_EQ(load(L"parts"), 0);
  failEveryRequest(
      "lasting", [] { return std::wstring(); },
      [this](std::wstring& got) {
        got = service().lasting(L"parts", 1, L"default");
        return 0;
      },
      [](const std::wstring& got, bool) {
        EXPECT_TRUE(got.starts_with(L"a text") || got == L"default" || got.empty());
      });
}

TEST(MessageMapOutOfMemory, IsReadOrStaysAsItWas) {
  failEveryRequest(
      "parse",
      [] {
        ZoMessageMap map;
        EXPECT_EQ(map.parse("@messages 1\n1 old"), 0);
        return map;
      },
      [](ZoMessageMap& map) {
        return map.parse("@messages 1\n@language de\n1 new and longer than it was\n?\n1 again");
      },
      [](const ZoMessageMap& map, bool done) {
        EXPECT_EQ(std::wstring_view(map.find(1)).substr(0, 3), done ? L"new" : L"old");
      });
}

}  // namespace
