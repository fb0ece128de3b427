// The library's text type: UTF-16 code units in shared, reference-counted storage that is copied
// when written to.
//
// Positions and lengths are unsigned 32-bit counts of code units; npos stands for "no position".
// Position arithmetic never wraps: a position past the end counts as the end where text is edited
// and as "absent" where it is searched. Texts may hold zero characters wherever a length is given.
// Null pointers count as empty texts; a literal 0 is no pointer here but a number.
//
// Text is taken as a ZoString, a ZoSubString, a pointer to a zero-terminated text, one character,
// or a text of another library as it stands: std::wstring, std::wstring_view,
// std::filesystem::path. Numbers, truth values and narrow characters are never text: what C++ would
// make a character or a null pointer of does not compile.
//
// Limits:  a text has at most maxLength() characters. An edit that would pass the limit is refused:
//          the string stays as it was (a constructor gives an empty string).
// Errors:  nothing throws but std::bad_alloc, and then the string is as it was.
// Threads: the counter is not atomic: one thread at a time per string, and per group of strings
//          that share storage. Give another thread a copy() and hand it over under a lock. Empty
//          strings may be used everywhere.
// Cost:    copying is O(1); an edit of a shared string copies the text. Capacity grows in steps of
//          resizeIncrement(), so that building a long text piece by piece is quadratic: collect
//          long texts in a std::wstring or a stream.
// Case:    three foldings are in use, and results depend on them: the runtime's lower case for
//          searching, the platform's collation for ordering, upper case for hashing.
#pragma once

#include <zo/config.h>
#include <zo/text/string_ref.h>
#include <zo/text/sub_string.h>
#include <zo/text/text_forms.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <string_view>
#include <type_traits>
#include <utility>

template <class T>
class ZoSequence;
class ZoRegExp;

class ZO_COM_API ZoString {
 public:
  enum caseCompare : int { exact = 0, ignoreCase = 1 };
  enum stripType : int { leading = 1, trailing = 2, both = 3 };
  static constexpr unsigned int npos = 0xFFFFFFFF;

  ZoString() noexcept : ZoString(addedReference(ZoStringRef::emptyRep())) {}
  ZoString(const ZoString& other) noexcept : ZoString(addedReference(other.pref())) {}
  ZoString(ZoString&& other) noexcept
      : data_(std::exchange(other.data_, addedReference(ZoStringRef::emptyRep())->data())) {}
  // From a pointer, nullptr included; explicitly also from what converts to one. A template, so
  // that a literal 0 does not come in as a pointer.
  template <class Pointer>
    requires std::is_convertible_v<Pointer, const wchar_t*>
  // NOLINTNEXTLINE(performance-unnecessary-value-param): by value, literals come in as pointers
  explicit(!std::is_scalar_v<Pointer>) ZoString(Pointer text)
      : ZoString(blockOf(static_cast<const wchar_t*>(text))) {}
  ZoString(const wchar_t* text, unsigned int length);
  ZoString(const ZoSubString& text);
  // From std::wstring, std::wstring_view, std::filesystem::path. Explicit, since it copies.
  template <class Text>
    requires zo::WholeText<Text> || zo::WidePath<Text>
  explicit ZoString(const Text& text) : ZoString(blockOf(zo::textOf(text))) {}
  explicit ZoString(wchar_t c) { initChar(c); }
  template <zo::NotText T>
  explicit ZoString(T) = delete;  // write L'c', ZoIntToStr(), ZoRealToStr(), fromUtf8()
  ~ZoString() { pref()->release(); }

  ZoString& operator=(const ZoString& other) noexcept;
  ZoString& operator=(ZoString&& other) noexcept {
    ZoString(std::move(other)).swap(*this);
    return *this;
  }
  ZoString& operator=(const ZoSubString& text);
  ZoString& operator=(const wchar_t* text);
  template <zo::OtherText Text>
  ZoString& operator=(const Text& text) {
    return replace(0, npos, zo::textOf(text));
  }
  template <zo::NotText T>
  ZoString& operator=(T) = delete;  // write L'c' for a character, L"" for an empty text
  void swap(ZoString& other) noexcept { std::swap(data_, other.data_); }

  // A string with storage of its own, of a capacity of exactly length(): what another thread may be
  // given.
  [[nodiscard]] ZoString copy() const;

  // ---- Access ----
  [[nodiscard]] unsigned int length() const noexcept { return pref()->length(); }
  [[nodiscard]] bool isEmpty() const noexcept { return length() == 0; }
  [[nodiscard]] unsigned int capacity() const noexcept { return pref()->capacity(); }
  // Moves the text into storage for exactly n characters, larger or smaller, when n is greater than
  // the length and not the capacity already. Returns the resulting capacity.
  unsigned int capacity(unsigned int n);
  [[nodiscard]] static constexpr unsigned int maxLength() noexcept { return 0x7FFFFFFE; }

  // The characters, followed by a zero. Valid until the string is changed or destroyed.
  [[nodiscard]] const wchar_t* data() const noexcept { return data_; }
  // The conversion to const wchar_t*. A template, so that it gives this type and nothing that C++
  // makes of a pointer: no pointer arithmetic, no truth value, no address to delete or to print.
  template <std::same_as<const wchar_t*> Pointer>
  operator Pointer() const noexcept {
    return data_;
  }
  explicit operator bool() const = delete;  // write isEmpty()
  [[nodiscard]] std::wstring_view view() const noexcept { return {data_, length()}; }
  // Where both this and the pointer conversion fit (std::wstring_view v(s)), say s.view().
  operator std::wstring_view() const noexcept { return view(); }
  // The text in another library's type: to<std::wstring>(), to<std::filesystem::path>().
  template <std::constructible_from<std::wstring_view> Text>
  [[nodiscard]] Text to() const {
    return Text(view());
  }
  [[nodiscard]] const wchar_t* begin() const noexcept { return data_; }
  [[nodiscard]] const wchar_t* end() const noexcept { return data_ + length(); }

  // Out of range, the const forms give 0 and the others a scratch character (one per thread) that
  // belongs to no string: reading it gives what was last written to it. The non-const forms make
  // the storage unshared.
  template <std::integral Index>
  [[nodiscard]] wchar_t operator[](Index i) const noexcept {
    return charAt(toIndex(i));
  }
  template <std::integral Index>
  [[nodiscard]] wchar_t& operator[](Index i) {
    return charRef(toIndex(i));
  }
  template <std::integral Index>
  [[nodiscard]] wchar_t operator()(Index i) const noexcept {
    return charAt(toIndex(i));
  }
  template <std::integral Index>
  [[nodiscard]] wchar_t& operator()(Index i) {
    return charRef(toIndex(i));
  }

  [[nodiscard]] bool isAscii() const noexcept;
  // Bytes of the text in the encoding of the runtime library's current locale, without a
  // terminator; a character that it cannot hold counts one. (getMBString uses the ANSI code page
  // instead and measures for itself.)
  [[nodiscard]] unsigned int mbLength() const noexcept;
  [[nodiscard]] unsigned int first(wchar_t c) const noexcept { return pref()->first(c); }
  [[nodiscard]] unsigned int first(const wchar_t* set) const noexcept { return pref()->first(set); }
  [[nodiscard]] unsigned int last(wchar_t c) const noexcept { return pref()->last(c); }
  template <zo::NotText T>
  void first(T) const = delete;  // write L'c'
  template <zo::NotText T>
  void last(T) const = delete;  // write L'c'

  // ---- Editing ----
  // All edits return the string itself; the text given may lie in this very string. A count with a
  // ZoString takes its first characters, at most all of them.
  ZoString& append(const ZoString& text) { return append(text.data(), text.length()); }
  ZoString& append(const ZoString& text, unsigned int count) {
    return append(text.data(), atMost(count, text.length()));
  }
  ZoString& append(const ZoSubString& text) { return insert(npos, text); }
  ZoString& append(const wchar_t* text) { return insert(npos, text); }
  ZoString& append(const wchar_t* text, unsigned int count) {
    return replace(npos, 0, text, count);
  }
  template <zo::OtherText Text>
  ZoString& append(const Text& text) {
    return replace(npos, 0, zo::textOf(text));
  }
  ZoString& append(wchar_t c, unsigned int count = 1) { return insertChars(npos, c, count); }
  template <zo::NotText T>
  ZoString& append(T, unsigned int = 1) = delete;  // write L'c', then the count; or ZoIntToStr()

  ZoString& prepend(const ZoString& text) { return insert(0, text); }
  ZoString& prepend(const ZoString& text, unsigned int count) { return insert(0, text, count); }
  ZoString& prepend(const ZoSubString& text) { return insert(0, text); }
  ZoString& prepend(const wchar_t* text) { return insert(0, text); }
  ZoString& prepend(const wchar_t* text, unsigned int count) { return replace(0, 0, text, count); }
  template <zo::OtherText Text>
  ZoString& prepend(const Text& text) {
    return replace(0, 0, zo::textOf(text));
  }
  ZoString& prepend(wchar_t c, unsigned int count = 1) { return insertChars(0, c, count); }
  template <zo::NotText T>
  ZoString& prepend(T, unsigned int = 1) = delete;  // write L'c', then the count; or ZoIntToStr()

  ZoString& insert(unsigned int pos, const ZoString& text) { return replace(pos, 0, text); }
  ZoString& insert(unsigned int pos, const ZoString& text, unsigned int count) {
    return replace(pos, 0, text, count);
  }
  ZoString& insert(unsigned int pos, const ZoSubString& text) { return replace(pos, 0, text); }
  ZoString& insert(unsigned int pos, const wchar_t* text) { return replace(pos, 0, text); }
  ZoString& insert(unsigned int pos, const wchar_t* text, unsigned int count) {
    return replace(pos, 0, text, count);
  }
  template <zo::OtherText Text>
  ZoString& insert(unsigned int pos, const Text& text) {
    return replace(pos, 0, zo::textOf(text));
  }
  ZoString& insert(unsigned int pos, wchar_t c, unsigned int count = 1) {
    return insertChars(pos, c, count);
  }
  template <zo::NotText T>
  ZoString& insert(unsigned int, T, unsigned int = 1) = delete;  // write L'c', then the count

  ZoString& replace(unsigned int pos, unsigned int n, const ZoString& text) {
    return replace(pos, n, text.data(), text.length());
  }
  ZoString& replace(unsigned int pos, unsigned int n, const ZoString& text, unsigned int count) {
    return replace(pos, n, text.data(), atMost(count, text.length()));
  }
  ZoString& replace(unsigned int pos, unsigned int n, const ZoSubString& text) {
    return replace(pos, n, text.view());
  }
  ZoString& replace(unsigned int pos, unsigned int n, const wchar_t* text);
  template <zo::OtherText Text>
  ZoString& replace(unsigned int pos, unsigned int n, const Text& text) {
    const std::wstring_view view = zo::textOf(text);
    return replace(pos, n, view.data(), lengthOf(view));
  }
  template <zo::NotText T>
  ZoString& replace(unsigned int, unsigned int, T, unsigned int = 0) = delete;  // remove(), L'c'
  // The edit that all others come down to: puts textLength characters of text in the place of n
  // characters at pos. Works in place when the storage is unshared and large enough, at most
  // maxWaste() characters stay spare, and text does not lie in this string; otherwise takes new
  // storage of adjustCapacity(the new length), which may be smaller.
  ZoString& replace(unsigned int pos, unsigned int n, const wchar_t* text, unsigned int textLength);

  ZoString& operator+=(const ZoString& text) { return append(text); }
  ZoString& operator+=(const ZoSubString& text) { return append(text); }
  ZoString& operator+=(const wchar_t* text) { return append(text); }
  template <zo::OtherText Text>
  ZoString& operator+=(const Text& text) {
    return append(text);
  }
  template <zo::NotText T>
  ZoString& operator+=(T) = delete;  // write L'c', ZoIntToStr(), ZoRealToStr()

  // Puts by in the place of every occurrence of what, from the front; they do not overlap. An empty
  // what occurs nowhere. Finds as index() does. Linear.
  template <zo::AnyText What, zo::AnyText By>
  ZoString& replaceAll(const What& what, const By& by, caseCompare cmp = exact) {
    return replaceEach(zo::textOf(what), zo::textOf(by), cmp);
  }

  ZoString& remove(unsigned int pos) { return remove(pos, npos); }
  template <std::same_as<wchar_t> C>
  ZoString& remove(C) = delete;  // takes a position; replaceAll(L'c', L"") removes a character
  ZoString& remove(unsigned int pos, unsigned int n) { return replace(pos, n, nullptr, 0); }
  // Grows with blanks or cuts.
  ZoString& resize(unsigned int n);
  // By the runtime library's current locale; in the C locale only a to z change.
  ZoString& toLower();
  ZoString& toUpper();
  // Removes every character that occurs in set from the ends that type names. A null set strips
  // nothing.
  ZoString& strip(stripType type = both) { return strip(type, L' '); }
  template <zo::AnyText Set>
  ZoString& strip(stripType type, const Set& set) {
    return stripAnyOf(type, zo::textOf(set));
  }

  // ---- Searching ----
  // The first position at or after start where pattern stands, or npos. An empty pattern stands at
  // every position up to length(). ignoreCase compares after the runtime's lower case, with a to z
  // decided here.
  [[nodiscard]] unsigned int index(const ZoString& pattern, unsigned int start = 0,
                                   caseCompare cmp = exact) const noexcept {
    return index(pattern.data(), pattern.length(), start, cmp);
  }
  [[nodiscard]] unsigned int index(const wchar_t* pattern, unsigned int start = 0,
                                   caseCompare cmp = exact) const noexcept;
  [[nodiscard]] unsigned int index(const wchar_t* pattern, unsigned int patlen, unsigned int start,
                                   caseCompare cmp) const noexcept;
  template <zo::OtherText Text>
  [[nodiscard]] unsigned int index(const Text& pattern, unsigned int start = 0,
                                   caseCompare cmp = exact) const noexcept {
    const std::wstring_view wanted = zo::textOf(pattern);
    return index(wanted.data(), lengthOf(wanted), start, cmp);
  }
  template <zo::AnyText Text>
  [[nodiscard]] unsigned int index(const Text& pattern, caseCompare cmp) const noexcept {
    return index(pattern, 0u, cmp);
  }
  template <zo::NotText T>
  void index(T, unsigned int = 0, caseCompare = exact) const = delete;  // write L'c'
  template <class T, std::same_as<bool> Flag>
  void index(const T&, Flag) const = delete;  // write exact or ignoreCase
  // Where an expression (zo/parse/reg_exp.h) first matches at or after start, or npos; the length
  // of the match, 0 if there is none, for who wants it. What stands before start is seen by
  // look-behind. A search that gave up says npos: ZoSearch (zo/parse/search.h) tells one from the
  // other, and the groups.
  [[nodiscard]] unsigned int index(const ZoRegExp& what) const noexcept {
    return index(what, nullptr, 0u);
  }
  template <std::integral Start>
    requires(!std::same_as<Start, bool>)
  [[nodiscard]] unsigned int index(const ZoRegExp& what, Start start) const noexcept {
    return index(what, nullptr, toIndex(start));
  }
  [[nodiscard]] unsigned int index(const ZoRegExp& what, unsigned int* matchLength,
                                   unsigned int start = 0) const noexcept;
  void index(const ZoRegExp&, caseCompare) const = delete;  // options of the expression
  // The last position at or after start where pattern stands: the same range, searched from its
  // end.
  [[nodiscard]] unsigned int indexBack(const ZoString& pattern, unsigned int start = 0,
                                       caseCompare cmp = exact) const noexcept {
    return indexBack(pattern.data(), pattern.length(), start, cmp);
  }
  [[nodiscard]] unsigned int indexBack(const wchar_t* pattern, unsigned int start = 0,
                                       caseCompare cmp = exact) const noexcept;
  [[nodiscard]] unsigned int indexBack(const wchar_t* pattern, unsigned int patlen,
                                       unsigned int start, caseCompare cmp) const noexcept;
  template <zo::OtherText Text>
  [[nodiscard]] unsigned int indexBack(const Text& pattern, unsigned int start = 0,
                                       caseCompare cmp = exact) const noexcept {
    const std::wstring_view wanted = zo::textOf(pattern);
    return indexBack(wanted.data(), lengthOf(wanted), start, cmp);
  }
  template <zo::AnyText Text>
  [[nodiscard]] unsigned int indexBack(const Text& pattern, caseCompare cmp) const noexcept {
    return indexBack(pattern, 0u, cmp);
  }
  template <zo::NotText T>
  void indexBack(T, unsigned int = 0, caseCompare = exact) const = delete;  // write L'c'
  template <class T, std::same_as<bool> Flag>
  void indexBack(const T&, Flag) const = delete;  // write exact or ignoreCase
  template <zo::AnyText Text>
  [[nodiscard]] bool contains(const Text& pattern, caseCompare cmp = exact) const noexcept {
    return index(zo::textOf(pattern), 0, cmp) != npos;
  }
  template <std::same_as<bool> T>
  ZoSubString operator()(const ZoRegExp&, T) const = delete;  // write a position
  template <zo::NotText T>
  void contains(T, caseCompare = exact) const = delete;  // write L'c'
  // Whether an expression matches somewhere, and whether it matches the whole text.
  [[nodiscard]] bool contains(const ZoRegExp& what) const noexcept { return index(what) != npos; }
  void contains(const ZoRegExp&, caseCompare) const = delete;  // options of the expression
  [[nodiscard]] bool matches(const ZoRegExp& what) const noexcept;
  // Whether the text begins or ends with another, compared as index() does. An empty one stands at
  // both ends.
  template <zo::AnyText Text>
  [[nodiscard]] bool startsWith(const Text& text, caseCompare cmp = exact) const noexcept {
    const std::wstring_view wanted = zo::textOf(text);
    return standsAt(0, wanted, cmp);
  }
  template <zo::AnyText Text>
  [[nodiscard]] bool endsWith(const Text& text, caseCompare cmp = exact) const noexcept {
    const std::wstring_view wanted = zo::textOf(text);
    return wanted.size() <= length() && standsAt(length() - wanted.size(), wanted, cmp);
  }

  // ---- Substrings: views of this string (zo/text/sub_string.h) ----
  // Those of a const string are const: keep them so. A start past the end gives the null substring;
  // a length past the end is cut.
  [[nodiscard]] ZoSubString operator()(unsigned int start, unsigned int len) {
    return part(start, len);
  }
  [[nodiscard]] const ZoSubString operator()(unsigned int start, unsigned int len) const {
    return part(start, len);
  }
  [[nodiscard]] ZoSubString mid(unsigned int start, unsigned int len = npos) {
    return part(start, len);
  }
  [[nodiscard]] const ZoSubString mid(unsigned int start, unsigned int len = npos) const {
    return part(start, len);
  }
  [[nodiscard]] ZoSubString left(unsigned int n) { return part(0, n); }
  [[nodiscard]] const ZoSubString left(unsigned int n) const { return part(0, n); }
  [[nodiscard]] ZoSubString right(unsigned int n) { return rightPart(n); }
  [[nodiscard]] const ZoSubString right(unsigned int n) const { return rightPart(n); }
  // A negative length means up to the end.
  [[nodiscard]] ZoSubString substr(unsigned int start, int len = -1) {
    return part(start, static_cast<unsigned int>(len < 0 ? -1 : len));
  }
  [[nodiscard]] const ZoSubString substr(unsigned int start, int len = -1) const {
    return part(start, static_cast<unsigned int>(len < 0 ? -1 : len));
  }
  // What strip() would leave; the null substring when that is nothing.
  [[nodiscard]] ZoSubString stripped(stripType type = both) { return strippedPart(type, L" "); }
  [[nodiscard]] const ZoSubString stripped(stripType type = both) const {
    return strippedPart(type, L" ");
  }
  template <zo::AnyText Set>
  [[nodiscard]] ZoSubString stripped(stripType type, const Set& set) {
    return strippedPart(type, zo::textOf(set));
  }
  template <zo::AnyText Set>
  [[nodiscard]] const ZoSubString stripped(stripType type, const Set& set) const {
    return strippedPart(type, zo::textOf(set));
  }
  // The first occurrence of pattern, or the null substring.
  template <zo::AnyText Text>
  [[nodiscard]] ZoSubString subString(const Text& pattern, unsigned int start = 0,
                                      caseCompare cmp = exact) {
    return occurrence(zo::textOf(pattern), start, cmp);
  }
  template <zo::AnyText Text>
  [[nodiscard]] const ZoSubString subString(const Text& pattern, unsigned int start = 0,
                                            caseCompare cmp = exact) const {
    return occurrence(zo::textOf(pattern), start, cmp);
  }
  template <zo::AnyText Text>
  [[nodiscard]] ZoSubString subString(const Text& pattern, caseCompare cmp) {
    return subString(pattern, 0u, cmp);
  }
  template <zo::AnyText Text>
  [[nodiscard]] const ZoSubString subString(const Text& pattern, caseCompare cmp) const {
    return subString(pattern, 0u, cmp);
  }
  template <class T, std::same_as<bool> Flag>
  ZoSubString subString(const T&, Flag) const = delete;  // write exact or ignoreCase
  // The first match of an expression, as index() finds it, or the null substring.
  [[nodiscard]] ZoSubString operator()(const ZoRegExp& what, unsigned int start = 0) {
    return occurrence(what, start);
  }
  [[nodiscard]] const ZoSubString operator()(const ZoRegExp& what, unsigned int start = 0) const {
    return occurrence(what, start);
  }

  // ---- Splitting and joining ----
  // Cuts the text at every character that occurs in delims and replaces the entries of out by the
  // pieces in order, empty ones included: n delimiters give n + 1 pieces, but an empty text gives
  // none. With an empty or null delims the whole text is the one piece. Returns the number of
  // pieces; 0 and an empty out also when out finds no memory for them. What out is:
  // zo/text/containers/sequence.h.
  template <zo::AnyText Text>
  unsigned int split(const Text& delims, ZoSequence<ZoString>& out) const {
    return splitAt(ZoString(delims), out);
  }
  template <zo::NotText T>
  void split(T, ZoSequence<ZoString>&) const = delete;  // write L'c'
  // The first position at or after from of a character that occurs in delims, or npos. No character
  // occurs in an empty or null delims.
  template <zo::AnyText Text>
  [[nodiscard]] unsigned int splitNext(const Text& delims, unsigned int from = 0) const noexcept {
    return firstOf(zo::textOf(delims), from);
  }
  template <zo::NotText T>
  void splitNext(T, unsigned int = 0) const = delete;  // write L'c'
  // Both texts, one after the other: what operator+ gives.
  [[nodiscard]] static ZoString concat(std::wstring_view a, std::wstring_view b);
  // The pieces, any range of texts that can be walked twice, with the separator between each two.
  template <class Pieces, zo::AnyText Separator>
  [[nodiscard]] static ZoString join(const Pieces& pieces, const Separator& separator);
  template <zo::AnyText Piece, zo::AnyText Separator>
  [[nodiscard]] static ZoString join(std::initializer_list<Piece> pieces,
                                     const Separator& separator) {
    return join<std::initializer_list<Piece>>(pieces, separator);
  }

  // ---- Comparing ----
  // Negative, 0 or positive. Kept asymmetries:
  // - exact: the form for a string compares bytes of storage (memcmp, any magnitude), the form for
  //   a pointer compares code units (-1, 0, 1); they disagree above U+00FF. operator<=> is
  //   code-unit order for both.
  // - the form for a string ignores case for the value ignoreCase only, the form for a pointer for
  //   any value but exact. Ignoring case asks the platform's collation of the user's locale (-1, 0,
  //   1; 1 also when it fails).
  // Other texts are compared like pointers, with their zero characters.
  [[nodiscard]] int compareTo(const ZoString& other, caseCompare cmp = exact) const noexcept;
  [[nodiscard]] int compareTo(const wchar_t* other, caseCompare cmp = exact) const noexcept {
    return order(zo::textOf(other), cmp);
  }
  template <zo::OtherText Text>
  [[nodiscard]] int compareTo(const Text& other, caseCompare cmp = exact) const noexcept {
    return order(zo::textOf(other), cmp);
  }
  template <zo::NotText T>
  [[nodiscard]] int compareTo(T, caseCompare = exact) const = delete;  // write L'c'
  // Whether compareTo would give 0, but faster: texts of printable ASCII are decided without asking
  // the platform.
  template <zo::AnyText Text>
  [[nodiscard]] bool equals(const Text& other, caseCompare cmp = exact) const noexcept {
    return isEqual(zo::textOf(other), cmp);
  }
  // Order in the runtime library's current locale.
  [[nodiscard]] int collate(const ZoString& other) const noexcept { return collate(other.data()); }
  [[nodiscard]] int collate(const wchar_t* other) const noexcept { return pref()->collate(other); }
  template <zo::OtherText Text>
  [[nodiscard]] int collate(const Text& other) const {
    return collate(ZoString(other));
  }
  template <zo::NotText T>
  [[nodiscard]] int collate(T) const = delete;  // write L'c'

  friend bool operator==(const ZoString& a, const ZoString& b) noexcept {
    return a.data_ == b.data_ || a.view() == b.view();
  }
  friend bool operator==(const ZoString& a, const ZoSubString& b) noexcept {
    return a.view() == b.view();
  }
  friend bool operator==(const ZoString& a, const wchar_t* b) noexcept {
    return a.view() == zo::textOf(b);
  }
  template <zo::OtherText Text>
  friend bool operator==(const ZoString& a, const Text& b) noexcept {
    return a.view() == zo::textOf(b);
  }
  template <class T>
    requires zo::NotText<T> || std::same_as<T, std::nullptr_t>
  friend bool operator==(const ZoString&, T) = delete;  // write isEmpty(), or L'c' for a character
  friend std::strong_ordering operator<=>(const ZoString& a, const ZoString& b) noexcept {
    return a.codeUnitOrder(b.view()) <=> 0;
  }
  friend std::strong_ordering operator<=>(const ZoString& a, const ZoSubString& b) noexcept {
    return a.codeUnitOrder(b.view()) <=> 0;
  }
  friend std::strong_ordering operator<=>(const ZoString& a, const wchar_t* b) noexcept {
    return a.codeUnitOrder(zo::textOf(b)) <=> 0;
  }
  template <zo::OtherText Text>
  friend std::strong_ordering operator<=>(const ZoString& a, const Text& b) noexcept {
    return a.codeUnitOrder(zo::textOf(b)) <=> 0;
  }
  template <class T>
    requires zo::NotText<T> || std::same_as<T, std::nullptr_t>
  friend std::strong_ordering operator<=>(const ZoString&, T) = delete;  // write compareTo() < 0

  // See ZoStringRef::hash and hashFoldCase: two different functions, whose values are part of the
  // interface.
  [[nodiscard]] unsigned int hash(caseCompare cmp = exact) const noexcept {
    return cmp == exact ? pref()->hash() : pref()->hashFoldCase();
  }

  // ---- Conversion ----
  // The text in the ANSI code page, zero-terminated; the caller frees it with delete[]. A character
  // that the code page cannot hold becomes \U+XXXX (four hexadecimal digits) per code unit. A text
  // that holds such seven characters itself cannot be told from an escaped one when it is read
  // back; and a zero character ends what is read of it.
  [[nodiscard]] char* getMBString() const;
  // Takes text in the ANSI code page and undoes the escapes; \U+0000 gives a zero character and
  // does not end the text. Null counts as empty. Returns the string itself.
  ZoString& setFromMB(const char* text);
  // UTF-8, the same on every machine, zero characters included. A byte order mark is a character
  // like any other. What is not UTF-8 becomes U+FFFD, one for each start of a character that breaks
  // off and one for each other byte; a surrogate that stands alone becomes U+FFFD on its way out.
  [[nodiscard]] static ZoString fromUtf8(std::string_view bytes);
  [[nodiscard]] static ZoString fromUtf8(std::u8string_view bytes) {
    return fromUtf8(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  }
  [[nodiscard]] static ZoString fromUtf8(const char* text) {  // zero-terminated; null is empty
    return fromUtf8(text ? std::string_view(text) : std::string_view());
  }
  [[nodiscard]] std::string toUtf8() const;  // for callers that include <string>

  // ---- Streams ----
  // All readers replace the text, return the stream, and set failbit when not one character could
  // be taken. operator>> and readToken skip white space (the stream's ctype), and read up to the
  // next, which they leave.
  friend ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoString& text);
  friend ZO_COM_API std::wistream& operator>>(std::wistream& in, ZoString& text);
  std::wistream& readToken(std::wistream& in);
  // Reads the rest of the stream; an empty rest is no failure.
  std::wistream& readFile(std::wistream& in);
  // Reads up to the end of the line, which is consumed and left out; skips white space (line ends
  // too) before, if asked.
  std::wistream& readLine(std::wistream& in, bool skipWhite = true);
  template <class T>
    requires(!std::same_as<T, bool>)
  std::wistream& readLine(std::wistream&, T) = delete;  // write readToDelim() for a delimiter
  // Reads up to a zero character, which is consumed and left out.
  std::wistream& readString(std::wistream& in) { return readToDelim(in, L'\0'); }
  // Reads up to delim, which is consumed and left out.
  std::wistream& readToDelim(std::wistream& in, wchar_t delim = L'\n');

  // ---- Class-wide settings ----
  // Meant to be set once at start-up, before other threads use strings. Setters return the previous
  // value.
  static unsigned int initialCapacity(unsigned int n) noexcept {
    return std::exchange(s_initialCapac, n);
  }
  [[nodiscard]] static unsigned int getInitialCapacity() noexcept { return s_initialCapac; }
  static unsigned int resizeIncrement(unsigned int n) noexcept {
    return std::exchange(s_resizeInc, n);
  }
  [[nodiscard]] static unsigned int getResizeIncrement() noexcept { return s_resizeInc; }
  static unsigned int maxWaste(unsigned int n) noexcept { return std::exchange(s_freeboard, n); }
  [[nodiscard]] static unsigned int getMaxWaste() noexcept { return s_freeboard; }
  // The capacity that an edit takes for n characters: initialCapacity(), and above it steps of
  // resizeIncrement(). An increment of 0 counts as 1.
  [[nodiscard]] static unsigned int adjustCapacity(unsigned int n) noexcept;

 protected:
  // Both texts, one after the other, in one block of adjustCapacity(lengthA + lengthB).
  ZoString(const wchar_t* a, unsigned int lengthA, const wchar_t* b, unsigned int lengthB);

  // Copies the storage when it is shared; the second form also when its capacity is below n.
  void cow();
  void cow(unsigned int n);
  // New storage for exactly the length, or for exactly n characters (the text is cut to them).
  void clone();
  void clone(unsigned int n);
  // Prepares for a complete overwrite: storage for at least n characters, unshared, length 0.
  void clobber(unsigned int n);
  // Storage of the initial capacity that holds the one character; only for a string that holds no
  // storage yet.
  void initChar(wchar_t c);

 private:
  friend class ZoSubString;
  template <zo::NotText T>
  friend ZoString operator+(const ZoString&, T) = delete;  // write L'c', ZoIntToStr(), mid()
  template <zo::NotText T>
  friend ZoString operator+(T, const ZoString&) = delete;  // write L'c', ZoIntToStr(), mid()

  explicit ZoString(ZoStringRef* owned) noexcept : data_(owned->data()) {}

  [[nodiscard]] ZoStringRef* pref() const noexcept {
    return reinterpret_cast<ZoStringRef*>(data_) - 1;
  }
  static ZoStringRef* addedReference(ZoStringRef* block) noexcept {
    block->addReference();
    return block;
  }
  static constexpr unsigned int atMost(unsigned int n, unsigned int limit) noexcept {
    return n < limit ? n : limit;
  }
  // A length as the string counts it; what is too long becomes npos, which every edit refuses.
  static constexpr unsigned int lengthOf(std::wstring_view text) noexcept {
    return text.size() <= maxLength() ? static_cast<unsigned int>(text.size()) : npos;
  }
  // Storage for so many characters, or the empty one when that is too many; with the text in it.
  static ZoStringRef* blockFor(std::size_t length);
  static ZoStringRef* blockOf(std::wstring_view text);
  static ZoStringRef* blockOf(const wchar_t* text);
  // Any integer as an index; what does not fit is npos.
  template <std::integral Index>
  static constexpr unsigned int toIndex(Index i) noexcept {
    return std::in_range<unsigned int>(i) ? static_cast<unsigned int>(i) : npos;
  }
  [[nodiscard]] wchar_t charAt(unsigned int i) const noexcept {
    return i < length() ? data_[i] : L'\0';
  }
  [[nodiscard]] wchar_t& charRef(unsigned int i);
  void adopt(ZoStringRef* block) noexcept;
  ZoString& insertChars(unsigned int pos, wchar_t c, unsigned int count);
  ZoString& replaceEach(std::wstring_view what, std::wstring_view by, caseCompare cmp);
  template <class Fill>
  ZoString& splice(unsigned int pos, unsigned int n, unsigned int textLength, bool aliased,
                   Fill fill);
  [[nodiscard]] ZoSubString part(unsigned int start, unsigned int len) const noexcept;
  [[nodiscard]] ZoSubString rightPart(unsigned int n) const noexcept;
  ZoString& stripAnyOf(stripType type, std::wstring_view set);
  [[nodiscard]] ZoSubString strippedPart(stripType type, std::wstring_view set) const noexcept;
  [[nodiscard]] ZoSubString found(unsigned int pos, unsigned int len) const noexcept {
    return pos == npos ? ZoSubString(*this, npos, 0) : ZoSubString(*this, pos, len);
  }
  [[nodiscard]] unsigned int firstOf(std::wstring_view set, unsigned int from) const noexcept;
  [[nodiscard]] bool standsAt(std::size_t pos, std::wstring_view text,
                              caseCompare cmp) const noexcept;
  [[nodiscard]] ZoSubString occurrence(std::wstring_view pattern, unsigned int start,
                                       caseCompare cmp) const noexcept;
  [[nodiscard]] ZoSubString occurrence(const ZoRegExp& what, unsigned int start) const noexcept;
  unsigned int splitAt(const ZoString& set, ZoSequence<ZoString>& out) const;
  [[nodiscard]] int codeUnitOrder(std::wstring_view other) const noexcept;
  [[nodiscard]] int order(std::wstring_view other, caseCompare cmp) const noexcept;
  [[nodiscard]] bool isEqual(std::wstring_view other, caseCompare cmp) const noexcept;

  static unsigned int s_initialCapac;
  static unsigned int s_resizeInc;
  static unsigned int s_freeboard;

  wchar_t* data_;  // the characters of a ZoStringRef, whose header lies directly before them
};

static_assert(sizeof(ZoString) == sizeof(void*));

// Both texts, one after the other.
[[nodiscard]] inline ZoString operator+(const ZoString& a, const ZoString& b) {
  return ZoString::concat(a.view(), b.view());
}
[[nodiscard]] inline ZoString operator+(const ZoString& a, const wchar_t* b) {
  return ZoString::concat(a.view(), zo::textOf(b));
}
[[nodiscard]] inline ZoString operator+(const wchar_t* a, const ZoString& b) {
  return ZoString::concat(zo::textOf(a), b.view());
}
// A substring comes in as a ZoString: two of them would fit both of these.
template <zo::OtherText Text>
  requires(!std::same_as<Text, ZoSubString>)
[[nodiscard]] ZoString operator+(const ZoString& a, const Text& b) {
  return ZoString::concat(a.view(), zo::textOf(b));
}
template <zo::OtherText Text>
  requires(!std::same_as<Text, ZoSubString>)
[[nodiscard]] ZoString operator+(const Text& a, const ZoString& b) {
  return ZoString::concat(zo::textOf(a), b.view());
}

template <class Pieces, zo::AnyText Separator>
ZoString ZoString::join(const Pieces& pieces, const Separator& separator) {
  const std::wstring_view between = zo::textOf(separator);
  std::size_t total = 0;
  for (const auto& piece : pieces) total += zo::textOf(piece).size() + between.size();
  ZoString result(blockFor(total - (total == 0 ? 0 : between.size())));
  if (result.isEmpty()) return result;
  wchar_t* at = result.data_;
  const auto add = [&at](std::wstring_view text) { at += text.copy(at, text.size()); };
  std::wstring_view before;
  for (const auto& piece : pieces) {
    add(before);
    add(zo::textOf(piece));
    before = between;
  }
  return result;
}

inline void swap(ZoString& a, ZoString& b) noexcept { a.swap(b); }

// Agrees with operator==.
template <>
struct std::hash<ZoString> {
  size_t operator()(const ZoString& text) const noexcept { return text.hash(ZoString::exact); }
};

namespace zo::literals {
// L"text"_zs, zero characters included.
[[nodiscard]] inline ZoString operator""_zs(const wchar_t* text, std::size_t length) {
  return ZoString(std::wstring_view(text, length));
}
}  // namespace zo::literals
