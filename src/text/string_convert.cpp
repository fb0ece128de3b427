// ZoString: conversion to and from the ANSI code page, and streams.
#include <zo/text/char_formatter.h>
#include <zo/text/string.h>

#include <cstring>
#include <istream>
#include <memory>
#include <ostream>

#include "platform/ansi.h"
#include "text/text_buffer.h"
#include "text/utf8.h"

char* ZoString::getMBString() const {
  std::wstring escaped;
  if (!isAscii()) {
    escaped.resize(size_t{7} * length() + 1);
    escaped.resize(TvCharFormatter::wcharNonNativeToCIF(data_, length(), escaped.data()));
  }
  const std::string bytes = zo::toMultiByte(escaped.empty() ? view() : escaped);
  auto result = std::make_unique<char[]>(bytes.size() + 1);
  std::memcpy(result.get(), bytes.c_str(), bytes.size() + 1);
  return result.release();
}

ZoString& ZoString::setFromMB(const char* text) {
  std::wstring wide = zo::fromMultiByte(text ? text : "");
  if (wide.size() > maxLength()) return *this;
  wide.resize(TvCharFormatter::cifToWchar(wide.c_str(), static_cast<unsigned int>(wide.size()),
                                          wide.data()));
  // By length: an escape may stand for a zero character. An empty text is let go of as a pointer's.
  return wide.empty() ? *this = L"" : *this = wide;
}

ZoString ZoString::fromUtf8(std::string_view bytes) {
  ZoString result(blockFor(zo::utf16Size(bytes)));
  if (!result.isEmpty()) zo::utf8ToUtf16(bytes, result.data_);
  return result;
}

std::string ZoString::toUtf8() const {
  std::string bytes(zo::utf8Size(view()), '\0');
  zo::utf16ToUtf8(view(), bytes.data());
  return bytes;
}

// ---- Streams ----

std::wostream& operator<<(std::wostream& out, const ZoString& text) { return out << text.view(); }

std::wostream& operator<<(std::wostream& out, const ZoSubString& text) {
  return out << text.view();
}

std::wistream& operator>>(std::wistream& in, ZoString& text) {
  std::wstring token;
  in >> token;
  text = std::wstring_view(token);
  return in;
}

std::wistream& ZoString::readToken(std::wistream& in) { return in >> *this; }

std::wistream& ZoString::readFile(std::wistream& in) {
  zo::TextBuffer rest;
  if (const std::wistream::sentry ready(in, true); ready) {
    wchar_t chunk[4096];
    std::streamsize n;
    while ((n = in.rdbuf()->sgetn(chunk, std::size(chunk))) > 0) {
      rest << std::wstring_view(chunk, static_cast<size_t>(n));
    }
    in.setstate(std::ios_base::eofbit);
  }
  *this = rest.toString();
  return in;
}

std::wistream& ZoString::readLine(std::wistream& in, bool skipWhite) {
  if (skipWhite) in >> std::ws;
  return readToDelim(in, L'\n');
}

std::wistream& ZoString::readToDelim(std::wistream& in, wchar_t delim) {
  std::wstring text;
  std::getline(in, text, delim);
  *this = std::wstring_view(text);
  return in;
}
