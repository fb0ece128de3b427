#include <windows.h>
#include <zo/files/file.h>
#include <zo/files/file_save.h>
#include <zo/files/text_file.h>
#include <zo/system/codepage.h>

#include <algorithm>
#include <string>

#include "files/keep_reason.h"
#include "files/read_all.h"
#include "platform/ansi.h"
#include "system/codepage/detect.h"
#include "system/service_or_null.h"
#include "text/code_units.h"
#include "text/utf8.h"

namespace {

using zo::ByteForm;

int refuse(DWORD error) { return zo::keepReason(L"text file", error); }

std::wstring fromUtf16(std::string_view bytes, bool bigEndian) {
  std::wstring text(bytes.size() / 2, L'\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto first = static_cast<unsigned char>(bytes[2 * i]);
    const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
    text[i] = static_cast<wchar_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  if (bytes.size() % 2 != 0) text += L'\xFFFD';
  return text;
}

unsigned int defaultCodepage() {
  unsigned int codepage = zo::kAnsiCodePage;
  if (auto* const service = zo::serviceOrNull<ZoCodepage>()) {
    if (service->getDefault(codepage) != ZoResult::ok) return zo::kAnsiCodePage;
  }
  return codepage;
}

int decode(std::string_view bytes, unsigned int codepage, ZoString& text) {
  unsigned int mark = 0;
  ByteForm form = zo::markedForm(bytes, mark);
  bytes.remove_prefix(mark);
  if (mark == 0) form = zo::formOfWhole(bytes);
  std::wstring wide;
  if (form == ByteForm::Utf16 || form == ByteForm::Utf16BigEndian) {
    if (bytes.size() / 2 >= ZoString::maxLength()) return refuse(ERROR_FILE_TOO_LARGE);
    wide = fromUtf16(bytes, form == ByteForm::Utf16BigEndian);
  } else if (form == ByteForm::Utf8 || form == ByteForm::Ascii) {
    const std::size_t size = zo::utf16Size(bytes);
    if (size > ZoString::maxLength()) return refuse(ERROR_FILE_TOO_LARGE);
    text = ZoString::fromUtf8(bytes);
    return ZoResult::ok;
  } else {
    if (bytes.size() > ZoString::maxLength()) return refuse(ERROR_FILE_TOO_LARGE);
    wide = zo::fromMultiByte(bytes, codepage == 0 ? defaultCodepage() : codepage);
    if (wide.empty()) return refuse(ERROR_INVALID_PARAMETER);
  }
  text = wide;
  return ZoResult::ok;
}

// ---- Saving, in blocks ----

constexpr std::size_t kBlock = std::size_t{32} * 1024;  // units

// The bytes of a block; its units are in a place of their own for UTF-16.
std::string_view encode(std::wstring_view block, ZoTextForm form, std::string& buffer) {
  if (form == ZoTextForm::utf8 || form == ZoTextForm::utf8Marked) {
    buffer.resize(zo::utf8Size(block));
    zo::utf16ToUtf8(block, buffer.data());
    return buffer;
  }
  buffer.resize(2 * block.size());
  for (std::size_t i = 0; i < block.size(); ++i) {
    const bool bigEndian = form == ZoTextForm::utf16BigEndian;
    buffer[2 * i + bigEndian] = static_cast<char>(block[i] & 0xFF);
    buffer[2 * i + !bigEndian] = static_cast<char>(block[i] >> 8);
  }
  return buffer;
}

// Takes a block off the front; a surrogate pair stays together.
std::wstring_view takeBlock(std::wstring_view& text) noexcept {
  std::size_t count = std::min(kBlock, text.size());
  if (count < text.size() && zo::isHighSurrogate(text[count - 1])) --count;
  const std::wstring_view block = text.substr(0, count);
  text.remove_prefix(count);
  return block;
}

bool writeAll(ZoFile& file, std::string_view bytes) {
  const auto count = static_cast<unsigned int>(bytes.size());
  return file.write(bytes.data(), count) == count;
}

}  // namespace

int zoReadText(const ZoFileName& name, ZoString& text, zo::NotNegative<unsigned int> codepage) {
  ZoFile file;
  if (const int code = file.open(name, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                                 ZoFile::kSequential))
    return code;
  return zoReadText(file, text, codepage);
}

int zoReadText(ZoFile& file, ZoString& text, zo::NotNegative<unsigned int> codepage) {
  constexpr std::int64_t kLargest = 3 * std::int64_t{ZoString::maxLength()} + 3;
  zo::AllBytes all;
  if (const int code = zo::readAll(file, kLargest, all)) return code;
  return decode(all.view(), codepage, text);
}

int zoSaveText(const ZoFileName& name, std::wstring_view text, ZoTextForm form) {
  ZoFileSave save;
  if (const int code = save.open(name)) return code;
  std::string buffer;
  bool isWritten =
      form == ZoTextForm::utf8 || writeAll(save.file(), encode(L"\xFEFF", form, buffer));
  while (isWritten && !text.empty())
    isWritten = writeAll(save.file(), encode(takeBlock(text), form, buffer));
  // A write that moved nothing is known to the commit, which says why; one that was cut is not.
  if (!isWritten) save.file().cancel();
  return save.commit();
}
