// The error service: what reports failures to whoever is to hear of them.
//
// Errors:  0 reported; 1 not reported, because the guard was not obtained within timeOut(), the
//          report could not be written, or (trace, prompt) the format is null. Only what a client's
//          implementation throws is thrown.
// Threads: any; reports never interleave.
// Formats: as the runtime's wprintf takes them (%s is a wide text); the formatted text is cut to
//          256 characters. A null format of a warning counts as an empty one.
#pragma once

#include <zo/platform_types.h>  // HWND points to HWND__
#include <zo/system/sys_obj.h>

class ZO_COM_API ZoError : public ZoSysObj {
 public:
  // An item of a task dialog.
  struct KeyValue {
    const wchar_t* key;
    const wchar_t* value;
  };

  // The order is part of the interface. File name, function name and text may be null.
  virtual int error(const wchar_t* fileName, const wchar_t* funcName, int position,
                    const wchar_t* text) = 0;
  virtual int warning(const wchar_t* fileName, int position, const wchar_t* format, ...) = 0;
  virtual int trace(const wchar_t* format, ...) = 0;
  // Tells the user something that is no failure.
  virtual int prompt(const wchar_t* format, ...) = 0;
  // Returns 2 where an implementation, like those of this library, has none to show.
  virtual int taskDialog(const wchar_t* text, HWND__* parent, const KeyValue* items, int count) = 0;
};
