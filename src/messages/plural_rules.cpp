#include "messages/plural_rules.h"

#include <algorithm>
#include <iterator>

#include "text/code_units.h"

namespace zo {
namespace {

using Number = std::uint64_t;

constexpr bool within(Number n, Number first, Number last) noexcept {
  return n >= first && n <= last;
}

// Forms in the order zero, one, two, few, many, other, as far as a language has them.
constexpr PluralRule kRules[] = {
    {2, 0, [](Number n) noexcept { return n == 1 ? 0u : 1u; }, L""},
    {1, 0, [](Number) noexcept { return 0u; },
     L" bo dz id ig ja jv km ko lo ms my su th vi wo yo yue zh "},
    // 0 and 1
    {2, 2, [](Number n) noexcept { return n < 2 ? 0u : 1u; }, L" fr hy kab pt "},
    {2, 1, [](Number n) noexcept { return n < 2 ? 0u : 1u; }, L" am as bn fa gu hi kn zu "},
    {2, 0, [](Number n) noexcept { return n % 10 == 1 && n % 100 != 11 ? 0u : 1u; }, L" is mk "},
    {3, 0,
     [](Number n) noexcept {
       if (n % 10 == 1 && n % 100 != 11) return 0u;
       return within(n % 10, 2, 4) && !within(n % 100, 12, 14) ? 1u : 2u;
     },
     L" be bs hr ru sh sr uk "},
    {3, 0,
     [](Number n) noexcept {
       if (n == 1) return 0u;
       return within(n % 10, 2, 4) && !within(n % 100, 12, 14) ? 1u : 2u;
     },
     L" pl "},
    {3, 0, [](Number n) noexcept { return n == 1            ? 0u
                                          : within(n, 2, 4) ? 1u
                                                            : 2u; }, L" cs sk "},
    {4, 0,
     [](Number n) noexcept {
       const Number last = n % 100;
       return last == 1 ? 0u : last == 2 ? 1u : within(last, 3, 4) ? 2u : 3u;
     },
     L" dsb hsb sl "},
    {3, 0,
     [](Number n) noexcept {
       if (within(n % 100, 11, 19) || n % 10 == 0) return 2u;
       return n % 10 == 1 ? 0u : 1u;
     },
     L" lt "},
    {3, 0,
     [](Number n) noexcept {
       if (within(n % 100, 11, 19) || n % 10 == 0) return 0u;
       return n % 10 == 1 ? 1u : 2u;
     },
     L" lv "},
    {3, 0,
     [](Number n) noexcept { return n == 1                             ? 0u
                                    : n == 0 || within(n % 100, 1, 19) ? 1u
                                                                       : 2u; },
     L" mo ro "},
    {3, 0, [](Number n) noexcept { return n == 1   ? 0u
                                          : n == 2 ? 1u
                                                   : 2u; }, L" he iw "},
    {4, 0,
     [](Number n) noexcept {
       if (n == 1) return 0u;
       return n == 0 || within(n % 100, 2, 10) ? 1u : within(n % 100, 11, 19) ? 2u : 3u;
     },
     L" mt "},
    {4, 0,
     [](Number n) noexcept {
       if (n == 1 || n == 11) return 0u;
       return n == 2 || n == 12 ? 1u : within(n, 3, 19) ? 2u : 3u;
     },
     L" gd "},
    {5, 0,
     [](Number n) noexcept {
       return n == 1 ? 0u : n == 2 ? 1u : within(n, 3, 6) ? 2u : within(n, 7, 10) ? 3u : 4u;
     },
     L" ga "},
    {6, 0,
     [](Number n) noexcept { return n < 4    ? static_cast<unsigned int>(n)
                                    : n == 6 ? 4u
                                             : 5u; },
     L" cy "},
    {6, 0,
     [](Number n) noexcept {
       if (n < 3) return static_cast<unsigned int>(n);
       return within(n % 100, 3, 10) ? 3u : n % 100 >= 11 ? 4u : 5u;
     },
     L" ar "},
};

constexpr std::size_t kLongest = 8;

// The rule with the tag among its languages; null when there is none.
const PluralRule* find(std::wstring_view tag) noexcept {
  if (tag.empty() || tag.size() > kLongest) return nullptr;
  wchar_t wanted[kLongest + 2] = {L' '};
  std::ranges::transform(tag, wanted + 1, lowerAscii);
  wanted[tag.size() + 1] = L' ';
  const std::wstring_view pattern(wanted, tag.size() + 2);
  const auto* const found = std::ranges::find_if(kRules, [&](const PluralRule& rule) {
    return std::wstring_view(rule.tags).find(pattern) != std::wstring_view::npos;
  });
  return found == std::end(kRules) ? nullptr : found;
}

bool isSame(std::wstring_view tag, std::wstring_view lower) noexcept {
  return std::ranges::equal(tag, lower, {}, lowerAscii);
}

}  // namespace

const PluralRule& pluralRule(std::wstring_view language) noexcept {
  if (isSame(language, L"pt-pt")) return kRules[0];
  const PluralRule* const rule = find(language.substr(0, language.find(L'-')));
  return rule ? *rule : kRules[0];
}

unsigned int pluralForm(const PluralRule& rule, const PluralNumber& number,
                        unsigned int formsInText) noexcept {
  const unsigned int last = formsInText - 1;
  if (!number.isNumber) return last;
  if (!number.isWhole) return number.whole < rule.oneBelow ? 0 : last;
  return std::min(rule.formOf(number.whole), last);
}

}  // namespace zo
