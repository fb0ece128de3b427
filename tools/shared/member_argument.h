// A library and a member of it in one argument: LIBRARY|MEMBER (zo/names/member_name.h).
#pragma once

#include <string>

#include "say.h"

namespace zolib {

// What an argument is that is in the notation, and wrong.
inline constexpr Text kNoMember{
    34, "%1 is no LIBRARY|MEMBER; in these | is written <|, < is <<, a member's colon <;"};

// Puts the parts of an argument in the notation in the library's place, which has it, and the
// member's. Gives 0, or 1: it is in no such notation, or ZoResult::nameInvalid; nothing is changed
// then.
[[nodiscard]] int splitMember(std::wstring& library, std::wstring& member);

}  // namespace zolib
