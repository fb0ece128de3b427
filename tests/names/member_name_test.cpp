#include <gtest/gtest.h>
#include <zo/names/member_name.h>

#include <random>
#include <string>

#include "names/member_text.h"
#include "support/printers.h"

namespace {

TEST(MemberName, SplitsWhatItJoinsAndNoFileNameCanBeOne) {
  for (const auto& [library, member, text] :
       {std::array<const wchar_t*, 3>{L"C:\\p\\b.lib", L"m8/hex.dwg", L"C:\\p\\b.lib|m8/hex.dwg"},
        {L"b.lib", L"a", L"b.lib|a"},
        {L"\\\\srv\\s\\b.lib", L"O'Hara 'x'", L"\\\\srv\\s\\b.lib|O'Hara 'x'"},
        {L"b.lib", L"C:\\x\\y.dwg", L"b.lib|C<;\\x\\y.dwg"},
        {L"a|b<.lib", L"|<", L"a<|b<<.lib|<|<<"},
        {L"a|", L"|b", L"a<||<|b"},
        {L"$m'\\b.lib", L"x", L"$m'\\b.lib|x"}}) {
    const ZoFileName name = zoMemberName(library, member);
    EXPECT_EQ(name.view(), text);
    EXPECT_TRUE(zoIsMemberName(name));
    EXPECT_FALSE(name.possibleOnVolume());
    ZoMemberName parts;
    ASSERT_EQ(zoSplitMemberName(name, parts), 0);
    EXPECT_EQ(parts.library.view(), library);
    EXPECT_EQ(parts.member.view(), member);
  }
  ZoFileName below(L"$m'\\b.lib|x");
  ASSERT_EQ(below.setMacro(L"m", L"C:\\p"), ZoResult::nameInvalid);
  ZoMemberName parts;
  ASSERT_EQ(zoSplitMemberName(below, parts), 0);
  EXPECT_EQ(parts.library.view(), L"C:\\p\\b.lib");
}

TEST(MemberName, RefusesWhatHasNoMeaning) {
  for (const auto& [text, code] : {std::pair<const wchar_t*, int>{L"", ZoResult::refused},
                                   {L"b.lib", ZoResult::refused},
                                   {L"b.lib<|a", ZoResult::refused},
                                   {L"b.lib<", ZoResult::refused},
                                   {L"a|b|c", ZoResult::nameInvalid},
                                   {L"|b", ZoResult::nameInvalid},
                                   {L"a|", ZoResult::nameInvalid},
                                   {L"a|b<", ZoResult::nameInvalid},
                                   {L"a<x|b", ZoResult::nameInvalid},
                                   {L"\\|://", ZoResult::nameInvalid},
                                   {L"b.lib|C:\\x", ZoResult::refused},
                                   {L"C<;\\b.lib|x", ZoResult::nameInvalid},
                                   {L"C|\"'\"", ZoResult::nameInvalid},
                                   {L"C|$b'C", ZoResult::nameInvalid},
                                   {L"a|bb<;c", ZoResult::nameInvalid}}) {
    ZoMemberName parts{.library = L"old", .member = L"old"};
    EXPECT_EQ(zoSplitMemberName(text, parts), code) << text;
    EXPECT_EQ(zoIsMemberName(text), code == ZoResult::nameInvalid) << text;
    EXPECT_EQ(parts.library == L"old" && parts.member == L"old", true);
  }
}

TEST(MemberName, AreEmptyWhereNoTextSplitsIntoThem) {
  const std::wstring signs = L"|<;:a/\\\"'$";
  std::mt19937 random(7);
  const auto any = [&] {
    std::wstring text;
    for (std::size_t n = 1 + random() % 5; n > 0; --n) text += signs[random() % signs.size()];
    return ZoFileName(text);
  };
  for (int round = 0; round < 5000; ++round) {
    const ZoFileName library = any(), member = any(), name = zoMemberName(library, member);
    ZoMemberName parts;
    if (name.isEmpty()) continue;
    ASSERT_EQ(zoSplitMemberName(name, parts), 0);
    ASSERT_EQ(parts.library.view(), library.view());
    ASSERT_EQ(parts.member.view(), member.view());
  }
}

// Every text of a few signs is refused, or says what is said by one text alone.
TEST(MemberName, HasOneTextForEachMeaning) {
  const std::wstring signs = L"|<;:a/";
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::wstring text;
    for (std::size_t n = random() % 9; n > 0; --n) text += signs[random() % signs.size()];
    zo::MemberText parts, again;
    const int code = zo::splitMemberText(text, parts);
    ASSERT_EQ(code == ZoResult::refused, !zo::isMemberText(text));
    if (code) continue;
    const std::wstring joined = zo::joinMemberText(parts.library, parts.member);
    ASSERT_EQ(zo::splitMemberText(joined, again), 0);
    ASSERT_TRUE(again.library == parts.library && again.member == parts.member);
    ASSERT_EQ(joined, text);
  }
}

}  // namespace
