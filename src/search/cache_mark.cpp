#include "search/cache_mark.h"

#include <algorithm>
#include <charconv>

#include "text/code_units.h"

namespace zo {
namespace {

constexpr std::string_view kHead = "zo download 1\n";
constexpr std::size_t kMaxMark = 2000, kMaxUrl = 8000;

bool isPlain(std::string_view text, std::size_t most) noexcept {
  return text.size() <= most &&
         std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

// Takes "name value" and the line's end off the text.
bool takeLine(std::string_view& text, std::string_view name, std::string_view& value) noexcept {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos || !text.starts_with(name)) return false;
  if (end <= name.size() || text[name.size()] != ' ') return false;
  value = text.substr(name.size() + 1, end - name.size() - 1);
  text.remove_prefix(end + 1);
  return true;
}

bool takeNumber(std::string_view& text, std::string_view name, std::uint64_t& number) noexcept {
  std::string_view value;
  if (!takeLine(text, name, value)) return false;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  return error == std::errc() && end == value.data() + value.size();
}

bool parseSum(std::string_view digits, Sha256Sum& sum) noexcept {
  if (digits.size() != 2 * sum.size()) return false;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const unsigned int digit = hexDigit(static_cast<unsigned char>(digits[i]));
    if (digit > 15) return false;
    sum[i / 2] = static_cast<std::uint8_t>(sum[i / 2] << 4 | digit);
  }
  return true;
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

bool isMark(std::string_view text) noexcept { return isPlain(text, kMaxMark); }

std::string hexOf(const Sha256Sum& sum) {
  std::string digits;
  for (const std::uint8_t byte : sum)
    for (const int half : {byte >> 4, byte & 15})
      digits += static_cast<char>(kLowerHexDigits[static_cast<std::size_t>(half)]);
  return digits;
}

std::string printCacheMark(const CacheMark& mark) {
  std::string text(kHead);
  const auto line = [&](const char* name, const std::string& value) {
    text.append(name).append(1, ' ').append(value).append(1, '\n');
  };
  line("url", mark.url);
  line("etag", mark.etag);
  line("modified", mark.modified);
  line("size", std::to_string(mark.size));
  line("checked", std::to_string(mark.checked));
  line("sha256", hexOf(mark.sum));
  return text;
}

bool parseCacheMark(std::string_view text, CacheMark& mark) {
  std::string_view url, etag, modified, sum;
  if (!text.starts_with(kHead)) return false;
  text.remove_prefix(kHead.size());
  if (!takeLine(text, "url", url) || !takeLine(text, "etag", etag)) return false;
  if (!takeLine(text, "modified", modified) || !takeNumber(text, "size", mark.size)) return false;
  if (!takeNumber(text, "checked", mark.checked) || !takeLine(text, "sha256", sum)) return false;
  if (!isPlain(url, kMaxUrl) || !isMark(etag) || !isMark(modified)) return false;
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
