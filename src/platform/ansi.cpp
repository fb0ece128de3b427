#include "platform/ansi.h"

#include <windows.h>

#include <climits>
#include <stdexcept>

namespace zo {
namespace {

int checkedLength(size_t n) {
  if (n > INT_MAX) throw std::length_error("zo: text too long for a code page conversion");
  return static_cast<int>(n);
}

bool isUnicode(unsigned int codePage) noexcept {
  const unsigned int page = codePage == CP_ACP ? GetACP() : codePage;
  return page == CP_UTF8 || page == CP_UTF7;
}

bool isLoneSurrogate(std::wstring_view character) noexcept {
  return character.size() == 1 &&
         (IS_HIGH_SURROGATE(character[0]) || IS_LOW_SURROGATE(character[0]));
}

}  // namespace

std::string toMultiByte(std::wstring_view text, unsigned int codePage) {
  if (text.empty()) return {};
  const int length = checkedLength(text.size());
  const int size =
      WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

std::wstring fromMultiByte(std::string_view bytes, unsigned int codePage) {
  if (bytes.empty()) return {};
  const int length = checkedLength(bytes.size());
  const int size = MultiByteToWideChar(codePage, 0, bytes.data(), length, nullptr, 0);
  std::wstring text(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(codePage, 0, bytes.data(), length, text.data(), size);
  return text;
}

bool fitsCodePage(std::wstring_view character, unsigned int codePage) noexcept {
  if (isLoneSurrogate(character)) return false;
  if (isUnicode(codePage)) return true;
  // Neither flags nor the report of a replacement: some code pages refuse them (GB 18030, the
  // stateful ones). What is replaced or fitted does not come back as it was.
  char bytes[16];
  const int size =
      WideCharToMultiByte(codePage, 0, character.data(), static_cast<int>(character.size()), bytes,
                          sizeof bytes, nullptr, nullptr);
  if (size <= 0) return false;
  wchar_t back[16];
  const int count = MultiByteToWideChar(codePage, 0, bytes, size, back, 16);
  return std::wstring_view(back, static_cast<size_t>(count > 0 ? count : 0)) == character;
}

}  // namespace zo
