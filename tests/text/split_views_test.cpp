// zoSplitViews beside ZoString::split.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/text/split_views.h>

#include <filesystem>
#include <ranges>
#include <string>
#include <vector>

namespace {

static_assert(std::ranges::forward_range<zo::SplitViews>);

std::vector<std::wstring> split(std::wstring_view text, std::wstring_view separators) {
  ZoArray<ZoString> pieces;
  const unsigned n = ZoString(text).split(separators, pieces);
  EXPECT_EQ(n, pieces.entries());
  std::vector<std::wstring> made;
  for (const ZoString& piece : pieces) made.emplace_back(piece.view());
  return made;
}

std::vector<std::wstring> collected(const zo::SplitViews& views) {
  std::vector<std::wstring> made;
  for (const std::wstring_view piece : views) made.emplace_back(piece);
  return made;
}

TEST(SplitViews, GivesThePiecesOfSplit) {
  using namespace std::string_view_literals;
  std::vector<std::wstring> texts{L""};
  for (size_t i = 0; i < texts.size() && texts[i].size() < 4; ++i) {
    for (const wchar_t c : {L'a', L',', L';', L'\u00A6', L'\0'}) texts.push_back(texts[i] + c);
  }
  for (const std::wstring& text : texts) {
    for (const std::wstring_view separators : {L""sv, L",;"sv, L"\0"sv, L"\u00A6,"sv, L"\u2026b"sv})
      ASSERT_EQ(collected(zoSplitViews(text, separators)), split(text, separators));
    for (const wchar_t separator : {L',', L'\u00A6', L'\0'})
      ASSERT_EQ(collected(zoSplitViews(text, separator)), split(text, {&separator, 1}));
  }
}

TEST(SplitViews, TakesAllFormsOfTextAndViewsThem) {
  const ZoString string = L"ab,c";
  const std::filesystem::path path(L"ab,c");
  const std::wstring_view view = string;
  const std::vector<std::wstring> expected{L"ab", L"c"};
  EXPECT_EQ(collected(zoSplitViews(string, L',')), expected);
  EXPECT_EQ(collected(zoSplitViews(string.left(ZoString::npos), L",")), expected);
  EXPECT_EQ(collected(zoSplitViews(L"ab,c", ZoString(L",").view())), expected);
  EXPECT_EQ(collected(zoSplitViews(path, L',')), expected);
  EXPECT_EQ(collected(zoSplitViews(std::wstring_view(view), view.substr(2, 1))), expected);
  EXPECT_TRUE(zoSplitViews(static_cast<const wchar_t*>(nullptr), L",").empty());

  const auto pieces = zoSplitViews(string, L',');
  const auto first = pieces.begin();
  EXPECT_EQ(first->data(), string.data()) << "nothing is copied";
  EXPECT_EQ(*std::next(first), L"c");
  EXPECT_EQ(std::next(first, 2), pieces.end());
  EXPECT_EQ(std::ranges::distance(pieces), 2);
}

}  // namespace
