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
