#include <zo/messages/message_fault.h>

const wchar_t* ZoMessageFault::text() const noexcept {
  switch (reason) {
    case kHead:
      return L"The first line is not \"@messages 1\".";
    case kCharacter:
      return L"A zero character, or bytes that are no text in the file's encoding.";
    case kDirective:
      return L"Unknown, given twice, behind a message, or without a value that it can have.";
    case kCodepage:
      return L"This code page is not known here.";
    case kNumber:
      return L"A message begins with its number, of 32 bits, and a blank.";
    case kDuplicate:
      return L"An earlier message has this number; that one counts.";
    case kEscape:
      return L"Behind a backslash stands n, r, t, another backslash, or u and four digits that are "
             L"not all zero.";
    case kContinuation:
      return L"The file ends in a backslash, which a further line should follow.";
    case kReference:
      return L"A reference is %{number} or %{file:number}; a percent sign by itself is %%.";
    case kPlural:
      return L"A plural is %{?argument form|form}, closed, and at most 8 deep.";
    case kTooLong:
      return L"The message is too long.";
  }
  return L"";
}
