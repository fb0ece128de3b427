// The texts of type codes and flags for users: where the defaults stand, and who translates them.
#pragma once

#include <zo/config.h>

#include <span>

namespace zo {

// Message files of the names of type codes, numbered by code, and of the texts of flags, numbered
// by flag.
inline constexpr const wchar_t* kTypeNameFile = L"zotype";
inline constexpr const wchar_t* kFlagTextFile = L"zoflag";

struct FlagText {
  unsigned int number;  // the flag; from kFirstWithoutFlag on a number for the file only
  const wchar_t* text;
};
inline constexpr unsigned int kFirstWithoutFlag = 0x80000001;

// The flags in the order in which they are searched, "No Flag" first; behind them what has none.
[[nodiscard]] std::span<const FlagText> flagTexts() noexcept;

// The text in the user's language, valid as long as the library is loaded; the default, while there
// is no other. Stands on the floor of the messages, above this one.
[[nodiscard]] const wchar_t* lookUpText(const wchar_t* file, unsigned int number,
                                        const wchar_t* byDefault) noexcept;

}  // namespace zo
