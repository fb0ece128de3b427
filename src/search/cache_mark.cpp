#include "search/cache_mark.h"

#include <algorithm>

#include "search/text_lines.h"
#include "text/code_units.h"

namespace zo {
namespace {

constexpr std::string_view kHead = "zo download 1\n";
constexpr std::size_t kMaxMark = 2000, kMaxUrl = 8000;

bool isPlain(std::string_view text, std::size_t most) noexcept {
  return text.size() <= most &&
         std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

// Takes so many lower-case hexadecimal digits off the text.
bool takeDigits(std::wstring_view& text, std::size_t count) noexcept {
  if (text.size() < count) return false;
  const bool are = std::ranges::all_of(text.substr(0, count),
                                       [](wchar_t c) { return hexDigit(c) < 16 && !isUpper(c); });
  text.remove_prefix(count);
  return are;
}

}  // namespace

bool isCacheMark(std::string_view text) noexcept { return text.starts_with(kHead); }

bool isMark(std::string_view text) noexcept { return isPlain(text, kMaxMark); }

std::string printCacheMark(const CacheMark& mark) {
  std::string text(kHead);
  addLine(text, "url", mark.url);
  addLine(text, "etag", mark.etag);
  addLine(text, "modified", mark.modified);
  addLine(text, "size", std::to_string(mark.size));
  addLine(text, "checked", std::to_string(mark.checked));
  addLine(text, "sha256", hexOf(mark.sum));
  return text;
}

bool parseCacheMark(std::string_view text, CacheMark& mark) {
  std::string_view url, etag, modified, size, checked, sum;
  if (!text.starts_with(kHead)) return false;
  text.remove_prefix(kHead.size());
  if (!takeLine(text, "url", url) || !takeLine(text, "etag", etag)) return false;
  if (!takeLine(text, "modified", modified) || !takeLine(text, "size", size)) return false;
  if (!takeLine(text, "checked", checked) || !takeLine(text, "sha256", sum)) return false;
  if (!isPlain(url, kMaxUrl) || !isMark(etag) || !isMark(modified)) return false;
  if (!parseNumber(size, mark.size) || !parseNumber(checked, mark.checked)) return false;
  mark.url = url;
  mark.etag = etag;
  mark.modified = modified;
  return text.empty() && parseSum(sum, mark.sum);
}

CacheFile cacheFileOf(std::wstring_view name) noexcept {
  if (!takeDigits(name, kKeyDigits)) return CacheFile::other;
  if (name == kMarkEnding) return CacheFile::mark;
  const wchar_t sign = name.empty() ? L'\0' : name[0];
  name.remove_prefix(std::min<std::size_t>(1, name.size()));
  if (sign == L'~')
    return takeDigits(name, 8) && name == L".tmp" ? CacheFile::unfinished : CacheFile::other;
  if (sign != L'-' || !takeDigits(name, kCopyDigits)) return CacheFile::other;
  const bool isWhole = name.empty() || (name.size() >= 2 && name.size() <= 9 && name[0] == L'.');
  const bool isExtension =
      isWhole && std::ranges::all_of(name.substr(name.empty() ? 0 : 1), [](wchar_t c) {
        return isDigit(c) || (isLetter(c) && !isUpper(c));
      });
  return isExtension ? CacheFile::copy : CacheFile::other;
}

}  // namespace zo
