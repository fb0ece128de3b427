// How a table of text (CSV) is written: for ZoCsvReader and ZoCsvWriter.
//
//   ZoCsvReader reader(text, {.separator = L';', .decimal = L','});
//
// Errors:  isValid() tells a format that is none; nothing throws.
// Threads: a plain value.
#pragma once

#include <zo/config.h>

struct ZoCsvFormat {
  static constexpr wchar_t kDetect = 0;   // reading: it is found; writing: a comma
  static constexpr wchar_t kNoQuote = 0;  // quotes are characters like any other
  enum LineEnd : int { kCrLf, kLf };
  enum Quotes : int { kWhereNeeded, kAlways };
  enum EmptyLines : int { kSkip, kAreRows };

  // Any unit but CR, LF and the byte order mark; separator and quote differ.
  wchar_t separator = kDetect;
  wchar_t quote = L'"';
  wchar_t decimal = L'.';  // of numbers

  // Writing only.
  LineEnd lineEnd = kCrLf;
  Quotes quotes = kWhereNeeded;

  // Reading only: whether an empty line is a row of one empty field. (A writer writes such a row
  // with quotes, which read back either way.)
  EmptyLines emptyLines = kSkip;

  [[nodiscard]] constexpr bool isValid() const noexcept {
    return !isReserved(separator) && !isReserved(quote) && (separator != quote || quote == 0);
  }

 private:
  static constexpr bool isReserved(wchar_t c) noexcept {
    return c == L'\r' || c == L'\n' || c == 0xFEFF;
  }
};
