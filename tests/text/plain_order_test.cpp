// What is learnt of a locale's order, beside the platform's own answers.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/printers.h"
#include "text/plain_order.h"

namespace {

using zo::PlainOrder;

constexpr zo::LocaleId kCzech = 0x405, kDanish = 0x406, kEnglish = 0x409, kHungarian = 0x40E,
                       kEstonian = 0x425;
constexpr zo::LocaleId kLocales[] = {kEnglish, kCzech, kDanish, kHungarian, kEstonian,
                                     0x40A,   // Spanish, traditional order: ch, ll
                                     0x41F,   // Turkish
                                     0x41D};  // Swedish

int platform(zo::LocaleId locale, const std::wstring& a, const std::wstring& b) {
  return CompareStringW(locale, NORM_IGNORECASE, a.c_str(), static_cast<int>(a.size()), b.c_str(),
                        static_cast<int>(b.size())) -
         CSTR_EQUAL;
}

// All texts of up to so many units of the alphabet.
std::vector<std::wstring> allShort(const std::wstring& alphabet, size_t longest) {
  std::vector<std::wstring> texts{L""};
  for (size_t from = 0, length = 1; length <= longest; ++length) {
    const size_t end = texts.size();
    for (; from < end; ++from) {
      for (const wchar_t c : alphabet) texts.push_back(texts[from] + c);
    }
  }
  return texts;
}

const std::wstring kPrintable = [] {
  std::wstring all;
  for (wchar_t c = L' '; c <= L'~'; ++c) all += c;
  return all;
}();

TEST(PlainOrder, IsThePlatformsForEveryPairOfShortTexts) {
  const bool longRun = std::getenv("ZO_TEST_LONG") != nullptr;
  for (const zo::LocaleId locale : kLocales) {
    const PlainOrder* const order = PlainOrder::learnt(locale);
    ASSERT_TRUE(order) << std::hex << locale;
    size_t decided = 0;
    const auto check = [&](const std::vector<std::wstring>& texts) {
      for (const std::wstring& a : texts) {
        for (const std::wstring& b : texts) {
          const int answer = order->compare(a, b);
          if (answer == PlainOrder::kUnknown) continue;
          ++decided;
          if (answer != platform(locale, a, b))
            FAIL() << std::hex << locale << " '" << std::string(a.begin(), a.end()) << "' '"
                   << std::string(b.begin(), b.end()) << "'";
        }
      }
    };
    check(allShort(kPrintable, 1));
    if (longRun)
      check(allShort(kPrintable.substr(0, L'A' - L' ') + kPrintable.substr(L'[' - L' '), 2));
    for (const wchar_t* const alphabet : {L"cChHz", L"aA bz", L"csSzZy", L"lLvwW", L"iIyd_9"})
      check(allShort(alphabet, longRun ? 4 : 3));
    EXPECT_GT(decided, 20000u);
  }
}

TEST(PlainOrder, IsThePlatformsForRandomTexts) {
  std::mt19937 random(12);
  const std::wstring alphabet = kPrintable + L"aaccddhhllsszzgyny";
  for (const zo::LocaleId locale : kLocales) {
    const PlainOrder* const order = PlainOrder::learnt(locale);
    ASSERT_TRUE(order);
    for (int round = 0; round < 3000; ++round) {
      std::wstring a, b;
      for (size_t n = random() % 40; n > 0; --n) a += alphabet[random() % alphabet.size()];
      for (size_t n = random() % 6; n > 0; --n) b += alphabet[random() % alphabet.size()];
      b.insert(0, a, 0, random() % 40);
      for (wchar_t& c : b) c = random() % 2 ? static_cast<wchar_t>(std::towupper(c)) : c;
      const int answer = order->compare(a, b);
      if (answer != PlainOrder::kUnknown) {
        ASSERT_EQ(answer, platform(locale, a, b)) << std::hex << locale;
      }
      const std::uint32_t x = order->frontOf(a), y = order->frontOf(b);
      ASSERT_TRUE(x == 0 || y == 0 || x == y || (x < y ? -1 : 1) == answer) << std::hex << locale;
    }
  }
}

TEST(PlainOrder, KnowsLettersOfTwoAndWhatIsNotPlain) {
  const struct {
    zo::LocaleId locale;
    const wchar_t* text;
    bool plain;
  } rows[] = {
      {kEnglish, L"", true},
      {kEnglish, L"A part_17 (chaos)", true},
      {kEnglish, L"a-b", false},
      {kEnglish, L"it's", false},
      {kEnglish, L"\u00E4", false},
      {kEnglish, L"a\u0308", false},
      {kEnglish, L"a\tb", false},
      {kEnglish, L"\u0161", false},
      {kEnglish, L"\u0061\uFF41", false},
      {kCzech, L"chata", false},
      {kCzech, L"CHATA", false},
      {kCzech, L"hc", true},
      {kDanish, L"Aalborg", false},
      {kDanish, L"abab", true},
      {kHungarian, L"csap", false},
      {kHungarian, L"scap", true},
      {kEstonian, L"web", false},
      {kEstonian, L"veb", true},
  };
  for (const auto& [locale, text, plain] : rows) {
    const PlainOrder* const order = PlainOrder::learnt(locale);
    ASSERT_TRUE(order);
    EXPECT_EQ(order->isPlain(text), plain)
        << std::hex << locale << ' ' << testing::PrintToString(ZoString(text));
  }
  EXPECT_FALSE(PlainOrder::learnt(kEnglish)->isPlain(std::wstring_view(L"a\0b", 3)));
  EXPECT_TRUE(PlainOrder::learnt(kEnglish)->foldsByLetter());
  EXPECT_FALSE(PlainOrder::learnt(kCzech)->foldsByLetter()) << "CH is a letter, cH are two";
  EXPECT_NE(PlainOrder::learnt(kEnglish)->number(), PlainOrder::learnt(kCzech)->number())
      << "keys of a tree from before the user took another locale";
  // What stands for several locales is no locale.
  for (const zo::LocaleId locale : {0x0C00ul, 0x1000ul, 0x1400ul})
    EXPECT_FALSE(PlainOrder::learnt(locale));
}

TEST(PlainOrder, KeysAreThoseOfThePlatform) {
  for (const zo::LocaleId locale : kLocales) {
    const PlainOrder* const order = PlainOrder::learnt(locale);
    const std::wstring text = L"Part_17 of (98)";
    unsigned char own[100], asked[100];
    order->writeKey(text, own);
    const int size =
        LCMapStringW(locale, LCMAP_SORTKEY | NORM_IGNORECASE, text.c_str(),
                     static_cast<int>(text.size()), reinterpret_cast<wchar_t*>(asked), 100);
    ASSERT_EQ(static_cast<size_t>(size),
              text.size() * PlainOrder::kWeightBytes + PlainOrder::kTailBytes);
    EXPECT_EQ(std::memcmp(own, asked, static_cast<size_t>(size)), 0);
  }
}

// A process of a user with another locale, which compares until the order is learnt and on. (Wine
// takes the locale from this variable; Windows takes that of the user as ever.)
ZO_TEST_CHILD(comparing) {
  std::mt19937 random(13);
  const std::wstring alphabet = L"aAbBcChHdDsSzZ 19-_\u010D";
  int wrong = 0;
  for (int round = 0; round < 12000; ++round) {
    std::wstring a, b;
    for (size_t n = random() % 5; n > 0; --n) a += alphabet[random() % alphabet.size()];
    for (size_t n = random() % 5; n > 0; --n) b += alphabet[random() % alphabet.size()];
    const int order = platform(LOCALE_USER_DEFAULT, a, b);
    const ZoString ours{std::wstring_view(a)};
    if (ours.compareTo(b, ZoString::ignoreCase) != order) ++wrong;
    if (ours.equals(b, ZoString::ignoreCase) != (order == 0)) ++wrong;
  }
  parent.say(std::to_string(wrong) + (PlainOrder::ofUser() ? " wrong" : " wrong, not learnt"));
  return 0;
}

TEST(PlainOrder, OfTheUserIsThatOfTheUsersLocale) {
  for (const wchar_t* const locale : {L"en_US.UTF-8", L"cs_CZ.UTF-8", L"hu_HU.UTF-8"}) {
    SetEnvironmentVariableW(L"LC_ALL", locale);
    zo::test::ChildProcess child(L"comparing");
    SetEnvironmentVariableW(L"LC_ALL", nullptr);
    EXPECT_EQ(child.hear(), "0 wrong") << ZoString(locale).toUtf8();
    EXPECT_EQ(child.wait(), 0);
  }
}

// The user's locale is asked for at each comparison; here threads take several in turn.
TEST(PlainOrder, EachLocaleHasItsOwnWhileOthersAreAskedFor) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (size_t i = 0; i < 2000; ++i) {
        const zo::LocaleId locale = kLocales[(i + static_cast<size_t>(t)) % 4];
        const PlainOrder* const order = PlainOrder::learnt(locale);
        if (!order) continue;  // another thread learns it
        ASSERT_EQ(order->locale(), locale);
        ASSERT_EQ(order->compare(L"ch", L"hz"), locale == kCzech ? PlainOrder::kUnknown : -1);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
