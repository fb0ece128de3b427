// What the tools say, in the user's language. Texts of a number below 100 are common to all tools
// and stand in the message file "zolib" (share/messages), the others in that of their tool.
#pragma once

#include <zo/variant/variant.h>

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "text.h"

namespace zolib {

// A text by its number, with its English in UTF-8, which the file repeats (a test compares them):
// %1 is the first of what is filled in, %% a percent sign, and so on
// (docs/formats/message-file.md). A number never gets another meaning; what has number 0 is said in
// English only.
struct Text {
  int number;
  const char* english;
};

// From here on everything is said in the first of these languages that has a message file, and in
// English without any: "de-AT, fr". Empty: the user's languages. The tool is the name of its own
// message file. False when these are no languages; it goes on in English. Needs the library
// attached; without this call all is English.
bool speak(std::wstring_view languages, const std::wstring& tool);

inline ZoVariant filling(std::wstring_view text) { return text; }
inline ZoVariant filling(std::string_view utf8) { return toWide(utf8); }
template <std::integral Number>
ZoVariant filling(Number number) {
  return static_cast<std::int64_t>(number);
}

std::string sayWith(const Text& text, std::initializer_list<ZoVariant> fillings);

// What is filled in is taken as it is: texts in UTF-8 or UTF-16, and whole numbers.
template <class... Fillings>
std::string say(const Text& text, const Fillings&... fillings) {
  return sayWith(text, {filling(fillings)...});
}

}  // namespace zolib
