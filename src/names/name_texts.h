// The parts of a file name as texts that end with a zero each, in one block of memory. Names that
// follow each other in one object use the block again.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zo {

class NameTexts {
 public:
  enum Part : std::uint8_t { kDrive, kDirectory, kFileName, kExtension, kMacro, kVolume, kParts };
  using Views = std::array<std::wstring_view, kParts>;

  [[nodiscard]] std::wstring_view operator[](Part part) const noexcept {
    return {units_.data() + places_[part].begin, places_[part].length};
  }
  // Makes room for them. Throws std::bad_alloc, and then nothing has changed.
  void reserve(const Views& texts) { units_.reserve(unitsOf(texts)); }
  // Needs the room, and texts that stand elsewhere.
  void assign(const Views& texts) noexcept {
    const auto end = static_cast<std::uint32_t>(unitsOf(texts));  // a zero as well
    units_.clear();
    for (size_t part = 0; part < texts.size(); ++part) {
      const std::wstring_view text = texts[part];
      const auto begin = text.empty() ? end : static_cast<std::uint32_t>(units_.size());
      places_[part] = {begin, static_cast<std::uint32_t>(text.size())};
      if (!text.empty()) units_.append(text).push_back(L'\0');
    }
  }
  // All characters, for a change that keeps the number of them and the zeros.
  [[nodiscard]] std::wstring& units() noexcept { return units_; }
  [[nodiscard]] const std::wstring& units() const noexcept { return units_; }

 private:
  struct Place {
    std::uint32_t begin = 0, length = 0;
  };
  [[nodiscard]] static size_t unitsOf(const Views& texts) noexcept {
    size_t units = 0;
    for (const std::wstring_view text : texts) units += text.empty() ? 0 : text.size() + 1;
    return units;
  }

  std::wstring units_;
  std::array<Place, kParts> places_;
};

}  // namespace zo
