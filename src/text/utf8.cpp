#include "text/utf8.h"

#include <cstdint>
#include <cstring>

#include "text/code_units.h"

namespace zo {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Takes the units of the first character off the front and returns it.
char32_t takeCharacter(std::wstring_view& text) noexcept {
  const char32_t first = text[0];
  const std::size_t units = firstCharacter(text).size();
  const char32_t second = text[units - 1];
  text.remove_prefix(units);
  if (units == 2) return 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF);
  return isSurrogate(static_cast<wchar_t>(first)) ? kReplacement : first;
}

// How many bytes follow a first byte, and what the next of them may be: the bounds rule out what
// could be written shorter, surrogates, and what lies past U+10FFFF.
struct Lead {
  int more;
  unsigned char low, high;
};

Lead leadOf(unsigned char byte) noexcept {
  if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
  if ((byte & 0xF0) == 0xE0) {
    return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
  }
  return {0, 0, 0};
}

char32_t takeCharacter(std::string_view& bytes) noexcept {
  const auto first = static_cast<unsigned char>(bytes[0]);
  bytes.remove_prefix(1);
  if (first < 0x80) return first;
  Lead lead = leadOf(first);
  if (lead.more == 0) return kReplacement;
  char32_t c = first & (0x3F >> lead.more);
  for (; lead.more > 0; --lead.more) {
    const auto next = static_cast<unsigned char>(bytes.empty() ? 0 : bytes[0]);
    if (next < lead.low || next > lead.high) return kReplacement;
    bytes.remove_prefix(1);
    c = c << 6 | (next & 0x3F);
    lead.low = 0x80;
    lead.high = 0xBF;
  }
  return c;
}

wchar_t* putCharacter(char32_t c, wchar_t* out) noexcept {
  if (c < 0x10000) {
    *out++ = static_cast<wchar_t>(c);
  } else {
    *out++ = static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
    *out++ = static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
  }
  return out;
}

// Whether the next eight bytes are ASCII.
bool isAscii8(std::string_view bytes) noexcept {
  std::uint64_t eight = 0;
  if (bytes.size() < sizeof eight) return false;
  std::memcpy(&eight, bytes.data(), sizeof eight);
  return (eight & 0x80808080'80808080) == 0;
}

std::size_t utf8SizeOf(char32_t c) noexcept {
  return c < 0x80 ? 1 : (c < 0x800 ? 2 : (c < 0x10000 ? 3 : 4));
}

}  // namespace

std::size_t utf16Size(std::string_view bytes) noexcept {
  std::size_t size = 0;
  while (!bytes.empty()) size += takeCharacter(bytes) < 0x10000 ? 1 : 2;
  return size;
}

void utf8ToUtf16(std::string_view bytes, wchar_t* out) noexcept {
  while (!bytes.empty()) out = putCharacter(takeCharacter(bytes), out);
}

std::size_t utf8ToUtf16Strictly(std::string_view bytes, wchar_t* out, std::size_t& units) noexcept {
  const wchar_t* const first = out;
  std::string_view rest = bytes;
  while (!rest.empty()) {
    for (; isAscii8(rest); rest.remove_prefix(8), out += 8)
      for (int i = 0; i < 8; ++i) out[i] = static_cast<wchar_t>(rest[static_cast<unsigned int>(i)]);
    if (rest.empty()) break;
    const std::string_view before = rest;
    const char32_t c = takeCharacter(rest);
    if (c == kReplacement && !before.starts_with("\xEF\xBF\xBD")) {
      rest = before;
      break;
    }
    out = putCharacter(c, out);
  }
  units = static_cast<std::size_t>(out - first);
  return bytes.size() - rest.size();
}

std::size_t utf8Size(std::wstring_view text) noexcept {
  std::size_t size = 0;
  while (!text.empty()) size += utf8SizeOf(takeCharacter(text));
  return size;
}

void utf16ToUtf8(std::wstring_view text, char* out) noexcept {
  while (!text.empty()) {
    const char32_t c = takeCharacter(text);
    const std::size_t size = utf8SizeOf(c);
    if (size == 1) {
      *out++ = static_cast<char>(c);
      continue;
    }
    int shift = static_cast<int>(size - 1) * 6;
    *out++ = static_cast<char>((0xF00 >> size & 0xF0) | c >> shift);
    while ((shift -= 6) >= 0) *out++ = static_cast<char>(0x80 | (c >> shift & 0x3F));
  }
}

}  // namespace zo
