// The text of a file in XML or JSON, by its mark, by what it says of itself, or by its form.
#pragma once

#include <string_view>

#include "text/text_buffer.h"

namespace zo {

struct DecodedText {
  TextBuffer text;  // without a mark
  bool isUtf16 = false;
  bool hasFailed = false;           // the text then ends where the bytes are wrong
  const wchar_t* reason = nullptr;  // a sentence, then
};

// UTF-8 and UTF-16, and whatever encoding the declaration names.
void decodeXml(std::string_view bytes, DecodedText& decoded);
// UTF-8 and UTF-16.
void decodeJson(std::string_view bytes, DecodedText& decoded);

}  // namespace zo
