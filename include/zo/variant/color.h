// Colours: a colour of the drawing's indexed palette, or a true colour by red, green and blue.
//
// The value is one word. Bits 24 to 31 are the type: kTrueColor, or the number of a palette colour.
// Bits 0 to 23 are red (lowest), green and blue of a true colour, else 0; only the constructor and
// setter from a word can make other values, on purpose. Colours order by their words: palette
// colours by number, true colours by blue, then green, then red.
//
// Errors:  nothing throws, but toString std::bad_alloc.
// Threads: a plain value.
// Stored:  the word.
#pragma once

#include <zo/config.h>
#include <zo/results.h>
#include <zo/text/not_negative.h>
#include <zo/text/string.h>

#include <compare>
#include <cstddef>
#include <iosfwd>
#include <string_view>
#include <type_traits>

class ZoColor {
 public:
  // The palette's colours with a name, by what the drawing shows. They reach archives: never
  // renumber.
  enum Type : unsigned char {
    kNone = 0,
    kRed = 1,
    kYellow = 2,
    kGreen = 3,
    kCyan = 4,
    kBlue = 5,
    kMagenta = 6,
    kForeground = 7,  // black or white, whichever the background is not
    kGray = 8,
    kLightGray = 9,
    kTrueColor = 102,
    kDarkGray = 251,
    kWhite = 255
  };

  // The palette colour `t`. kTrueColor, which is no palette colour, makes the default one.
  constexpr ZoColor(Type t = kForeground) noexcept { *this = t; }
  // The true colour.
  constexpr ZoColor(unsigned char r, unsigned char g, unsigned char b) noexcept { setRgb(r, g, b); }
  // As setRgb(v): red in the low byte. A plain number is no palette colour; Type(number) is.
  constexpr explicit ZoColor(unsigned int v) noexcept { setRgb(v); }
  template <class T>
    requires(std::is_arithmetic_v<T> && !zo::PlainInteger<T>)
  explicit ZoColor(T) = delete;  // a word, or red, green, blue

  // As setType; kTrueColor leaves the colour as it was.
  constexpr ZoColor& operator=(Type t) noexcept {
    (void)setType(t);
    return *this;
  }
  // Makes it the palette colour `t`. Returns 0, or 1 for kTrueColor; the colour then stays.
  [[nodiscard]] constexpr int setType(Type t) noexcept {
    if (t == kTrueColor) return ZoResult::refused;
    value_ = static_cast<unsigned int>(t) << 24;
    return ZoResult::ok;
  }
  [[nodiscard]] constexpr Type type() const noexcept { return static_cast<Type>(value_ >> 24); }

  // Makes it a true colour. Returns 0.
  constexpr int setRgb(unsigned char r, unsigned char g, unsigned char b) noexcept {
    value_ =
        trueColorBits | static_cast<unsigned int>(b) << 16 | static_cast<unsigned int>(g) << 8 | r;
    return ZoResult::ok;
  }
  // The word `v` with the bits of kTrueColor added by bitwise or. On purpose: a `v` whose top byte
  // is not 0 therefore gives another type. Returns 0.
  constexpr int setRgb(unsigned int v) noexcept {
    value_ = v | trueColorBits;
    return ZoResult::ok;
  }
  // What the colour looks like, red in the low byte. Of the palette only the colours with a name
  // have a value, kForeground none; the others give 0. kRed gives the same as kBlue, 0xFF0000, on
  // purpose: programs rely on the table as it stands.
  [[nodiscard]] constexpr unsigned int rgb() const noexcept;
  // rgb() by its parts. Returns 0.
  constexpr int getRgb(unsigned char& r, unsigned char& g, unsigned char& b) const noexcept {
    const unsigned int word = rgb();
    r = static_cast<unsigned char>(word & 0xFF);
    g = static_cast<unsigned char>(word >> 8 & 0xFF);
    b = static_cast<unsigned char>(word >> 16 & 0xFF);
    return ZoResult::ok;
  }

  [[nodiscard]] constexpr unsigned int value() const noexcept { return value_; }
  [[nodiscard]] constexpr unsigned int& value() noexcept { return value_; }

  // Takes a text form, in either case: "#RRGGBB"; a palette colour's name ("none", "red", "yellow",
  // "green", "cyan", "blue", "magenta", "foreground", "gray", "lightgray", "darkgray", "white";
  // "grey" is "gray") or number ("0" to "255", not "102"); "0xHHHHHHHH" for the whole word. Returns
  // 0, or 1 for any other text; the colour then stays.
  [[nodiscard]] ZO_COM_API int fromString(std::wstring_view text) noexcept;

  // The form that fromString takes back: "#RRGGBB" for a true colour, a palette colour's first name
  // or else its number, and "0xHHHHHHHH" for a word that is none of them.
  [[nodiscard]] ZO_COM_API ZoString toString() const;

  [[nodiscard]] friend constexpr auto operator<=>(const ZoColor&,
                                                  const ZoColor&) noexcept = default;

 private:
  static constexpr unsigned int trueColorBits = static_cast<unsigned int>(kTrueColor) << 24;

  unsigned int value_ = static_cast<unsigned int>(kForeground) << 24;
};

static_assert(sizeof(ZoColor) == 4);

// The text of toString, padded to the stream's width.
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoColor& color);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoColor& color);

template <>
struct std::hash<ZoColor> {
  [[nodiscard]] std::size_t operator()(const ZoColor& color) const noexcept {
    return std::hash<unsigned int>()(color.value());
  }
};

constexpr unsigned int ZoColor::rgb() const noexcept {
  switch (type()) {
    case kTrueColor:
      return value_ & 0xFFFFFF;
    case kRed:
    case kBlue:
      return 0xFF0000;
    case kYellow:
      return 0x00FFFF;
    case kGreen:
      return 0x00FF00;
    case kCyan:
      return 0xFFFF00;
    case kMagenta:
      return 0xFF00FF;
    case kGray:
      return 0x7F7F7F;
    case kLightGray:
      return 0xBFBFBF;
    case kDarkGray:
      return 0x3F3F3F;
    case kWhite:
      return 0xFFFFFF;
    default:
      return 0;
  }
}
