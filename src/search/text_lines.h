// Small files of lines "name value", as nobody but this library writes them: what differs from that
// in anything is refused.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/sha256.h"

namespace zo {

// Takes the line "name value" with its end off the text; false leaves both alone.
[[nodiscard]] bool takeLine(std::string_view& text, std::string_view name,
                            std::string_view& value) noexcept;
// Takes a word and the blank behind it off the text.
[[nodiscard]] bool takeWord(std::string_view& text, std::string_view& word) noexcept;

// The whole text as what it is to be, in the one way in which it is written.
[[nodiscard]] bool parseNumber(std::string_view text, std::uint64_t& number) noexcept;
[[nodiscard]] bool parseSum(std::string_view text, Sha256Sum& sum) noexcept;
[[nodiscard]] std::string hexOf(const Sha256Sum& sum);

void addLine(std::string& text, std::string_view name, std::string_view value);

}  // namespace zo
