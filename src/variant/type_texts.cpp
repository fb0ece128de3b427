#include "variant/type_texts.h"

#include <zo/variant/type_code.h>

namespace {

constexpr zo::FlagText kFlagTexts[] = {
    {ZoFlagNone, L"No Flag"},
    {ZoFlagCreateList, L"Create List"},
    {ZoFlagVisible, L"Visible in Browser"},
    {ZoFlagConstant, L"Constant Value"},
    {ZoFlagGlobal, L"Global Value"},
    {ZoFlagInvisible, L"Invisible in Browser"},
    {ZoFlagInfopoint, L"Infopoint Value"},
    {ZoFlagPreProcessor, L"Pre Processor"},
    {ZoFlagMidProcessor, L"Mid Processor"},
    {ZoFlagPostProcessor, L"Post Processor"},
    {ZoFlagObjecterType, L"Objecter Type"},
    {ZoFlagParameter, L"Parameter"},
    {ZoFlagReturnValue, L"Return Value"},
    {ZoFlagSystem, L"System Value"},
    {ZoFlagUserInput, L"User Input"},
    {zo::kFirstWithoutFlag, L"Instance coordinate system"},
    {zo::kFirstWithoutFlag + 1, L"Persistent"},
    {zo::kFirstWithoutFlag + 2, L"Inactive"},
};

}  // namespace

std::span<const zo::FlagText> zo::flagTexts() noexcept { return kFlagTexts; }
