// The message service: texts for users by message file and number, in the user's language. A caller
// brings its own text for what is not found.
//
// Errors:  0 success; 1 no such text, or the guard was not obtained in time; the text then stays as
//          it was.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZO_COM_API ZoMessage : public ZoSysObj {
 public:
  [[nodiscard]] virtual int getText(const ZoString& file, int number, ZoString& text) = 0;
};

// Reads no message files yet: every text is unknown.
class ZO_COM_API ZoStdMessage : public ZoMessage {
 public:
  int release(const wchar_t* module) override;

  int getText(const ZoString& file, int number, ZoString& text) override;
};
