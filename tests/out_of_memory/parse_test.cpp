// Tokens and tables of text when memory runs out: what was next is next still, and no half row is
// written.
#include <gtest/gtest.h>
#include <zo/parse.h>

#include <memory>
#include <string>
#include <vector>

#include "support/failing_memory.h"

namespace {

using zo::test::failEveryRequest;

TEST(OutOfMemoryInParsing, RulesAndTokensStay) {
  struct State {
    ZoParser parser{L"name # 'it''s a text that takes memory' )"};
    ZoString text;
  };
  failEveryRequest(
      "rules", [] { return std::make_unique<State>(); },
      [](auto& state) {
        (void)state->parser.peek();
        state->parser.setSigns(L"( a-sign-that-is-long )").setLineComments(L"a-mark-that-is-long");
        return 0;
      },
      [](auto& state, bool done) {
        EXPECT_TRUE(state->parser.next().is(L"name"));
        if (!done) {
          EXPECT_NE(state->parser.next().kind(), ZoToken::kEnd);
        }
        state->parser.setText(L"name");
      });
  failEveryRequest(
      "expect",
      [] {
        auto state = std::make_unique<State>();
        state->parser.setQuotes(L"'", ZoToken::kDoubled);
        state->parser.next(), state->parser.next();
        return state;
      },
      [](auto& state) {
        if (state->parser.expect(L"a word") != 1) return 2;
        return state->parser.expectText(state->text);
      },
      [](auto& state, bool done) {
        EXPECT_EQ(state->text.isEmpty(), !done);
        EXPECT_EQ(state->parser.peek().kind(), done ? ZoToken::kSign : ZoToken::kText);
      });
}

TEST(OutOfMemoryInParsing, RowsAreReadAgainAndWrittenWhole) {
  const std::wstring text =
      L"name,a column whose name is long,\"c\"\n\"a \"\"text\"\" that is put "
      L"together\",b,c\n1,2,3\n";
  struct Reading {
    explicit Reading(const std::wstring& text) : reader(text) {}
    ZoCsvReader reader;
    std::vector<std::wstring> first;
    bool hasHeader = false;
  };
  failEveryRequest(
      "read", [&] { return std::make_unique<Reading>(text); },
      [](auto& state) {
        ZoCsvReader& reader = state->reader;
        if (!state->hasHeader && reader.readHeader()) return 2;
        state->hasHeader = true;
        if (!reader.next()) return 2;
        state->first.assign(reader.begin(), reader.end());
        return 0;
      },
      [](auto& state, bool done) {
        if (!done) return;
        EXPECT_EQ(state->reader.column(L"A column whose name is LONG"), 1u);
        EXPECT_EQ(state->first.size(), 3u);
      });
  failEveryRequest(
      "write", [] { return std::make_unique<ZoCsvWriter>(); },
      [](auto& writer) { return writer->row(L"first", L"a \"field\" that is long", 1.5, 7); },
      [](auto& writer, bool done) {
        constexpr std::wstring_view kRow = L"first,\"a \"\"field\"\" that is long\",1.5,7\r\n";
        EXPECT_EQ(writer->text(), done ? kRow : std::wstring_view());
      });
}

}  // namespace
