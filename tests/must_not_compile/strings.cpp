#include <zo/strings.h>

void strings(ZoString text) {
  text.index(L"x");           // error: nodiscard
  const int* numbers = text;  // error: cannot convert
}
