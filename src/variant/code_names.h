// The names of the type codes.
#pragma once

#include <zo/variant/type_code.h>

#include <span>
#include <string_view>

namespace zo {

struct CodeNames {
  ZoTypeCode code;
  const wchar_t* name;      // fixed: stored texts carry it
  const wchar_t* userName;  // null: that of the base code
};

// All codes that have a name of their own, in ascending order of their values.
[[nodiscard]] std::span<const CodeNames> codeNames() noexcept;
// Null for a code without a name of its own.
[[nodiscard]] const CodeNames* findCode(ZoTypeCode code) noexcept;

// Names as text forms have them: each stands for one code. Empty for a code without one.
[[nodiscard]] std::wstring_view wordOfCode(ZoTypeCode code) noexcept;
// The inverse; '_' in the word stands for a blank. False when the word names no code.
[[nodiscard]] bool codeOfWord(std::wstring_view word, ZoTypeCode& code) noexcept;

}  // namespace zo
