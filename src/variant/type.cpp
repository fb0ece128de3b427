#include <zo/results.h>
#include <zo/variant/type.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string>

#include "text/code_units.h"
#include "variant/code_names.h"
#include "variant/type_texts.h"

namespace {

using zo::CodeNames;
using zo::findCode;
using zo::hexDigit;

// The row of the code, or of its base where it has none.
const CodeNames& rowOf(ZoTypeCode code) noexcept {
  const CodeNames* const row = findCode(code);
  return row ? *row : *findCode(ZoType::baseCode(code));
}

const wchar_t* userNameOf(const CodeNames& row) noexcept {
  return zo::lookUpText(zo::TextList::TypeNames, static_cast<unsigned int>(row.code), row.userName);
}

struct FlagText {
  unsigned int flag;
  const wchar_t* text;
};

// In the order in which messageToFlag searches; "No Flag" is answered for what is not here.
constexpr FlagText kFlags[] = {
    {ZoFlagNone, L"No Flag"},
    {ZoFlagCreateList, L"Create List"},
    {ZoFlagVisible, L"Visible in Browser"},
    {ZoFlagConstant, L"Constant Value"},
    {ZoFlagGlobal, L"Global Value"},
    {ZoFlagInvisible, L"Invisible in Browser"},
    {ZoFlagInfopoint, L"Infopoint Value"},
    {ZoFlagPreProcessor, L"Pre Processor"},
    {ZoFlagMidProcessor, L"Mid Processor"},
    {ZoFlagPostProcessor, L"Post Processor"},
    {ZoFlagObjecterType, L"Objecter Type"},
    {ZoFlagParameter, L"Parameter"},
    {ZoFlagReturnValue, L"Return Value"},
    {ZoFlagSystem, L"System Value"},
    {ZoFlagUserInput, L"User Input"},
};

const wchar_t* textOf(const FlagText& row) noexcept {
  return zo::lookUpText(zo::TextList::FlagTexts, row.flag, row.text);
}

constexpr unsigned int kLetters = 26;

// Writes the letters and a terminating zero; returns their number.
unsigned int writeLetters(unsigned int flags, wchar_t* buffer) noexcept {
  unsigned int length = 0;
  for (unsigned int bit = 0; bit < kLetters; ++bit) {
    if (flags >> bit & 1) buffer[length++] = static_cast<wchar_t>(L'A' + bit);
  }
  buffer[length] = 0;
  return length;
}

}  // namespace

const wchar_t* ZoType::codeToString(ZoTypeCode code) noexcept { return rowOf(code).name; }

const wchar_t* ZoType::codeToLocString(ZoTypeCode code) noexcept {
  const CodeNames& row = rowOf(code);
  return userNameOf(row.userName ? row : *findCode(baseCode(code)));
}

ZoTypeCode ZoType::stringToCode(const wchar_t* name) noexcept {
  if (!name) return ZoTypeCode::NoType;
  for (const CodeNames& row : zo::codeNames()) {
    if (_wcsicmp(name, row.name) == 0) return row.code;
  }
  for (const CodeNames& row : zo::codeNames()) {
    if (row.userName && _wcsicmp(name, userNameOf(row)) == 0) return row.code;
  }
  return ZoTypeCode::NoType;
}

const wchar_t* ZoType::flagsToString(unsigned int flags) noexcept {
  static wchar_t buffer[128];
  writeLetters(flags, buffer);
  return buffer;
}

ZoString& ZoType::flagsToString(unsigned int flags, ZoString& out) {
  wchar_t buffer[kLetters + 1];
  const unsigned int length = writeLetters(flags, buffer);
  return out = std::wstring_view(buffer, length);
}

unsigned int ZoType::stringToFlags(const wchar_t* letters) noexcept {
  unsigned int flags = 0;
  for (; letters && *letters; ++letters) {
    if (zo::isUpper(*letters)) flags |= 1u << (*letters - L'A');
  }
  return flags;
}

const wchar_t* ZoType::flagToMessage(unsigned int flag) noexcept {
  const auto* const found = std::find_if(std::begin(kFlags), std::end(kFlags),
                                         [&](const FlagText& row) { return row.flag == flag; });
  return textOf(found == std::end(kFlags) ? kFlags[0] : *found);
}

unsigned int ZoType::messageToFlag(const wchar_t* text) noexcept {
  if (!text) return 0;
  for (const FlagText& row : kFlags) {
    if (row.flag != 0 && _wcsicmp(text, textOf(row)) == 0) return row.flag;
  }
  return 0;
}

ZoString& ZoType::chunkToString(const void* bytes, unsigned int size, ZoString& text) {
  if (!bytes || size > ZoString::maxLength() / 2) size = 0;
  const auto* const from = static_cast<const unsigned char*>(bytes);
  std::wstring digits(size_t{size} * 2, L'0');
  for (size_t i = 0; i < size; ++i) zo::writeHex(&digits[2 * i], from[i], 2);
  return text = ZoString(digits);
}

int ZoType::stringToChunk(unsigned char*& bytes, unsigned int& size, const ZoString& text) {
  bytes = nullptr;
  size = 0;
  if (text.length() % 2 != 0) return ZoResult::refused;
  if (std::any_of(text.begin(), text.end(), [](wchar_t c) { return hexDigit(c) > 15; }))
    return ZoResult::refused;
  size = text.length() / 2;
  bytes = new unsigned char[size > 0 ? size : 1];
  for (size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<unsigned char>(hexDigit(text[2 * i]) << 4 | hexDigit(text[2 * i + 1]));
  return ZoResult::ok;
}
