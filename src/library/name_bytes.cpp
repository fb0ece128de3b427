#include "library/name_bytes.h"

#include <zo/text/char_formatter.h>

#include <algorithm>

#include "library/format.h"
#include "platform/ansi.h"

namespace zo {
namespace {

constexpr std::wstring_view kEscape = L"\\U+", kEscapedBackslash = L"\\U+005C";

// What would be read as an escape gets its backslash escaped.
std::wstring withEscapedEscapes(std::wstring_view text) {
  std::wstring out(text);
  for (std::size_t at = 0; (at = out.find(kEscape, at)) != std::wstring::npos; ++at) {
    wchar_t first[kEscapedBackslash.size() + 1];
    const auto length = static_cast<unsigned>(std::min(out.size() - at, kEscapedBackslash.size()));
    if (TvCharFormatter::cifToWchar(out.data() + at, length, first) == length) continue;
    out.replace(at, 1, kEscapedBackslash);
    at += kEscapedBackslash.size() - 1;
  }
  return out;
}

}  // namespace

bool encodeName(const ZoFileName& name, std::string& bytes) {
  const std::wstring text = withEscapedEscapes(name.view());
  if (text.empty() || text.size() > kLargestName) return false;
  std::wstring escaped(7 * text.size() + 1, L'\0');
  escaped.resize(TvCharFormatter::wcharNonNativeToCIF(
      text.data(), static_cast<unsigned>(text.size()), escaped.data()));
  bytes = toMultiByte(escaped);
  return bytes.size() <= kLargestName;
}

std::wstring decodeName(std::string_view bytes) {
  std::wstring text = fromMultiByte(bytes);
  if (text.find(kEscape) == std::wstring::npos) return text;
  text.resize(
      TvCharFormatter::cifToWchar(text.data(), static_cast<unsigned>(text.size()), text.data()));
  return text;
}

// Every ANSI code page has the ASCII characters in their places.
bool isPlainName(std::string_view bytes) noexcept {
  return std::ranges::all_of(bytes, [](char c) { return c >= 0 && c < 0x7F; }) &&
         bytes.find("\\U+") == std::string_view::npos;
}

}  // namespace zo
