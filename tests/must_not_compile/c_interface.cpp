// Wrong use of the C interface. One trap a line, marked with what the compiler must say of it.
// clang-format off
#include <zo_c.h>

void handles(ZocString text, ZocValue value, ZocText path) {
  zocValueFormat(text, text);  // error: ZocValue
  zocValueGetText(value, path, value);  // error: ZocString
  zocValueGetText(value, "a/b", text);  // error: ZocText
  zocUtf8(L"text");  // error: const char*
}
