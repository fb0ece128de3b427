// Text in containers: the order and the key policy ignoring case.
//
// Both ask the platform's collation ignoring case (ZoString::compareTo), and decide printable ASCII
// without asking. The hash is ZoString::hash(ignoreCase), which folds a to z only. So two texts
// that differ in the case of other letters are equal for the comparison but may hash differently; a
// dictionary takes them for one key when they fall into the same bucket. That is deliberate: hash
// values are part of the interface.
//
// Look-up takes const wchar_t*, ZoSubString and std::wstring_view as they are, without making a
// string.
//
// Threads: stateless; any number of threads.
#pragma once

#include <zo/text/containers/compare.h>
#include <zo/text/containers/elements.h>
#include <zo/text/containers/hash_value.h>
#include <zo/text/string.h>

#include <cstddef>
#include <string_view>

namespace zo {

// A string is one pointer to its storage.
template <>
inline constexpr bool isRelocatable<ZoString> = true;

// Plain: printable ASCII. (Texts go as pointer and length: a view would be passed through memory.)
[[nodiscard]] ZO_COM_API HashedKey hashText(const wchar_t* text, std::size_t length) noexcept;
// Whether plain texts of one length are equal ignoring case.
[[nodiscard]] ZO_COM_API bool equalPlainTexts(const wchar_t* a, const wchar_t* b,
                                              std::size_t length) noexcept;

}  // namespace zo

template <>
class ZoCICompare<ZoString> : public ZoCompare<ZoString> {
 public:
  [[nodiscard]] int compare(const ZoString& a, const ZoString& b) const override {
    return a.compareTo(b, ZoString::ignoreCase);
  }
};

template <>
class ZoCIHashValue<ZoString> : public ZoHashValue<ZoString> {
 public:
  [[nodiscard]] int compare(const ZoString& a, const ZoString& b) const override {
    return a.compareTo(b, ZoString::ignoreCase);
  }
  [[nodiscard]] unsigned hash(const ZoString& key) const override {
    return key.hash(ZoString::ignoreCase);
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
  static bool isEqual(const ZoString& mine, std::wstring_view key, bool bothPlain) noexcept {
    if (!bothPlain) return mine.equals(key, ZoString::ignoreCase);
    return mine.length() == key.size() && zo::equalPlainTexts(mine.data(), key.data(), key.size());
  }
};
