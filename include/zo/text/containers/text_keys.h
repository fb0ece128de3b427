// Text in containers: the order and the key policy ignoring case.
//
// The order is the platform's collation ignoring case in the user's locale (ZoString::compareTo).
// What it makes of plain ASCII is learnt once for each locale; for the rest it is asked. A
// container that was ordered in one locale is not in order when the user takes another
// (docs/containers.md).
//
// Two keys of a ZoHashDict are one when they are equal unit by unit after simple case folding and
// the collation says so, too. A key of ASCII hashes as ZoString::hash(ignoreCase) does. That folds
// a to z only, so a key with any other unit is hashed folded instead (upper case, and the few that
// have three forms: final sigma, Kelvin, Angstrom, the digraphs in title case). Collation also
// takes texts for equal that do not differ in case: sharp s and ss, a letter with an accent and the
// same in two units, units without a weight. These are two keys of a ZoHashDict and one of a
// ZoTree, which goes by the order alone. Letters beyond U+FFFF are not folded by either.
//
// Fingerprints (vhash.h) differ between keys that do, but for a chance of length / 2^31 that nobody
// can prepare: so a dictionary read from foreign data takes time in proportion to the data.
//
// Look-up takes const wchar_t*, ZoSubString and std::wstring_view as they are, without making a
// string.
//
// Errors:  nothing throws.
// Threads: stateless; any number of threads, also while the user's locale changes.
#pragma once

#include <zo/text/containers/compare.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/hash_value.h>
#include <zo/text/string.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zo {

// A string is one pointer to its storage.
template <>
inline constexpr bool isRelocatable<ZoString> = true;

// The hash of a key, and whether it is plain: printable ASCII. (Texts go as pointer and length: a
// view would be passed through memory.)
[[nodiscard]] ZO_COM_API HashedKey hashText(const wchar_t* text, std::size_t length) noexcept;
// Whether plain texts of one length are equal ignoring case.
[[nodiscard]] ZO_COM_API bool equalPlainTexts(const wchar_t* a, const wchar_t* b,
                                              std::size_t length) noexcept;
// Whether any two texts are one key.
[[nodiscard]] ZO_COM_API bool equalTexts(std::wstring_view a, std::wstring_view b) noexcept;
// What a text begins with, for a tree (vtree.h); 0 when its order is for the platform to tell.
[[nodiscard]] ZO_COM_API std::uint32_t frontOfText(const wchar_t* text,
                                                   std::size_t length) noexcept;
[[nodiscard]] ZO_COM_API unsigned fingerprintText(const wchar_t* text, std::size_t length) noexcept;

}  // namespace zo

template <>
class ZoCICompare<ZoString> : public ZoCompare<ZoString> {
 public:
  [[nodiscard]] int compare(const ZoString& a, const ZoString& b) const override {
    return a.compareTo(b, ZoString::ignoreCase);
  }
};

template <>
inline std::uint32_t zo::frontOf<ZoString, ZoCICompare<ZoString>>(const ZoString& key) {
  return frontOfText(key.data(), key.length());
}

template <>
class ZoCIHashValue<ZoString> final : public ZoHashValue<ZoString> {
 public:
  [[nodiscard]] int compare(const ZoString& a, const ZoString& b) const override {
    return a.compareTo(b, ZoString::ignoreCase);
  }
  [[nodiscard]] unsigned hash(const ZoString& key) const override {
    return zo::hashText(key.data(), key.length()).hash();
  }
  [[nodiscard]] unsigned fingerprint(const ZoString& key) const override {
    return fingerprintKey(key.view());
  }

  // For look-up without virtual calls.
  static std::wstring_view lookUpForm(const ZoString& key) noexcept { return key.view(); }
  static std::wstring_view lookUpForm(const ZoSubString& key) noexcept { return key.view(); }
  static std::wstring_view lookUpForm(std::wstring_view key) noexcept { return key; }
  static std::wstring_view lookUpForm(const wchar_t* key) noexcept {  // null counts as empty
    return key ? std::wstring_view(key) : std::wstring_view();
  }
  static zo::HashedKey hashKey(std::wstring_view key) noexcept {
    return zo::hashText(key.data(), key.size());
  }
  static unsigned fingerprintKey(std::wstring_view key) noexcept {
    return zo::fingerprintText(key.data(), key.size());
  }
  static bool isEqual(const ZoString& mine, std::wstring_view key, bool bothPlain) noexcept {
    if (!bothPlain) return zo::equalTexts(mine.view(), key);
    return mine.length() == key.size() && zo::equalPlainTexts(mine.data(), key.data(), key.size());
  }
};
