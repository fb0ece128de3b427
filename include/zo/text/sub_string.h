// A view of a stretch of one ZoString, made by the string; assigning to it edits the string.
//
// The null substring (start npos, length 0) stands for "not there". A view does not keep its string
// alive; after the string was edited by other means it covers whatever now stands in its place, cut
// at the string's end.
//
// Errors:  nothing throws but std::bad_alloc from the assignments.
// Threads: as the viewed string.
#pragma once

#include <zo/config.h>
#include <zo/text/text_forms.h>

#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <string_view>
#include <utility>

class ZoString;

class ZO_COM_API ZoSubString {
 public:
  static constexpr unsigned int npos = 0xFFFFFFFF;

  ZoSubString(const ZoSubString&) noexcept = default;

  // Replace the stretch in the viewed string; afterwards the view covers the new text. Nothing
  // happens on the null substring. The text may lie in the viewed string. A null pointer counts as
  // empty. What else is text and what is not: zo/text/string.h.
  ZoSubString& operator=(const ZoSubString& text);
  ZoSubString& operator=(const ZoString& text);
  ZoSubString& operator=(const wchar_t* text) { return assign(zo::textOf(text)); }
  template <zo::OtherText Text>
  ZoSubString& operator=(const Text& text) {
    return assign(zo::textOf(text));
  }
  template <zo::NotText T>
  ZoSubString& operator=(T) = delete;  // write L'c' for a character, L"" for an empty text

  [[nodiscard]] unsigned int start() const noexcept { return start_; }
  [[nodiscard]] unsigned int length() const noexcept { return length_; }
  [[nodiscard]] bool isEmpty() const noexcept { return length_ == 0; }
  // True for the null substring only.
  [[nodiscard]] bool operator!() const noexcept { return start_ == npos; }
  // The first character, or an empty text for the null substring. NOT terminated at length().
  [[nodiscard]] const wchar_t* data() const noexcept;

  [[nodiscard]] std::wstring_view view() const noexcept;
  operator std::wstring_view() const noexcept { return view(); }
  [[nodiscard]] const wchar_t* begin() const noexcept { return view().data(); }
  [[nodiscard]] const wchar_t* end() const noexcept { return begin() + view().size(); }

  // Out of range: the const forms give 0, the others a scratch character that belongs to nobody.
  template <std::integral Index>
  [[nodiscard]] wchar_t operator[](Index i) const noexcept {
    return charAt(toIndex(i));
  }
  template <std::integral Index>
  [[nodiscard]] wchar_t operator()(Index i) const noexcept {
    return charAt(toIndex(i));
  }
  template <std::integral Index>
  [[nodiscard]] wchar_t& operator[](Index i) {
    return charRef(toIndex(i));
  }
  template <std::integral Index>
  [[nodiscard]] wchar_t& operator()(Index i) {
    return charRef(toIndex(i));
  }

  friend bool operator==(const ZoSubString& a, const ZoSubString& b) noexcept {
    return a.view() == b.view();
  }
  friend bool operator==(const ZoSubString& a, const wchar_t* b) noexcept {
    return a.view() == zo::textOf(b);
  }
  template <zo::OtherText Text>
  friend bool operator==(const ZoSubString& a, const Text& b) noexcept {
    return a.view() == zo::textOf(b);
  }
  template <class T>
    requires zo::NotText<T> || std::same_as<T, std::nullptr_t>
  friend bool operator==(const ZoSubString&, T) = delete;  // write isEmpty(), or L'c'
  friend ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoSubString& text);

 protected:
  // True for an index that is npos or not below length().
  [[nodiscard]] bool assertElement(unsigned int i) const noexcept { return i >= length_; }
  // Called for a request of n characters from start in a text of len characters that lies outside
  // it; writes a line for a debugger. The request then gives the null substring.
  static void subStringError(unsigned int len, unsigned int start, unsigned int n) noexcept;

 private:
  friend class ZoString;
  ZoSubString(const ZoString& string, unsigned int start, unsigned int length) noexcept
      : string_(const_cast<ZoString*>(&string)), start_(start), length_(length) {}

  // Any integer as an index; what does not fit is npos.
  template <std::integral Index>
  static constexpr unsigned int toIndex(Index i) noexcept {
    return std::in_range<unsigned int>(i) ? static_cast<unsigned int>(i) : npos;
  }
  [[nodiscard]] wchar_t charAt(unsigned int i) const noexcept;
  [[nodiscard]] wchar_t& charRef(unsigned int i);
  ZoSubString& assign(std::wstring_view text);

  ZoString* string_;
  unsigned int start_;
  unsigned int length_;
};

static_assert(sizeof(ZoSubString) == 16);
