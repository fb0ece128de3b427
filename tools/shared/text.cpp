#include "text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unordered_map>

namespace zolib {
namespace {

template <class... Args>
std::string formatted(const char* format, Args... args) {
  char text[64];
  const int length = std::snprintf(text, sizeof text, format, args...);
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
  std::string utf8;
  toUtf8(text, utf8);
  return utf8;
}

void toUtf8(std::wstring_view text, std::string& utf8) {
  if (std::ranges::all_of(text, [](wchar_t c) { return c < 0x80; })) {
    utf8.resize(text.size());
    std::ranges::transform(text, utf8.begin(), [](wchar_t c) { return static_cast<char>(c); });
    return;
  }
  const int length = static_cast<int>(text.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  utf8.resize(static_cast<std::size_t>(size));
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
}

std::wstring toWide(std::string_view utf8) {
  const int length = static_cast<int>(utf8.size());
  const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), size);
  return text;
}

std::wstring folded(std::wstring_view name) {
  std::wstring text(name);
  bool isAscii = true;
  for (wchar_t& c : text) {
    isAscii = isAscii && c < 0x80;
    if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c + (L'a' - L'A'));
    if (c == L'\\') c = L'/';
  }
  if (isAscii) return text;
  // Lower case never changes the length here: no linguistic casing is asked for.
  const std::wstring from = text;
  const int length = static_cast<int>(text.size());
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, from.data(), length, text.data(), length,
                nullptr, nullptr, 0);
  return text;
}

std::string readableSize(std::uint64_t bytes) {
  if (bytes < 1000) return formatted("%u B", static_cast<unsigned int>(bytes));
  auto size = static_cast<double>(bytes);
  const char* unit = "";
  for (const char* next : {"KB", "MB", "GB", "TB"}) {
    unit = next;
    size /= 1024;
    if (size < 999.5) break;
  }
  return formatted(size < 99.95 ? "%.1f %s" : "%.0f %s", size, unit);
}

std::string ratioText(std::uint64_t packed, std::uint64_t size) {
  if (!size) return "-";
  const double percent = 100.0 * static_cast<double>(packed) / static_cast<double>(size);
  return std::to_string(std::llrint(percent)) + "%";
}

namespace {

// What local time is ahead of UTC at that time, in ticks. Asking is slow; a quarter of an hour has
// one answer, and most files have few of them.
std::int64_t localOffset(std::uint64_t utc) {
  static std::unordered_map<std::uint64_t, std::int64_t> s_offsets;
  constexpr std::size_t kMostKnown = 100'000;
  constexpr std::uint64_t kQuarter = 15ULL * 60 * 10'000'000;
  if (s_offsets.size() == kMostKnown) s_offsets.clear();
  const auto [known, isNew] = s_offsets.try_emplace(utc / kQuarter, 0);
  const FILETIME time = fileTime(utc);
  SYSTEMTIME parts{}, local{};
  FILETIME there{};
  if (isNew && FileTimeToSystemTime(&time, &parts) &&
      SystemTimeToTzSpecificLocalTime(nullptr, &parts, &local) &&
      SystemTimeToFileTime(&local, &there)) {
    const std::uint64_t kept = utc / 10'000 * 10'000;  // the parts end with milliseconds
    known->second = static_cast<std::int64_t>(ticks(there) - kept);
  }
  return known->second;
}

}  // namespace

std::string_view localTime(const FILETIME& time) {
  static std::string s_text;
  if (!ticks(time)) return "-";
  const FILETIME shifted =
      fileTime(ticks(time) + static_cast<std::uint64_t>(localOffset(ticks(time))));
  SYSTEMTIME local{};
  if (!FileTimeToSystemTime(&shifted, &local)) return "-";
  s_text.assign(std::to_string(local.wYear)).append("-00-00 00:00");
  const auto put = [end = s_text.end()](std::ptrdiff_t fromEnd, unsigned int number) {
    end[-fromEnd] = static_cast<char>('0' + number / 10);
    end[1 - fromEnd] = static_cast<char>('0' + number % 10);
  };
  put(11, local.wMonth);
  put(8, local.wDay);
  put(5, local.wHour);
  put(2, local.wMinute);
  return s_text;
}

namespace {

// The blanks that a text of less than so many characters lacks.
std::size_t lacking(std::string_view utf8, std::size_t width) noexcept {
  const auto characters = static_cast<std::size_t>(
      std::ranges::count_if(utf8, [](char c) { return (c & 0xC0) != 0x80; }));
  return width > characters ? width - characters : 0;
}

}  // namespace

void appendRight(std::string& line, std::string_view utf8, std::size_t width) {
  line.append(lacking(utf8, width), ' ').append(utf8).append("  ");
}

void appendLeft(std::string& line, std::string_view utf8, std::size_t width) {
  line.append(utf8).append(lacking(utf8, width) + 2, ' ');
}

std::string isoTime(const FILETIME& time) {
  SYSTEMTIME utc{};
  if (!ticks(time) || !FileTimeToSystemTime(&time, &utc)) return {};
  return formatted("%04u-%02u-%02uT%02u:%02u:%02u.%07uZ", utc.wYear, utc.wMonth, utc.wDay,
                   utc.wHour, utc.wMinute, utc.wSecond,
                   static_cast<unsigned int>(ticks(time) % 10'000'000));
}

}  // namespace zolib
