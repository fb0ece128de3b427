#include "library/name_bytes.h"

#include <zo/text/char_formatter.h>

#include <algorithm>

#include "library/format.h"
#include "names/name_compare.h"
#include "platform/ansi.h"
#include "text/letter_case.h"

namespace zo {
namespace {

// What a name is as text, for the time of a call: nearly always without asking for memory.
template <class Use>
auto withName(std::string_view bytes, const Use& use) {
  constexpr std::size_t kPlainUnits = 256;
  wchar_t units[kPlainUnits];
  if (bytes.size() > kPlainUnits || !isPlainName(bytes)) {
    return use(std::wstring_view(decodeName(bytes)));
  }
  std::copy(bytes.begin(), bytes.end(), units);
  return use(std::wstring_view(units, bytes.size()));
}

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
  if (isPlainName(bytes)) return {bytes.begin(), bytes.end()};
  std::wstring text = fromMultiByte(bytes);
  if (text.find(kEscape) == std::wstring::npos) return text;
  text.resize(
      TvCharFormatter::cifToWchar(text.data(), static_cast<unsigned>(text.size()), text.data()));
  return text;
}

ZoFileName memberName(std::string_view bytes) {
  return withName(bytes, [](std::wstring_view name) { return ZoFileName(name); });
}

void setMemberName(ZoFileName& name, std::string_view bytes) {
  withName(bytes, [&](std::wstring_view text) { name = text; });
}

// Every ANSI code page has the ASCII characters in their places. All bytes are looked at before
// that is told: the compiler does so many at once.
bool isPlainName(std::string_view bytes) noexcept {
  unsigned char isOther = 0, isBackslash = 0;
  for (const char c : bytes) {
    isOther |= static_cast<unsigned char>(c) >= 0x7F;
    isBackslash |= c == '\\';
  }
  return !isOther && (!isBackslash || bytes.find("\\U+") == std::string_view::npos);
}

bool isNamed(std::string_view bytes, std::wstring_view wanted) {
  if (!isPlainName(bytes)) return equalNames(decodeName(bytes), wanted);
  if (bytes.size() != wanted.size()) return false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto unit = static_cast<wchar_t>(bytes[i]);
    if (unit != wanted[i] && lowerAscii(unit) != lowerCase(wanted[i])) return false;
  }
  return true;
}

std::uint32_t shortHash(std::wstring_view name) noexcept {
  return static_cast<std::uint32_t>(hashName(name));
}

std::uint32_t hashNameBytes(std::string_view bytes) { return withName(bytes, shortHash); }

}  // namespace zo
