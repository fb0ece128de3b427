// Texts that name files: members of libraries (any split text is joined to one that splits the
// same), lines of macro files, and macros within one another, which end.
#include "search/macro_text.h"

#include <zo/results.h>

#include <string>

#include "fuzz.h"
#include "names/member_text.h"

using namespace zo;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::wstring text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<wchar_t>(data[i]);
  MemberText parts, again;
  const int code = splitMemberText(text, parts);
  ZO_FUZZ_CHECK((code == ZoResult::refused) == !isMemberText(text));
  if (code == ZoResult::ok) {
    const std::wstring joined = joinMemberText(parts.library, parts.member);
    ZO_FUZZ_CHECK(splitMemberText(joined, again) == ZoResult::ok);
    ZO_FUZZ_CHECK(again.library == parts.library && again.member == parts.member);
    ZO_FUZZ_CHECK(joinMemberText(again.library, again.member) == joined);
  }
  MacroLines lines;
  if (!readMacroLines(text, lines)) return 0;
  std::size_t asked = 0;
  const auto find = [&](std::wstring_view macro, std::wstring& value) {
    ++asked;
    for (const auto& [name, given] : lines) {
      if (name != macro) continue;
      value = given;
      return true;
    }
    return false;
  };
  for (const auto& [name, given] : lines) {
    ZO_FUZZ_CHECK(mayBeMacro(name) && !given.empty());
    std::wstring value;
    asked = 0;
    if (resolveMacro(name, 16, value, find))
      ZO_FUZZ_CHECK(!value.empty() && !value.starts_with(L'$'));
    ZO_FUZZ_CHECK(asked <= 16);
  }
  return 0;
}
