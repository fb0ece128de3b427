#include <zo/text/char_formatter.h>

#include <algorithm>
#include <string_view>

#include "platform/ansi.h"
#include "text/code_units.h"

namespace {

constexpr std::wstring_view kPrefix = L"\\U+";
constexpr unsigned int kEscapeLength = 7;

wchar_t* writeEscape(wchar_t unit, wchar_t* out) noexcept {
  out = std::copy(kPrefix.begin(), kPrefix.end(), out);
  return zo::writeHex(out, unit, 4);
}

// Reads one escape; false when text does not start with one.
bool readEscape(std::wstring_view text, wchar_t& unit) noexcept {
  if (text.size() < kEscapeLength || !text.starts_with(kPrefix)) return false;
  unsigned int value = 0;
  for (const wchar_t c : text.substr(kPrefix.size(), 4)) {
    const size_t digit = zo::kHexDigits.find(c);
    if (digit == std::wstring_view::npos) return false;
    value = value * 16 + static_cast<unsigned int>(digit);
  }
  unit = static_cast<wchar_t>(value);
  return true;
}

}  // namespace

unsigned int TvCharFormatter::wcharNonNativeToCIF(const wchar_t* text, unsigned int length,
                                                  wchar_t* out) {
  const wchar_t* const begin = out;
  for (std::wstring_view rest(text, length); !rest.empty();) {
    const std::wstring_view character = zo::firstCharacter(rest);
    if (character[0] < 0x80 || zo::fitsCodePage(character)) {
      out = std::copy(character.begin(), character.end(), out);
    } else {
      for (const wchar_t unit : character) out = writeEscape(unit, out);
    }
    rest.remove_prefix(character.size());
  }
  *out = 0;
  return static_cast<unsigned int>(out - begin);
}

unsigned int TvCharFormatter::cifToWchar(const wchar_t* text, unsigned int length,
                                         wchar_t* out) noexcept {
  const wchar_t* const begin = out;
  for (std::wstring_view rest(text, length); !rest.empty();) {
    wchar_t unit = rest[0];
    rest.remove_prefix(readEscape(rest, unit) ? kEscapeLength : 1);
    *out++ = unit;
  }
  *out = 0;
  return static_cast<unsigned int>(out - begin);
}
