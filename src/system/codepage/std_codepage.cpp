#include <windows.h>
#include <zo/results.h>
#include <zo/system/codepage.h>
#include <zo/text/char_formatter.h>

#include <cstring>

#include "platform/ansi.h"
#include "system/codepage/detect.h"
#include "system/codepage/names.h"
#include "system/service_scope.h"
#include "text/code_units.h"

namespace {

constexpr size_t kLongest = 0x7FFFFFFE;

bool isUtf16(unsigned int codepage) noexcept {
  return codepage == ZoCodepage::kUtf16 || codepage == ZoCodepage::kUtf16BigEndian;
}

std::wstring swapped(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(c << 8 | c >> 8);
  return text;
}

// An odd last byte is refused, or becomes a replacement character.
bool fromUtf16(std::string_view bytes, bool bigEndian, bool strict, std::wstring& text) {
  if (strict && bytes.size() % 2 != 0) return false;
  std::wstring units(bytes.size() / 2, L'\0');
  std::memcpy(units.data(), bytes.data(), units.size() * sizeof(wchar_t));
  text = bigEndian ? swapped(std::move(units)) : std::move(units);
  if (bytes.size() % 2 != 0) text += L'\uFFFD';
  return true;
}

std::string toUtf16(std::wstring_view text, bool bigEndian) {
  const std::wstring units = bigEndian ? swapped(std::wstring(text)) : std::wstring(text);
  std::string bytes(units.size() * sizeof(wchar_t), '\0');
  std::memcpy(bytes.data(), units.data(), bytes.size());
  return bytes;
}

// Whether the code page defines all bytes, as far as the platform can tell.
bool definesAll(std::string_view bytes, unsigned int codepage) noexcept {
  return bytes.empty() ||
         MultiByteToWideChar(codepage, MB_ERR_INVALID_CHARS, bytes.data(),
                             static_cast<int>(bytes.size()), nullptr, 0) > 0 ||
         GetLastError() == ERROR_INVALID_FLAGS;
}

std::wstring unescaped(std::wstring text) {
  const unsigned int length =
      TvCharFormatter::cifToWchar(text.data(), static_cast<unsigned int>(text.size()), text.data());
  text.resize(length);
  return text;
}

void appendEscape(std::wstring& text, wchar_t unit) {
  wchar_t escape[] = L"\\U+0000";
  zo::writeHex(escape + 3, unit, 4);
  text += escape;
}

// The text with escapes for what the code page cannot hold; false when that is refused instead.
bool fitted(std::wstring_view text, unsigned int codepage, bool escape, std::wstring& result) {
  while (!text.empty()) {
    const std::wstring_view character = zo::firstCharacter(text);
    text.remove_prefix(character.size());
    if (character[0] < 0x80 || zo::fitsCodePage(character, codepage)) {
      result += character;
    } else if (!escape) {
      return false;
    } else {
      for (const wchar_t unit : character) appendEscape(result, unit);
    }
  }
  return true;
}

}  // namespace

int ZoStdCodepage::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoStdCodepage::getDefault(unsigned int& codepage) {
  const zo::Reading reading(*this);
  if (reading) codepage = default_ == kDefault ? ansi() : default_;
  return reading.result();
}

int ZoStdCodepage::setDefault(unsigned int codepage) {
  if (codepage != kDefault && !isValid(codepage)) return ZoResult::refused;
  const zo::Writing writing(*this);
  if (writing) default_ = codepage;
  return writing.result();
}

unsigned int ZoStdCodepage::ansi() { return GetACP(); }
unsigned int ZoStdCodepage::oem() { return GetOEMCP(); }

bool ZoStdCodepage::isValid(unsigned int codepage) {
  // The numbers below the first code page stand for others (the thread's, the system's).
  return isUtf16(codepage) || (codepage >= 37 && IsValidCodePage(codepage));
}

int ZoStdCodepage::resolve(unsigned int& codepage) {
  if (codepage == kDefault) return getDefault(codepage);
  return isValid(codepage) ? ZoResult::ok : ZoResult::refused;
}

int ZoStdCodepage::toText(std::string_view bytes, unsigned int codepage, Unfit unfit,
                          ZoString& text) {
  if (bytes.size() > kLongest) return ZoResult::refused;
  if (const int result = resolve(codepage)) return result;
  std::wstring converted;
  if (isUtf16(codepage)) {
    if (!fromUtf16(bytes, codepage == kUtf16BigEndian, unfit == kRefuse, converted))
      return ZoResult::refused;
  } else {
    if (unfit == kRefuse && !definesAll(bytes, codepage)) return ZoResult::refused;
    converted = zo::fromMultiByte(bytes, codepage);
  }
  if (unfit == kEscape) converted = unescaped(std::move(converted));
  text = std::wstring_view(converted);
  return ZoResult::ok;
}

int ZoStdCodepage::toBytes(std::wstring_view text, unsigned int codepage, Unfit unfit,
                           std::string& bytes) {
  if (text.size() > kLongest) return ZoResult::refused;
  if (const int result = resolve(codepage)) return result;
  if (isUtf16(codepage)) {
    bytes = toUtf16(text, codepage == kUtf16BigEndian);
    return ZoResult::ok;
  }
  std::wstring held;
  if (unfit != kReplace) {
    if (!fitted(text, codepage, unfit == kEscape, held)) return ZoResult::refused;
    text = held;
  }
  if (text.size() > kLongest) return ZoResult::refused;
  std::string converted = zo::toMultiByte(text, codepage);
  // The platform answers nothing when the bytes pass its limit.
  if (converted.empty() && !text.empty()) return ZoResult::refused;
  bytes = std::move(converted);
  return ZoResult::ok;
}

int ZoStdCodepage::nameOf(unsigned int codepage, ZoString& name) {
  if (const int result = resolve(codepage)) return result;
  name = std::wstring_view(zo::codepageName(codepage));
  return ZoResult::ok;
}

int ZoStdCodepage::describe(unsigned int codepage, ZoString& description) {
  if (const int result = resolve(codepage)) return result;
  CPINFOEXW info = {};
  if (!GetCPInfoExW(codepage, 0, &info) || info.CodePageName[0] == 0) return ZoResult::refused;
  description = info.CodePageName;
  return ZoResult::ok;
}

int ZoStdCodepage::find(const wchar_t* name, unsigned int& codepage) {
  const unsigned int found = zo::codepageOfName(name ? name : L"");
  if (found == 0 || !isValid(found)) return ZoResult::refused;
  codepage = found;
  return ZoResult::ok;
}

int ZoStdCodepage::detect(std::string_view bytes, unsigned int& codepage, unsigned int& markLength,
                          Certainty& certainty) {
  unsigned int length = 0;
  zo::ByteForm form = zo::markedForm(bytes, length);
  const bool marked = length > 0;
  if (!marked) form = zo::formOf(bytes);
  unsigned int found = kDefault;
  switch (form) {
    case zo::ByteForm::Utf8:
      found = kUtf8;
      break;
    case zo::ByteForm::Utf16:
      found = kUtf16;
      break;
    case zo::ByteForm::Utf16BigEndian:
      found = kUtf16BigEndian;
      break;
    default:
      break;
  }
  const bool told = found != kDefault;
  if (const int result = resolve(found)) return result;
  codepage = found;
  markLength = length;
  certainty = marked ? kMarked : told ? kLikely : kAssumed;
  return ZoResult::ok;
}
