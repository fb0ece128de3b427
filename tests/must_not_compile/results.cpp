// Wrong use of results. One trap a line, marked with what the compiler must say of it.
// clang-format off
#include <zo/geometry.h>
#include <zo/result_text.h>
#include <zo/strings.h>

void results(ZoVector v, ZoPlane plane, double value) {
  v.normalize();  // error: nodiscard
  plane.set(L'x');  // error: nodiscard
  ZoStrToReal(L"1", value);  // error: nodiscard
  zoResultText(3, 5);  // error: ZoResultFamily
  zoResultText(1001, ZoResultFamily::libraries);  // error: nodiscard
}
