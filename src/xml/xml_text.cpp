#include "xml/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>

#include "text/code_units.h"
#include "text/eight_units.h"

namespace zo {

using View = std::wstring_view;

// ---- Characters ----

namespace {

// So many units at the front, eight at a time, that every XML can hold as they are. Where wchar_t
// is no UTF-16 unit (fuzz targets) none.
std::size_t plainUnits(View text) noexcept {
  std::size_t i = 0;
  if constexpr (sizeof(wchar_t) == 2) {
    for (; i + kLane <= text.size(); i += kLane) {
      const __m128i v = load8(text.data() + i);
      const __m128i white = _mm_or_si128(
          _mm_cmpeq_epi16(v, fill8(L'\n')),
          _mm_or_si128(_mm_cmpeq_epi16(v, fill8(L'\r')), _mm_cmpeq_epi16(v, fill8(L'\t'))));
      if (mask8(_mm_or_si128(white, between8(v, 0x20, 0xD7FF))) != 0xFFFF) break;
    }
  }
  return i;
}

}  // namespace

std::size_t firstUnfit(View text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    i += plainUnits(text.substr(i));
    if (i == text.size()) break;
    const wchar_t c = text[i];
    if (c >= 0x20 && c < 0xD800) continue;
    if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      ++i;
    } else if (isSurrogate(c) || c >= 0xFFFE ||
               (c < 0x20 && c != L'\t' && c != L'\n' && c != L'\r')) {
      return i;
    }
  }
  return View::npos;
}

// ---- Names ----

namespace {

// Letters outside ASCII that are letters in the fourth edition of XML, too.
constexpr struct {
  wchar_t first, last;
} kLetters[] = {
    {0x00C0, 0x00D6}, {0x00D8, 0x00F6}, {0x00F8, 0x00FF}, {0x0100, 0x0131}, {0x0134, 0x013E},
    {0x0141, 0x0148}, {0x014A, 0x017E}, {0x038E, 0x03A1}, {0x03A3, 0x03CE}, {0x0401, 0x040C},
    {0x040E, 0x044F}, {0x0451, 0x045C}, {0x045E, 0x0481}, {0x05D0, 0x05EA}, {0x0621, 0x063A},
    {0x0641, 0x064A}, {0x0E01, 0x0E2E}, {0x3041, 0x3094}, {0x30A1, 0x30FA}, {0x4E00, 0x9FA5},
    {0xAC00, 0xD7A3},
};

bool isNameStart(wchar_t c) noexcept {
  if (c < 0x80) return isLetter(c) || c == L'_';
  const auto* const range = std::lower_bound(std::begin(kLetters), std::end(kLetters), c,
                                             [](const auto& r, wchar_t x) { return r.last < x; });
  return range != std::end(kLetters) && range->first <= c;
}

bool isNameUnit(wchar_t c) noexcept {
  return isNameStart(c) || isDigit(c) || c == L'-' || c == L'.';
}

}  // namespace

bool isPlainXmlName(View name) noexcept {
  return !name.empty() && isNameStart(name.front()) &&
         std::all_of(name.begin(), name.end(), isNameUnit);
}

bool isXmlName(View name) noexcept {
  const std::size_t colon = name.find(L':');
  if (colon == View::npos) return isPlainXmlName(name);
  return isPlainXmlName(name.substr(0, colon)) && isPlainXmlName(name.substr(colon + 1));
}

// ---- Texts ----

namespace {

void appendEscaped(View text, View special, std::wstring& out) {
  for (std::size_t at = 0;;) {
    const std::size_t next = std::min(text.find_first_of(special, at), text.size());
    out.append(text, at, next - at);
    if (next == text.size()) return;
    switch (text[next]) {
      case L'<':
        out += L"&lt;";
        break;
      case L'>':
        out += L"&gt;";
        break;
      case L'&':
        out += L"&amp;";
        break;
      case L'"':
        out += L"&quot;";
        break;
      default:
        out += L"&#" + std::to_wstring(static_cast<unsigned int>(text[next])) + L';';
    }
    at = next + 1;
  }
}

// The number behind "&#", in either base; 0 for none, and for what is too large.
char32_t characterOf(View digits) noexcept {
  const bool isHex = !digits.empty() && digits.front() == L'x';
  if (isHex) digits.remove_prefix(1);
  char32_t number = 0;
  for (const wchar_t c : digits) {
    const unsigned int digit = hexDigit(c);
    if (digit >= (isHex ? 16U : 10U) || number > 0x10FFFF) return 0;
    number = number * (isHex ? 16 : 10) + digit;
  }
  return number <= 0x10FFFF ? number : 0;
}

bool appendReference(View name, std::wstring& out) {
  constexpr struct {
    View name;
    wchar_t c;
  } kKnown[] = {{L"lt", L'<'}, {L"gt", L'>'}, {L"amp", L'&'}, {L"quot", L'"'}, {L"apos", L'\''}};
  for (const auto& known : kKnown) {
    if (name != known.name) continue;
    out += known.c;
    return true;
  }
  if (name.empty() || name.front() != L'#') return false;
  const char32_t c = characterOf(name.substr(1));
  if (c == 0) return false;
  if (c >= 0x10000) {
    out += static_cast<wchar_t>(0xD7C0 + (c >> 10));
    out += static_cast<wchar_t>(0xDC00 | (c & 0x3FF));
  } else {
    out += static_cast<wchar_t>(c);
  }
  return true;
}

}  // namespace

void appendXmlText(View text, std::wstring& out) { appendEscaped(text, L"<>&\r", out); }
void appendXmlAttribute(View text, std::wstring& out) { appendEscaped(text, L"<>&\"\t\n\r", out); }

bool takeXmlReferences(View piece, std::wstring& out) {
  for (std::size_t at = 0;;) {
    const std::size_t next = std::min(piece.find(L'&', at), piece.size());
    out.append(piece, at, next - at);
    if (next == piece.size()) return true;
    const std::size_t end = piece.find(L';', next);
    if (end == View::npos || !appendReference(piece.substr(next + 1, end - next - 1), out))
      return false;
    at = end + 1;
  }
}

// ---- Places ----

namespace {

unsigned int counted(std::size_t n) noexcept {
  return static_cast<unsigned int>(
      std::min<std::size_t>(n, std::numeric_limits<unsigned int>::max()));
}

// Behind the line end that begins at `at`, or does not.
std::size_t behindLineEnd(View text, std::size_t at) noexcept {
  if (at < text.size() && text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n')
    return at + 2;
  return std::min(at + 1, text.size());
}

}  // namespace

TextPlace placeOf(View text, std::size_t position) noexcept {
  position = std::min(position, text.size());
  std::size_t lines = 1;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find_first_of(L"\r\n", begin)) < position; ++lines) {
    const std::size_t next = behindLineEnd(text, end);
    if (next > position) break;  // between CR and LF
    begin = next;
  }
  return {counted(lines), counted(position - begin + 1)};
}

View lineAround(View text, std::size_t position) noexcept {
  constexpr std::size_t kAround = 200;
  position = std::min(position, text.size());
  std::size_t first = position;
  while (first > 0 && position - first < kAround && text[first - 1] != L'\n' &&
         text[first - 1] != L'\r')
    --first;
  std::size_t end = position;
  while (end < text.size() && end - position < kAround && text[end] != L'\n' && text[end] != L'\r')
    ++end;
  if (first < end && isLowSurrogate(text[first])) ++first;
  if (first < end && isHighSurrogate(text[end - 1])) --end;
  return text.substr(first, end - first);
}

std::size_t positionOf(View text, TextPlace place) noexcept {
  std::size_t begin = 0;
  for (unsigned int line = 1; line < place.line; ++line) {
    const std::size_t end = text.find_first_of(L"\r\n", begin);
    if (end == View::npos) return text.size();
    begin = behindLineEnd(text, end);
  }
  const std::size_t end = std::min(text.find_first_of(L"\r\n", begin), text.size());
  return std::min(begin + (place.column > 0 ? place.column - 1 : 0), end);
}

}  // namespace zo
