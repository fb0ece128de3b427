// What is wrong with a text in XML or JSON, and where.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: one at a time per object, and per group of copies.
#pragma once

#include <zo/config.h>
#include <zo/results.h>
#include <zo/text/string.h>

struct ZO_COM_API ZoXMLError {
  int code = ZoResult::ok;  // what the operation returned
  // Counted from 1, columns in UTF-16 units; 0 where no place is known. CR LF is one line end.
  unsigned int line = 0;
  unsigned int column = 0;
  ZoString reason;  // a sentence: the library's in English, the platform's in its own language
  ZoString source;  // the line itself, or a piece of it around the place

  // "line 3, column 7: reason"; empty without an error.
  [[nodiscard]] ZoString message() const;
};

using ZoJsonError = ZoXMLError;
