// Which form of a word goes with a number, by language. docs/messages.md lists the rules.
#pragma once

#include <cstdint>
#include <string_view>

namespace zo {

struct PluralRule {
  unsigned int forms;
  unsigned int oneBelow;  // numbers below it that are not whole go with the first form
  // The form of a whole number, less than `forms`.
  unsigned int (*formOf)(std::uint64_t number) noexcept;
  const wchar_t* tags;  // languages with blanks around each, in lower case
};

// The rule of a language's tag, of which the language counts, and the region where that differs;
// the first rule, one and other, for an unknown one.
[[nodiscard]] const PluralRule& pluralRule(std::wstring_view language) noexcept;

// What a form is chosen by.
struct PluralNumber {
  bool isNumber = false;
  bool isWhole = false;
  std::uint64_t whole = 0;  // without sign and decimals
};

// The form, counted from 0, of those that a text has. A number that is not whole goes with the
// last one, which may be a further one behind those of the language; so does what is no number.
[[nodiscard]] unsigned int pluralForm(const PluralRule& rule, const PluralNumber& number,
                                      unsigned int formsInText) noexcept;

}  // namespace zo
