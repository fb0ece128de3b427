// The form of a word by number, against lists of numbers as grammars give them.
#include "messages/plural_rules.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The forms of 0 to 30, and of 100 to 125.
std::string forms(std::wstring_view language) {
  const zo::PluralRule& rule = zo::pluralRule(language);
  std::string all;
  for (std::uint64_t n = 0; n <= 125; ++n) {
    if (n == 100) all += ' ';
    if (n <= 30 || n >= 100) all += static_cast<char>('0' + rule.formOf(n));
    EXPECT_LT(rule.formOf(n), rule.forms);
  }
  return all;
}

TEST(PluralRules, FollowTheLanguage) {
  const struct {
    const wchar_t* languages[4];
    const char* forms;
  } table[] = {
      {{L"de", L"EN-gb", L"", L"xx"}, "1011111111111111111111111111111 11111111111111111111111111"},
      {{L"ja", L"zh-Hant-TW", L"th", L"ko"},
       "0000000000000000000000000000000 00000000000000000000000000"},
      {{L"fr", L"fr-CA", L"pt-BR", L"hi"},
       "0011111111111111111111111111111 11111111111111111111111111"},
      {{L"pt-PT", L"it", L"hu", L"tr"},
       "1011111111111111111111111111111 11111111111111111111111111"},
      {{L"is", L"mk"}, "1011111111111111111110111111111 10111111111111111111101111"},
      {{L"ru", L"uk-UA", L"sr-Latn", L"hr"},
       "2011122222222222222220111222222 20111222222222222222201112"},
      {{L"pl"}, "2011122222222222222222111222222 22111222222222222222221112"},
      {{L"cs", L"sk"}, "2011122222222222222222222222222 22222222222222222222222222"},
      {{L"sl"}, "3012233333333333333333333333333 30122333333333333333333333"},
      {{L"lt"}, "2011111111222222222220111111112 20111111112222222222201111"},
      {{L"lv"}, "0122222222000000000001222222220 01222222220000000000012222"},
      {{L"ro"}, "1011111111111111111122222222222 21111111111111111111222222"},
      {{L"he"}, "2012222222222222222222222222222 22222222222222222222222222"},
      {{L"ar"}, "0123333333344444444444444444444 55533333333444444444444444"},
      {{L"ga"}, "4012222333344444444444444444444 44444444444444444444444444"},
      {{L"cy"}, "0123554555555555555555555555555 55555555555555555555555555"},
  };
  for (const auto& [languages, wanted] : table)
    for (const wchar_t* const language : languages)
      if (language) {
        EXPECT_EQ(forms(language), wanted) << std::wstring(language).size() << wanted;
      }
}

TEST(PluralRules, ChooseAmongTheFormsThatATextHas) {
  const auto choose = [](const wchar_t* language, zo::PluralNumber number, unsigned int forms) {
    return zo::pluralForm(zo::pluralRule(language), number, forms);
  };
  EXPECT_EQ(choose(L"pl", {true, true, 5}, 2), 1u) << "too few forms: the last one";
  EXPECT_EQ(choose(L"pl", {true, true, 5}, 4), 2u);
  EXPECT_EQ(choose(L"pl", {true, false, 1}, 4), 3u) << "1.5 takes the form behind the language's";
  EXPECT_EQ(choose(L"de", {true, false, 1}, 2), 1u);
  EXPECT_EQ(choose(L"fr", {true, false, 1}, 2), 0u);
  EXPECT_EQ(choose(L"fr", {true, false, 2}, 2), 1u);
  EXPECT_EQ(choose(L"en", {}, 3), 2u) << "no number";
}

}  // namespace
