// The library's own words in dialogs: the English defaults of the message file "zodialog".
#pragma once

#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <initializer_list>
#include <span>

namespace zo {

inline constexpr const wchar_t* kDialogFile = L"zodialog";

// Numbers of messages: never renumber.
enum class DialogText : int {
  doNotShowAgain = 1,
  allFiles = 2,
  filesOf = 3,  // %1: extensions
  chooseYes = 4,
  chooseNo = 5,
  memberTitle = 64,  // %1: a library's name
  memberOpen = 65,
  memberBack = 66,
  memberCancel = 67,
  memberName = 68,
  memberSize = 69,
  memberTime = 70,
};

struct DialogTextEntry {
  DialogText number;
  const wchar_t* text;
};
[[nodiscard]] std::span<const DialogTextEntry> dialogTexts() noexcept;

// In the user's language.
[[nodiscard]] const wchar_t* dialogText(DialogText number) noexcept;
[[nodiscard]] ZoString dialogText(DialogText number, std::initializer_list<ZoVariant> arguments);

}  // namespace zo
