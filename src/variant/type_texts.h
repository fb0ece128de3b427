// The seam through which type names and flag texts are translated.
//
// Until a lookup is installed, every text is its default. The lookup gets the type code or the flag
// as the number of the text, and the default, and returns a text that stays valid until another
// lookup is installed, or null for the default.
#pragma once

#include <zo/config.h>

namespace zo {

enum class TextList { TypeNames, FlagTexts };

using TextLookup = const wchar_t* (*)(TextList list, unsigned int number, const wchar_t* byDefault);

// Returns the lookup that was installed before; null stands for none.
ZO_COM_API TextLookup setTextLookup(TextLookup lookup) noexcept;

[[nodiscard]] const wchar_t* lookUpText(TextList list, unsigned int number,
                                        const wchar_t* byDefault) noexcept;

}  // namespace zo
