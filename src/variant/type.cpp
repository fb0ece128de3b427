#include <zo/results.h>
#include <zo/variant/type.h>

#include <algorithm>
#include <cwchar>
#include <span>
#include <string>

#include "text/code_units.h"
#include "variant/code_names.h"
#include "variant/type_texts.h"

namespace {

using zo::CodeNames;
using zo::findCode;
using zo::FlagText;
using zo::hexDigit;

// The row of the code, or of its base where it has none.
const CodeNames& rowOf(ZoTypeCode code) noexcept {
  const CodeNames* const row = findCode(code);
  return row ? *row : *findCode(ZoType::baseCode(code));
}

const wchar_t* userNameOf(const CodeNames& row) noexcept {
  return zo::lookUpText(zo::kTypeNameFile, static_cast<unsigned int>(row.code), row.userName);
}

const wchar_t* textOf(const FlagText& row) noexcept {
  return zo::lookUpText(zo::kFlagTextFile, row.number, row.text);
}

// "No Flag" first, which is answered for what is not here.
std::span<const FlagText> flagsWithTexts() noexcept {
  const auto texts = zo::flagTexts();
  const auto end = std::ranges::find(texts, zo::kFirstWithoutFlag, &FlagText::number);
  return {texts.begin(), end};
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
  const auto texts = flagsWithTexts();
  const auto found = std::ranges::find(texts, flag, &FlagText::number);
  return textOf(found == texts.end() ? texts.front() : *found);
}

unsigned int ZoType::messageToFlag(const wchar_t* text) noexcept {
  if (!text) return 0;
  for (const FlagText& row : flagsWithTexts().subspan(1)) {
    if (_wcsicmp(text, textOf(row)) == 0) return row.number;
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
