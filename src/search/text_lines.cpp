#include "search/text_lines.h"

#include <charconv>

#include "text/code_units.h"

namespace zo {

bool takeLine(std::string_view& text, std::string_view name, std::string_view& value) noexcept {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos || !text.starts_with(name)) return false;
  if (end <= name.size() || text[name.size()] != ' ') return false;
  value = text.substr(name.size() + 1, end - name.size() - 1);
  text.remove_prefix(end + 1);
  return true;
}

bool takeWord(std::string_view& text, std::string_view& word) noexcept {
  const std::size_t end = text.find(' ');
  if (end == std::string_view::npos) return false;
  word = text.substr(0, end);
  text.remove_prefix(end + 1);
  return true;
}

bool parseNumber(std::string_view text, std::uint64_t& number) noexcept {
  if (text.size() > 1 && text.front() == '0') return false;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stopped == end;
}

bool parseSum(std::string_view text, Sha256Sum& sum) noexcept {
  if (text.size() != 2 * sum.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto letter = static_cast<unsigned char>(text[i]);
    const unsigned int digit = hexDigit(letter);
    if (digit > 15 || isUpper(letter)) return false;
    const auto before = static_cast<unsigned int>(sum[i / 2]);
    sum[i / 2] = static_cast<std::uint8_t>(before << 4 | digit);
  }
  return true;
}

std::string hexOf(const Sha256Sum& sum) {
  std::string digits;
  for (const unsigned int byte : sum) {
    for (const unsigned int half : {byte >> 4, byte & 15U})
      digits += static_cast<char>(kLowerHexDigits[half]);
  }
  return digits;
}

void addLine(std::string& text, std::string_view name, std::string_view value) {
  text.append(name).append(1, ' ').append(value).append(1, '\n');
}

}  // namespace zo
