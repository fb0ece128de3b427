#include "headless/standard_name.h"

#include <algorithm>
#include <string>

#include "names/wildcard.h"
#include "text/code_units.h"
#include "text/letter_case.h"

namespace zo {
namespace {

// Upper case; 0 for what stands between letters and numbers. Beyond ASCII those are the blanks and
// the hyphens.
wchar_t letterOf(wchar_t c) noexcept {
  if (c < 0x80) {
    if (c >= L'a' && c <= L'z') return static_cast<wchar_t>(c - 32);
    return (c >= L'A' && c <= L'Z') || isDigit(c) ? c : L'\0';
  }
  const bool isBetween =
      c == 0xA0 || c == 0xAD || (c >= 0x2000 && c <= 0x206F) || c == 0x2212 || c == 0x3000;
  return isBetween ? L'\0' : foldTable()[c];
}

std::wstring_view withoutBlanks(std::wstring_view text) noexcept {
  text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
  return text.substr(0, text.find_last_not_of(L' ') + 1);
}

constexpr std::wstring_view kAdopters[] = {L"DIN", L"EN",  L"BS",  L"NF",   L"UNI",   L"UNE",
                                           L"NEN", L"SN",  L"SS",  L"NS",   L"DS",    L"SFS",
                                           L"PN",  L"CSN", L"JIS", L"GOST", L"ONORM", L"\xD6NORM"};
constexpr std::wstring_view kAdopted[] = {L"EN", L"ISO", L"IEC"};

}  // namespace

StandardName::StandardName(std::wstring_view spelling) noexcept {
  if (const std::size_t colon = spelling.rfind(L':'); colon != spelling.npos) {
    edition_ = withoutBlanks(spelling.substr(colon + 1));
    spelling = spelling.substr(0, colon);
  }
  bool isApart = false;
  for (std::size_t i = 0; i < spelling.size();) {
    if (isDigit(spelling[i])) {
      const bool isSecond = isApart && length_ > 0 && isDigit(text_[length_ - 1]);
      if ((isSecond && !add(L'-')) || !addNumber(spelling, i)) return;
      isApart = false;
    } else if (const wchar_t letter = letterOf(spelling[i++])) {
      if (!add(letter)) return;
      isApart = false;
    } else {
      isApart = true;
    }
  }
  findCore();
}

bool StandardName::add(wchar_t c) noexcept {
  if (length_ == kMost) {
    length_ = 0;
    return false;
  }
  text_[length_++] = c;
  return true;
}

// Goes behind the number at `i`.
bool StandardName::addNumber(std::wstring_view spelling, std::size_t& i) noexcept {
  const auto isMore = [&](std::size_t at) { return at < spelling.size() && isDigit(spelling[at]); };
  while (spelling[i] == L'0' && isMore(i + 1)) ++i;
  for (; isMore(i); ++i)
    if (!add(spelling[i])) return false;
  return true;
}

void StandardName::findCore() noexcept {
  for (bool isFound = true; isFound;) {
    isFound = false;
    for (const std::wstring_view adopter : kAdopters) {
      const std::wstring_view rest = core();
      if (!rest.starts_with(adopter)) continue;
      const std::wstring_view behind = rest.substr(adopter.size());
      if (std::ranges::none_of(kAdopted, [&](auto each) { return behind.starts_with(each); }))
        continue;
      coreAt_ += adopter.size();
      isFound = true;
      break;
    }
  }
}

bool StandardName::takeYear() noexcept {
  const std::wstring_view all = key();
  if (!edition_.empty() || all.size() < 6 || all[all.size() - 5] != L'-') return false;
  const std::wstring_view year = all.substr(all.size() - 4);
  if (!std::ranges::all_of(year, [](wchar_t c) { return isDigit(c); }) ||
      !(year.starts_with(L"19") || year.starts_with(L"20")))
    return false;
  std::ranges::copy(year, year_);
  edition_ = {year_, 4};
  length_ -= 5;
  coreAt_ = 0;
  findCore();
  return true;
}

bool comesBefore(std::wstring_view a, std::wstring_view b) noexcept {
  const auto number = [](std::wstring_view& text) {  // its digits, without leading zeros
    std::size_t end = 0;
    while (end < text.size() && isDigit(text[end])) ++end;
    std::wstring_view digits = text.substr(0, end);
    text.remove_prefix(end);
    digits.remove_prefix(std::min(digits.find_first_not_of(L'0'), digits.size()));
    return digits;
  };
  while (!a.empty() && !b.empty()) {
    if (isDigit(a.front()) && isDigit(b.front())) {
      const std::wstring_view x = number(a), y = number(b);
      if (x.size() != y.size()) return x.size() < y.size();
      if (x != y) return x < y;
      continue;
    }
    const wchar_t x = foldTable()[a.front()], y = foldTable()[b.front()];
    if (x != y) return x < y;
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return a.empty() && !b.empty();
}

bool fitsStandardPattern(std::wstring_view name, std::wstring_view pattern) {
  const auto squeezed = [](std::wstring_view text) {
    std::wstring result;
    for (const wchar_t c : text)
      if (c == L'*' || c == L'?' || letterOf(c) != 0) result += c;
    return result;
  };
  return fitsPattern(squeezed(name), squeezed(pattern));
}

}  // namespace zo
