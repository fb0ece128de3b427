// How a locale's collation ignoring case orders plain texts, learnt from the platform itself, so
// that two such texts are compared without asking it again.
//
// A character of ASCII is plain when its sort key is one weight and nothing else, whatever stands
// beside it: letters, digits, the blank and most signs are. Hyphen and apostrophe never are (the
// collation passes over them at first). Locales have letter pairs that sort as one letter (Czech
// "ch", Danish "aa", Hungarian "cs"), and letters that differ from another only after all others
// have been compared (Estonian "w"): a text with one of these is not plain there, nor is one with
// anything that is not ASCII. Texts that are plain compare by their weights, one after the other.
//
// Learning asks the platform for some thousand sort keys, once for each locale that the user takes
// while the process runs, at most kLocales of them: for more, the platform is always asked. It
// takes no memory but that of the program.
//
// Threads: any number. What has been learnt is never changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zo {

// As the platform counts locales, without its header.
using LocaleId = unsigned long;

class PlainOrder {
 public:
  static constexpr int kUnknown = 2;
  static constexpr std::size_t kLocales = 12;
  static constexpr std::size_t kWeightBytes = 2;
  static constexpr unsigned kFrontBits = 28;
  static constexpr std::size_t kTailBytes = 5;  // what ends the sort key of a plain text

  // That of the user's locale now, or of a given one. Null when it has not been learnt: the first
  // few thousand times that somebody asks, which are not worth it, and where it cannot be.
  [[nodiscard]] static const PlainOrder* ofUser() noexcept;
  [[nodiscard]] static const PlainOrder* of(LocaleId locale) noexcept;
  // Learns it at once if it can be.
  [[nodiscard]] static const PlainOrder* learntOfUser() noexcept;
  [[nodiscard]] static const PlainOrder* learnt(LocaleId locale) noexcept;

  // -1, 0 or 1, or kUnknown when a text is not plain.
  [[nodiscard]] int compare(std::wstring_view a, std::wstring_view b) const noexcept;
  [[nodiscard]] bool isPlain(std::wstring_view text) const noexcept;
  // The platform's sort key of a plain text: size() * kWeightBytes + kTailBytes bytes.
  void writeKey(std::wstring_view plain, unsigned char* key) const noexcept;
  // The first letters of a text as a number of kFrontBits bits that orders as they do; 0 when it is
  // empty or not plain.
  [[nodiscard]] std::uint32_t frontOf(std::wstring_view text) const noexcept;
  // Of the locale among those learnt, from 1 to kLocales.
  [[nodiscard]] unsigned number() const noexcept { return number_; }
  [[nodiscard]] LocaleId locale() const noexcept { return locale_; }
  // Whether texts of printable ASCII are equal exactly when they are the same after folding a to z:
  // not where "ch" is a letter and "cH" is two.
  [[nodiscard]] bool foldsByLetter() const noexcept { return foldsByLetter_; }

 private:
  friend class PlainOrderLearner;

  static constexpr std::size_t kCharacters = 128;
  // Traits of a character. A text is not plain when one of its characters has kOdd, or one with
  // kBegins stands before one with kEnds.
  static constexpr std::uint8_t kEnds = 1;
  static constexpr std::uint8_t kBegins = 2;
  static constexpr std::uint8_t kOdd = 4;

  LocaleId locale_ = 0;
  bool foldsByLetter_ = false;
  bool isRegular_ =
      false;  // of printable ASCII, all but hyphen and apostrophe are plain everywhere
  std::uint16_t weights_[kCharacters] = {};
  std::uint8_t traits_[kCharacters] = {};
  std::uint8_t ranks_[kCharacters] = {};  // that of the weight among all, from 1
  std::uint8_t number_ = 0;
  unsigned char tail_[kTailBytes] = {};
};

}  // namespace zo
