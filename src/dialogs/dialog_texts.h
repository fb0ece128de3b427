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
  noWindow = 6,

  // The editor of values.
  editTitle = 10,
  wholeValue = 11,
  columnName = 12,
  columnType = 13,
  columnValue = 14,
  columnFlags = 15,
  columnOther = 16,
  elementCount = 17,
  moreInList = 18,
  findLabel = 19,
  onlyDifferences = 20,
  commandEdit = 21,
  commandRename = 22,
  commandAdd = 23,
  commandRemove = 24,
  commandProperties = 25,
  commandUp = 26,
  commandDown = 27,
  commandUndo = 28,
  commandRedo = 29,
  ok = 30,
  cancel = 31,
  close = 32,
  elementNew = 33,
  elementTitle = 34,
  labelName = 35,
  labelType = 36,
  labelValue = 37,
  labelFlags = 38,
  noSuchValue = 39,
  notEditable = 40,
  notEditableHere = 41,
  nameNeeded = 42,
  nameTaken = 43,
  notPossible = 44,
  notFound = 45,
  foundAt = 46,
  discardChanges = 47,
  noMemory = 48,
  unitsInUse = 49,
  shownInPart = 50,

  // The choice among the members of a library.
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
