// What a message's text is made of besides letters: for programs that check and translate message
// files.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: any.
#pragma once

#include <zo/config.h>
#include <zo/text/lasting_text.h>
#include <zo/text/text_parameter.h>

#include <string_view>
#include <vector>

struct ZoMessageMark {
  enum Kind : int {
    kArgument = 1,   // %1
    kReference = 2,  // %{17}, %{file:17}
    kPlural = 3,     // %{?1 one|many}
  };

  Kind kind = kArgument;
  // Where it stands in the text; of a plural the whole, the marks in its forms included.
  unsigned int position = 0;
  unsigned int length = 0;
  // Of the argument, counted from 1; of a reference that of the message.
  unsigned int number = 0;
  // Of a reference, a part of the text; empty: the file that the text itself stands in.
  std::wstring_view file;
  // Of a plural.
  unsigned int forms = 0;

  friend bool operator==(const ZoMessageMark&, const ZoMessageMark&) = default;
};

// In the order of the text; a plural comes before the marks in it. The text as ZoMessageMap has it;
// a null pointer is an empty one.
[[nodiscard]] ZO_COM_API std::vector<ZoMessageMark> zoMessageMarks(zo::TextParameter text);
template <class Text>
  requires zo::TemporaryText<Text>
std::vector<ZoMessageMark> zoMessageMarks(Text&&) = delete;  // marks look into a text with a name
