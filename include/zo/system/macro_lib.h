// The service of macro libraries: names that stand for folders, as in the file name
// $standards'bolts\m8.dwg.
//
//   auto& macros = ZoSystem::macroLib();
//   if (const int code = macros.setMacro(L"standards", L"\\\\server\\share\\iso", L"my_module"))
//     return code;
//   ZoFileName name(L"$standards'bolts\\m8.dwg");
//   if (const int code = macros.expand(name)) return code;  // name.view() is the path now
//
// A name of a macro ignores case, and holds neither an apostrophe nor a double quote. A value is
// taken as it is written; it may begin with a macro itself ("$root'iso"), as far as kMaxDepth of
// them stand within one another.
//
// Errors:  0 success; 1 no such macro, a name that cannot be one, a circle of macros or too many
//          within one another, or the guard was not obtained in time; 2 out of memory. What was to
//          be filled or changed is then as it was. Nothing throws but std::bad_alloc.
// Threads: any. Looking up never waits for the guard.
#pragma once

#include <zo/config.h>
#include <zo/names/name_text.h>
#include <zo/system/sys_obj.h>
#include <zo/text/string.h>

#include <concepts>
#include <cstddef>

class ZoFileName;
template <class T>
class ZoSequence;

class ZO_COM_API ZoMacroLib : public ZoSysObj {
 public:
  static constexpr unsigned int kMaxDepth = 16;

  // ---- What a service of one's own must give; the rest has a meaning already ----
  // The text that a macro stands for, as it was given.
  [[nodiscard]] virtual int getMacro(const ZoString& name, ZoString& value) = 0;

  // ---- The order of the virtual functions is part of the interface ----
  // Gives a macro a value, for a module, until that is released; a value that the same module gave
  // before goes. Of several modules the one that gave it last counts. An empty value is refused.
  // Here: refused.
  [[nodiscard]] virtual int setMacro(const ZoString& name, const ZoString& value,
                                     const wchar_t* module);
  template <zo::NameSource Value>
  [[nodiscard]] int setMacro(const ZoString& name, const Value& value, const wchar_t* module) {
    return setMacro(name, ZoString(zo::wideOf(value)), module);
  }
  template <zo::NameSource Name, zo::NameSource Value>
  [[nodiscard]] int setMacro(const Name& name, const Value& value, const wchar_t* module) {
    return setMacro(ZoString(zo::wideOf(name)), ZoString(zo::wideOf(value)), module);
  }
  int setMacro(const ZoString&, std::nullptr_t, const wchar_t*) = delete;  // removeMacro
  // Takes the value that a module gave away. Here: refused.
  [[nodiscard]] virtual int removeMacro(const ZoString& name, const wchar_t* module);
  // The names of all macros, sorted, in the place of what `names` held. Here: refused.
  [[nodiscard]] virtual int getMacros(ZoSequence<ZoString>& names);
  // Gives a name that has a macro the macro's value (ZoFileName::setMacro), so that its text is the
  // path. What has no macro is left alone. Here: asks getMacro, also for macros that values begin
  // with.
  [[nodiscard]] virtual int expand(ZoFileName& name);
  // Takes macros in from a text file, until the module is released: docs/macros.md. Here: refused.
  [[nodiscard]] virtual int addFile(const ZoFileName& file, const wchar_t* module);
  // Whether variables of the environment are macros, too, behind all others. At first they are not.
  // Here: refused.
  [[nodiscard]] virtual int useEnvironment(bool use);
  template <class Use>
    requires(!std::same_as<Use, bool>)
  int useEnvironment(Use) = delete;  // a bool
};
