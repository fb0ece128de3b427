#include "text.h"

#include <cstdio>

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
  const int length = static_cast<int>(text.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
  return utf8;
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
  if (!text.empty()) {
    // Lower case never changes the length here: no linguistic casing is asked for.
    const int length = static_cast<int>(text.size());
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, name.data(), length, text.data(), length,
                  nullptr, nullptr, 0);
  }
  for (wchar_t& c : text) {
    if (c == L'\\') c = L'/';
  }
  return text;
}

std::string readableSize(std::uint64_t bytes) {
  if (bytes < 1000) return formatted("%u B", static_cast<unsigned int>(bytes));
  double size = static_cast<double>(bytes);
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
  return formatted("%.0f%%", 100.0 * static_cast<double>(packed) / static_cast<double>(size));
}

std::string localTime(const FILETIME& time) {
  SYSTEMTIME utc{}, local{};
  if (!ticks(time) || !FileTimeToSystemTime(&time, &utc) ||
      !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
    return "-";
  return formatted("%04u-%02u-%02u %02u:%02u", local.wYear, local.wMonth, local.wDay, local.wHour,
                   local.wMinute);
}

std::string isoTime(const FILETIME& time) {
  SYSTEMTIME utc{};
  if (!ticks(time) || !FileTimeToSystemTime(&time, &utc)) return {};
  return formatted("%04u-%02u-%02uT%02u:%02u:%02u.%07uZ", utc.wYear, utc.wMonth, utc.wDay,
                   utc.wHour, utc.wMinute, utc.wSecond,
                   static_cast<unsigned int>(ticks(time) % 10'000'000));
}

}  // namespace zolib
