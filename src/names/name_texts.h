// The parts of a file name as texts that end with a zero each, in one block of memory.
//
// Copies share the block, so that texts stay where they are for who holds one of the names; a block
// that nobody shares takes the parts of the next name.
//
// Threads: one at a time for those that share a block, as with strings.
#pragma once

#include <zo/text/string_ref.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace zo {

class NameTexts {
 public:
  enum Part : std::uint8_t { kDrive, kDirectory, kFileName, kExtension, kMacro, kVolume, kParts };
  using Views = std::array<std::wstring_view, kParts>;

  NameTexts() noexcept : block_(ZoStringRef::emptyRep()) { block_->addReference(); }
  // Of less than 2^31 characters in all; throws std::bad_alloc.
  explicit NameTexts(const Views& texts)
      : block_(ZoStringRef::getRep(std::max(unitsOf(texts), kLeastRoom), 0)) {
    put(texts);
  }
  NameTexts(const NameTexts& other) noexcept : block_(other.block_), places_(other.places_) {
    block_->addReference();
  }
  NameTexts(NameTexts&& other) noexcept : NameTexts() { swap(other); }
  NameTexts& operator=(NameTexts other) noexcept {
    swap(other);
    return *this;
  }
  ~NameTexts() { block_->release(); }

  [[nodiscard]] std::wstring_view operator[](Part part) const noexcept {
    return all().substr(places_[part].begin, places_[part].length);
  }
  // With their zeros.
  [[nodiscard]] std::wstring_view all() const noexcept {
    return {block_->data(), block_->length()};
  }
  // Whether nobody shares the block and it has room for them.
  [[nodiscard]] bool canTake(const Views& texts) const noexcept {
    return !block_->isShared() && unitsOf(texts) <= block_->capacity();
  }
  // Needs texts that it can take, and that stand elsewhere.
  void take(const Views& texts) noexcept { put(texts); }
  // The same parts of other characters, as many as all() has, in a block of their own.
  [[nodiscard]] NameTexts withAll(std::wstring_view characters) const {
    const auto count = static_cast<unsigned int>(characters.size());
    const NameTexts result(ZoStringRef::getRep(count, count), places_);
    std::ranges::copy(characters, result.block_->data());
    return result;
  }

 private:
  struct Place {
    unsigned int begin = 0, length = 0;
  };
  using Places = std::array<Place, kParts>;
  static constexpr unsigned int kLeastRoom = 31;  // characters; for most names

  NameTexts(ZoStringRef* owned, const Places& places) noexcept : block_(owned), places_(places) {}

  [[nodiscard]] static unsigned int unitsOf(const Views& texts) noexcept {
    std::size_t units = 0;
    for (const std::wstring_view text : texts) units += text.empty() ? 0 : text.size() + 1;
    return static_cast<unsigned int>(units);
  }
  void put(const Views& texts) noexcept {
    const unsigned int end = unitsOf(texts);  // a zero as well
    unsigned int begin = 0;
    for (std::size_t part = 0; part < texts.size(); ++part) {
      const std::wstring_view text = texts[part];
      const auto length = static_cast<unsigned int>(text.size());
      places_[part] = {text.empty() ? end : begin, length};
      if (text.empty()) continue;
      std::ranges::copy(text, block_->data() + begin);
      begin += length;
      block_->data()[begin++] = 0;
    }
    block_->setLength(end);
  }
  void swap(NameTexts& other) noexcept {
    std::swap(block_, other.block_);
    std::swap(places_, other.places_);
  }

  ZoStringRef* block_;
  Places places_;
};

}  // namespace zo
