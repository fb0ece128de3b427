// The short texts that were read last. The dictionaries of one tree mostly have the same few keys,
// and often the same names and norms under them: equal ones share their text, which saves a block
// each.
#pragma once

#include <zo/text/string.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zo {

class SharedTexts {
 public:
  // A string of this text.
  ZoString get(std::wstring_view text) {
    if (text.size() > kLongest) return ZoString(text);
    ZoString& kept = kept_[slotOf(text)];
    if (kept.view() != text) kept = ZoString(text);
    return kept;
  }

 private:
  static constexpr std::size_t kSlots = 512;
  static constexpr std::size_t kLongest = 64;

  static std::size_t slotOf(std::wstring_view text) noexcept {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    std::uint64_t hash = text.size();
    while (!text.empty()) {
      std::uint64_t units = 0;
      const std::size_t count = text.size() < 4 ? text.size() : 4;
      std::memcpy(&units, text.data(), count * sizeof(wchar_t));
      hash = (hash ^ units) * kFactor;
      hash ^= hash >> 32;
      text.remove_prefix(count);
    }
    return hash % kSlots;
  }

  ZoString kept_[kSlots];
};

}  // namespace zo
