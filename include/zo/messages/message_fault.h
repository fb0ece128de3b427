// What is wrong at one place of a message file.
//
// Errors:  nothing throws.
// Threads: a plain value.
#pragma once

#include <zo/config.h>

struct ZO_COM_API ZoMessageFault {
  enum Reason : int {
    kHead = 1,          // the first line is not "@messages 1"
    kCharacter = 2,     // a zero character, or bytes that are no text in the file's encoding
    kDirective = 3,     // a line with @ that is unknown, comes too late, or says nothing sensible
    kCodepage = 4,      // no such code page here
    kNumber = 5,        // a line that begins with no number of 32 bits
    kDuplicate = 6,     // the number of an earlier message
    kEscape = 7,        // a backslash before something else than n r t \ uXXXX
    kContinuation = 8,  // the last line ends in a backslash
    kReference = 9,     // %{...} that is no reference
    kPlural = 10,       // %{?...} that is not closed, names no argument, or lies too deep
    kTooLong = 11,      // a message of more than ZoMessageMap::kMaxLength units
  };

  // Counted from 1; columns in UTF-16 units.
  unsigned int line = 0;
  unsigned int column = 0;
  Reason reason = kHead;

  // A sentence in English, valid for good.
  [[nodiscard]] const wchar_t* text() const noexcept;

  friend bool operator==(const ZoMessageFault&, const ZoMessageFault&) = default;
};
