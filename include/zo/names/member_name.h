// Names of members of libraries in one text, for logs, settings and dialogs:
//
//   C:\parts\bolts.lib|m8/hex.dwg
//
// The library stands before the sign |, which no file name may hold, the member behind it. Where a
// library of a foreign file system or a member has one of these signs, it is written with a < in
// front, which no file name holds either:
//
//   <|  a vertical bar      <<  a <      <;  a colon (in a member, always; in a library, never)
//
// So a text has one meaning at most, and a name of each kind one text. ZoFile::open() and the file
// search service take such a name as any other; to the rest of the library it is a name that no
// file can have (ZoFileName::possibleOnVolume() is false).
//
// Errors:  0; 1 no such notation: no | stands alone; 7 (ZoResult::nameInvalid) a second |, a < that
//          none of these follows, a member's colon without it, an empty library or member, or one
//          that no file name has as its text. What was
//          to be filled is then as it was. Nothing throws but std::bad_alloc.
// Threads: any.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>

#include <cstddef>

struct ZoMemberName {
  ZoFileName library;
  ZoFileName member;
};

// Whether the name is in the notation, be it right or wrong.
[[nodiscard]] ZO_COM_API bool zoIsMemberName(const ZoFileName& name) noexcept;
bool zoIsMemberName(std::nullptr_t) = delete;  // a name
// Splits it. A library below a macro has the macro's value where that is known.
[[nodiscard]] ZO_COM_API int zoSplitMemberName(const ZoFileName& name, ZoMemberName& parts);
int zoSplitMemberName(std::nullptr_t, ZoMemberName&) = delete;  // a name
// The name of both, which zoSplitMemberName splits again into the same texts; an empty one where
// none does, as for some texts with quotes.
[[nodiscard]] ZO_COM_API ZoFileName zoMemberName(const ZoFileName& library,
                                                 const ZoFileName& member);
template <class Member>
ZoFileName zoMemberName(std::nullptr_t, const Member&) = delete;  // the library's name
template <class Library>
ZoFileName zoMemberName(const Library&, std::nullptr_t) = delete;  // the member's name
