// Stand-in for the host's character formatter: an escape form for characters that the ANSI code
// page cannot hold.
//
// Such a character becomes the seven characters \U+XXXX (four upper-case hexadecimal digits) per
// UTF-16 unit. A character fits when the code page gives it back as it was, without best fit.
//
// Errors:  none; nothing throws.
// Threads: any.
#pragma once

#include <zo/config.h>

class ZO_COM_API TvCharFormatter {
 public:
  // Escapes length characters of text into out, which has room for 7 * length + 1 characters.
  // Returns the number of characters written, without the terminator that follows them.
  static unsigned int wcharNonNativeToCIF(const wchar_t* text, unsigned int length, wchar_t* out);
  // Undoes the escapes in length characters of text, in place if out is text; out has room for
  // length + 1 characters. What does not have the exact form stays as it is. Returns the number of
  // characters written, without the terminator that follows them.
  static unsigned int cifToWchar(const wchar_t* text, unsigned int length, wchar_t* out) noexcept;
};
