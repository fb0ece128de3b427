// The short texts that were read last. The dictionaries of one tree mostly have the same few keys,
// and often the same names and norms under them: equal ones share their text, which saves a block
// each.
#pragma once

#include <zo/text/string.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "text/eight_units.h"

namespace zo {

class SharedTexts {
 public:
  // A string of this text.
  ZoString get(const wchar_t* text, std::size_t length) {
    if (length > kLongest) return ZoString(std::wstring_view(text, length));
    const std::uint64_t hash = hashOf(text, length);
    Kept* const home = kept_ + (hash >> (64 - kSlotBits));
    Kept* place = home;
    for (; place != home + kPlaces && !place->text.isEmpty(); ++place) {
      if (place->hash == hash && place->isText(text, length)) return place->text;
    }
    if (place == home + kPlaces) place = home;
    place->hash = hash;
    return place->text = ZoString(std::wstring_view(text, length));
  }

 private:
  struct Kept {
    [[nodiscard]] bool isText(const wchar_t* other, std::size_t length) const noexcept {
      return text.length() == length && equalUnits(text.data(), other, length);
    }
    std::uint64_t hash = 0;
    ZoString text;
  };

  static std::uint64_t hashOf(const wchar_t* text, std::size_t length) noexcept {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    constexpr std::size_t kStep = sizeof(std::uint64_t) / sizeof(wchar_t);
    std::uint64_t hash = length;
    const auto add = [&hash](std::uint64_t units) { hash = (hash ^ units) * kFactor; };
    const auto addStep = [&](const wchar_t* at) {
      std::uint64_t units;
      std::memcpy(&units, at, sizeof units);
      add(units);
    };
    if (length < kStep) {
      for (std::size_t i = 0; i < length; ++i) add(text[i]);
      return hash;
    }
    const wchar_t* const last = text + length - kStep;
    for (; text < last; text += kStep) addStep(text);
    addStep(last);  // which may overlap the one before
    return hash;
  }

  static constexpr unsigned int kSlotBits = 9;
  static constexpr std::size_t kPlaces = 4;  // where a text may lie, from its slot on
  static constexpr std::size_t kLongest = 64;

  Kept kept_[(1U << kSlotBits) + kPlaces - 1];
};

}  // namespace zo
