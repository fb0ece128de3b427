// The error service: what reports failures to whoever is to hear of them.
//
//   ZoSystem::error().warning(ZO_FILE, __LINE__, L"%d parts left out of %s", count, name);
//
// Who reports calls the typed forms of ZoError: their arguments may be numbers, ZoString,
// ZoFileName and other texts, and a literal format is checked by the compiler (zo/text/printf.h).
// Who implements a service overrides the functions of ZoErrorSlots.
//
// Errors:  0 reported; 1 not reported, because the guard was not obtained within timeOut(), the
//          report could not be written, or (trace, prompt) the format is null. No caller needs to
//          look: a report that fails has nobody to be told. Only what a client's implementation
//          throws is thrown.
// Threads: any; reports never interleave.
// Formats: as in zo/text/printf.h, cut to 1023 characters, and by the implementations of this
//          library to 256. A null format of a warning counts as an empty one.
#pragma once

#include <zo/platform_types.h>  // HWND points to HWND__
#include <zo/system/source_place.h>
#include <zo/system/sys_obj.h>
#include <zo/text/printf.h>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"  // ZoError hides three of them on purpose
#endif

// What an error service implements. The order is part of the interface. File name, function name
// and text may be null. Formats are the runtime's, of wprintf, in which %s is a wide text: what
// comes from the typed forms is one text, with the format "%ls".
class ZO_COM_API ZoErrorSlots : public ZoSysObj {
 public:
  // An item of a task dialog.
  struct KeyValue {
    const wchar_t* key;
    const wchar_t* value;
  };

  virtual int error(const wchar_t* fileName, const wchar_t* funcName, int position,
                    const wchar_t* text) = 0;
  virtual int warning(const wchar_t* fileName, int position, const wchar_t* format, ...) = 0;
  virtual int trace(const wchar_t* format, ...) = 0;
  // Tells the user something that is no failure.
  virtual int prompt(const wchar_t* format, ...) = 0;
  // Returns 2 where an implementation, like those of this library, has none to show.
  virtual int taskDialog(const wchar_t* text, HWND__* parent, const KeyValue* items, int count) = 0;

  // The typed forms without the compiler's check, where an argument is an object: for calls of an
  // implementation itself, which says `using ZoErrorSlots::warning;` beside its own.
  template <class... Arguments>
    requires zo::HasObject<Arguments...>
  int warning(const wchar_t* fileName, int position, const wchar_t* format,
              const Arguments&... arguments) {
    return printWarning(fileName, position, format, zo::argumentsOf(arguments...));
  }
  template <class... Arguments>
    requires zo::HasObject<Arguments...>
  int trace(const wchar_t* format, const Arguments&... arguments) {
    return printTrace(format, zo::argumentsOf(arguments...));
  }
  template <class... Arguments>
    requires zo::HasObject<Arguments...>
  int prompt(const wchar_t* format, const Arguments&... arguments) {
    return printPrompt(format, zo::argumentsOf(arguments...));
  }

 protected:
  int printWarning(const wchar_t* fileName, int position, const wchar_t* format,
                   const zo::FormatArguments& arguments);
  int printTrace(const wchar_t* format, const zo::FormatArguments& arguments);
  int printPrompt(const wchar_t* format, const zo::FormatArguments& arguments);
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

class ZO_COM_API ZoError : public ZoErrorSlots {
 public:
  // These hide the functions of the same names above, so that every call is checked.
  template <class... Arguments>
  int warning(const wchar_t* fileName, int position, zo::FormatFor<Arguments...> format,
              const Arguments&... arguments) {
    return printWarning(fileName, position, format.text(), zo::argumentsOf(arguments...));
  }
  template <class... Arguments>
  int trace(zo::FormatFor<Arguments...> format, const Arguments&... arguments) {
    return printTrace(format.text(), zo::argumentsOf(arguments...));
  }
  template <class... Arguments>
  int prompt(zo::FormatFor<Arguments...> format, const Arguments&... arguments) {
    return printPrompt(format.text(), zo::argumentsOf(arguments...));
  }
};
