// The standards manager: engineering standards ("ISO 4014") with their tables of dimensions.
//
//   ZoVariant row;
//   if (const int code = ZoSystem::standardMgr().getRow(L"ISO 4014", L"", L"M8", row)) return code;
//   const double width = row.value(L"s").asReal();
//
// A standard is a dictionary of code ZoTypeCode::Standard: docs/standards.md has its keys and the
// form of files. Modules add standards under their name, and they go with the module.
//
// Names    are found under every usual spelling: case, blanks, hyphens, slashes and leading zeros
//          do not count ("iso4014", "ISO-04014"), but between two numbers there is a sign ("ISO
//          286-1" is "iso 286 1", and not "ISO 2861"). An international standard is found under the
//          names of those who adopted it, and these under its name ("DIN EN ISO 4014" and "ISO
//          4014"), unless both are there.
// Editions stand behind a colon: "ISO 4014:2011". Without one the newest is meant; "ISO 4014-2011"
//          is an edition where it is no part.
// Of several modules that added the same edition, the one that did so last comes first.
// Notice:  "ZoStandardsChanged" with "Module" and, as a sequence, the "Names" that came or went,
//          one for each call that changed something, when it is done and no lock is held.
// Errors:  0 success. ZoResult::refused: no such standard, edition, table, size, file or setting,
//          or the guard was not obtained within timeOut(). ZoResult::invalid: no value of a
//          standard. standardCircle as said. What was to be filled stays as it was, and nothing has
//          changed. Nothing throws but std::bad_alloc, and what reactors throw at the notice: the
//          change stands then.
// Threads: any. Looking up never waits for the standard service's guard.
// Cost:    looking up is O(1) and copies what it gives; find looks at all standards.
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/text/string.h>

class ZoFile;
class ZoFileName;
template <class T>
class ZoSequence;

namespace ZoResult {
inline constexpr int standardCircle = 34;  // standards that name each other as successors
}  // namespace ZoResult

// Which standards to list; an empty text is any.
struct ZoStandardFilter {
  ZoString pattern = {};  // of names: * and ? as usual, blanks and hyphens do not count
  ZoString firm = {};
  ZoString catalog = {};
  ZoString standardClass = {};
  bool withdrawn = true;  // those, too, that were withdrawn or have a successor
};

class ZO_COM_API ZoStandardMgr : public ZoSysObj {
 public:
  // ---- The order of the virtual functions is part of the interface ----
  // The standard as it was added, a copy.
  [[nodiscard]] virtual int getStandard(const ZoString& name, ZoVariant& standard) = 0;

  // Here all that follows is refused.

  // Adds a standard, or a sequence of them, all or none. One that the module has added already is
  // replaced. A null module is one with an empty name, here and below.
  [[nodiscard]] virtual int add(const ZoVariant& standards, const wchar_t* module);
  // Adds what a file has. A relative name is looked for by the file search service.
  [[nodiscard]] virtual int addFile(const ZoFileName& file, const wchar_t* module);
  // The same of a file that is open, as a member of a library is (ZoLibrary::getFile). What it is
  // called is for getOrigin.
  [[nodiscard]] virtual int addOpenFile(ZoFile& file, const ZoFileName& called,
                                        const wchar_t* module);
  // Of this module, all editions or the one that is named, by its own name in any spelling: not by
  // that of who adopted it.
  [[nodiscard]] virtual int remove(const ZoString& name, const wchar_t* module);

  // What follows replaces what a sequence has, in the user's order.

  // Names of standards, without editions.
  [[nodiscard]] virtual int find(const ZoStandardFilter& filter, ZoSequence<ZoString>& names);
  // As the standard itself writes its name, without the edition.
  [[nodiscard]] virtual int getName(const ZoString& spelling, ZoString& name);
  // The newest one first; a standard without an edition has an empty one.
  [[nodiscard]] virtual int getEditions(const ZoString& name, ZoSequence<ZoString>& editions);
  // What stands for it now: the end of the chain of "ReplacedBy", or of a named edition the newest
  // one. It need not be there itself. Refused when nothing has replaced it; standardCircle when the
  // chain comes back.
  [[nodiscard]] virtual int getSuccessor(const ZoString& name, ZoString& successor);
  // Where it comes from; the file is empty for one that was added as a value.
  [[nodiscard]] virtual int getOrigin(const ZoString& name, ZoString& module, ZoFileName& file);

  // ---- Tables ----
  [[nodiscard]] virtual int getTables(const ZoString& name, ZoSequence<ZoString>& tables);
  // The nominal sizes, by the numbers in them: M4, M8, M10. An empty table is the only one.
  [[nodiscard]] virtual int getSizes(const ZoString& name, const ZoString& table,
                                     ZoSequence<ZoString>& sizes);
  // The dimensions of a nominal size, in any spelling, or as the number in it where that is the
  // only one: "M8", "m 8", "8".
  [[nodiscard]] virtual int getRow(const ZoString& name, const ZoString& table,
                                   const ZoString& size, ZoVariant& row);

  // ---- Favourites: the standard that the user prefers in a class (docs/configuration.md) ----
  // As it is set, whether there is such a standard or not. Refused when none is set.
  [[nodiscard]] virtual int getPreferred(const ZoString& standardClass, ZoString& name);
  // An empty name sets none. Refused for a class without a name or with an "@" in it.
  [[nodiscard]] virtual int setPreferred(const ZoString& standardClass, const ZoString& name);
};
