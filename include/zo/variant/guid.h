// GUIDs as text: "{6F9619FF-8B86-d011-B42D-00CF4FC964FF}".
//
// The third group is written in lower case and all others in upper case: stored texts carry it so.
// Reading takes either case, but asks for both braces, although writing can leave them out.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: any.
#pragma once

#include <zo/config.h>
#include <zo/text/containers/compare.h>
#include <zo/text/containers/hash_value.h>
#include <zo/text/string.h>

// The platform's structure, as guiddef.h declares it and under its guard: that header brings macros
// as short as FAR. It has the operators of GUIDs; include it, before or after this one, to use
// them.
#if !defined(GUID_DEFINED)
#define GUID_DEFINED
typedef struct _GUID {  // NOLINT(bugprone-reserved-identifier, modernize-use-using)
  unsigned long Data1;
  unsigned short Data2;
  unsigned short Data3;
  unsigned char Data4[8];
} GUID;
#endif

#include <cstring>

// Room for the text with its terminating zero.
inline constexpr unsigned int ZoGuidTextSize = 39;

// Writes the text, zero-terminated, to a buffer of ZoGuidTextSize characters.
ZO_COM_API void ZoGuid2String(const _GUID& guid, wchar_t* buffer, bool braces = true) noexcept;
ZO_COM_API ZoString& ZoGuid2String(const _GUID& guid, ZoString& out, bool braces = true);
// With braces: the key or path step that stands for the GUID in a dictionary of texts.
[[nodiscard]] inline ZoString ZoGuid2String(const _GUID& guid) {
  ZoString text;
  return ZoGuid2String(guid, text);
}

// Reads the first GUID text that stands in a text. Returns 0; or 1, and then the GUID stays as it
// was. Only the opening brace, the four dashes and the closing brace are looked for, in this order;
// a group is read from behind its delimiter as far as hexadecimal digits go, at most its own number
// of them, and what follows up to the next delimiter is passed over. So of the first four groups
// short ones are taken with zeros in front. The last is read in pairs of digits, a byte each: only
// its last byte may have a single digit, and fewer than eleven are refused.
[[nodiscard]] ZO_COM_API int ZoString2Guid(const ZoString& text, _GUID& guid) noexcept;

ZO_COM_API void ZoSetNullGuid(_GUID& guid) noexcept;

// GUIDs as elements and keys: ZoHashDict<T, _GUID>, ZoTree<T, _GUID>, sorted sequences. The order
// is that of the bytes in memory.
template <>
class ZoCompare<_GUID> {
 public:
  ZoCompare() = default;
  ZoCompare(const ZoCompare&) = default;
  ZoCompare& operator=(const ZoCompare&) = default;
  virtual ~ZoCompare() = default;
  [[nodiscard]] virtual int compare(const _GUID& a, const _GUID& b) const {
    return std::memcmp(&a, &b, sizeof a);
  }
};
template <>
class ZoHashValue<_GUID> {
 public:
  ZoHashValue() = default;
  ZoHashValue(const ZoHashValue&) = default;
  ZoHashValue& operator=(const ZoHashValue&) = default;
  virtual ~ZoHashValue() = default;
  [[nodiscard]] virtual int compare(const _GUID& a, const _GUID& b) const {
    return std::memcmp(&a, &b, sizeof a);
  }
  // GUIDs that are made one after the other may differ in any of their parts alone.
  [[nodiscard]] virtual unsigned hash(const _GUID& key) const {
    unsigned words[4];
    std::memcpy(words, &key, sizeof words);
    unsigned hash = 0;
    for (const unsigned word : words) hash = (hash ^ word) * 0x9E3779B1u;
    return hash ^ hash >> 15;
  }
  [[nodiscard]] virtual unsigned fingerprint(const _GUID& key) const {
    unsigned words[4];
    std::memcpy(words, &key, sizeof words);
    unsigned print = 0x85EBCA6Bu;
    for (const unsigned word : words) print = (print << 13 ^ print >> 19) * 5 + word * 0xCC9E2D51u;
    return print ^ print >> 16;
  }
};
