// How the library's values look in a failed assertion.
#pragma once

#include <zo/text/string.h>

#include <ostream>

inline void PrintTo(const ZoSubString& text, std::ostream* out) {
  *out << '"';
  for (const wchar_t c : text) {
    if (c >= 0x20 && c < 0x7F) {
      *out << static_cast<char>(c);
    } else {
      *out << "\\x" << std::hex << static_cast<unsigned int>(c) << std::dec;
    }
  }
  *out << '"' << (!text ? " (null substring)" : "");
}
inline void PrintTo(const ZoString& text, std::ostream* out) {
  PrintTo(text.left(ZoString::npos), out);
}
