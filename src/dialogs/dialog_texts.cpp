#include "dialogs/dialog_texts.h"

#include <zo/system/message.h>

#include <algorithm>
#include <iterator>

#include "system/service_or_null.h"
#include "variant/type_texts.h"

namespace {

using enum zo::DialogText;

constexpr zo::DialogTextEntry kTexts[] = {
    {doNotShowAgain, L"Do not show this again"},
    {allFiles, L"All files"},
    {filesOf, L"%1 files"},
    {chooseYes, L"Yes: %1"},
    {chooseNo, L"No: %1"},
    {noWindow, L"There is no display, or the owner is gone."},
    {editTitle, L"Edit value"},
    {wholeValue, L"Value"},
    {columnName, L"Name"},
    {columnType, L"Type"},
    {columnValue, L"Value"},
    {columnFlags, L"Flags"},
    {columnOther, L"Other value"},
    {elementCount, L"Elements: %1"},
    {moreInList, L"%1 more: see the list"},
    {findLabel, L"&Find:"},
    {onlyDifferences, L"Only &differences"},
    {commandEdit, L"Edit"},
    {commandRename, L"Rename"},
    {commandAdd, L"&Add..."},
    {commandRemove, L"&Remove"},
    {commandProperties, L"&Properties..."},
    {commandUp, L"&Up"},
    {commandDown, L"Do&wn"},
    {commandUndo, L"U&ndo"},
    {commandRedo, L"Red&o"},
    {ok, L"OK"},
    {cancel, L"Cancel"},
    {close, L"Close"},
    {elementNew, L"Add element"},
    {elementTitle, L"Properties"},
    {labelName, L"&Name:"},
    {labelType, L"&Type:"},
    {labelValue, L"&Value:"},
    {labelFlags, L"&Flags:"},
    {noSuchValue, L"\u201C%1\u201D is no value of the type %2."},
    {notEditable, L"This value is not to be edited."},
    {notEditableHere, L"This text cannot be edited here."},
    {nameNeeded, L"A name is needed."},
    {nameTaken, L"There is an element %1 already."},
    {notPossible, L"That is not possible here."},
    {notFound, L"Nothing was found."},
    {foundAt, L"Found: %1 of %2."},
    {discardChanges, L"Discard the changes?"},
    {noMemory, L"There is no memory left for that."},
    {unitsInUse, L"The units are in use elsewhere; try again."},
    {shownInPart, L"Only the first %1 of %2 characters are shown."},
    {memberTitle, L"Open from %1"},
    {memberOpen, L"&Open"},
    {memberBack, L"&Back"},
    {memberCancel, L"Cancel"},
    {memberName, L"Name"},
    {memberSize, L"Size"},
    {memberTime, L"Modified"},
};

const wchar_t* byDefault(zo::DialogText number) noexcept {
  return std::ranges::find(kTexts, number, &zo::DialogTextEntry::number)->text;
}

}  // namespace

std::span<const zo::DialogTextEntry> zo::dialogTexts() noexcept { return kTexts; }

const wchar_t* zo::dialogText(DialogText number) noexcept {
  return lookUpText(kDialogFile, static_cast<unsigned int>(number), byDefault(number));
}

ZoString zo::dialogText(DialogText number, std::initializer_list<ZoVariant> arguments) {
  ZoString text;
  auto* const messages = serviceOrNull<ZoMessage>();
  if (messages &&
      messages->format(kDialogFile, static_cast<int>(number), arguments, text) == ZoResult::ok)
    return text;
  text = byDefault(number);
  for (int place = 1; const ZoVariant& argument : arguments)
    text.replaceAll((L"%" + std::to_wstring(place++)).c_str(), argument.asString());
  return text;
}
