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
  (void)zoResultText(value != 0, ZoResultFamily::files);  // error: the code itself
}

void numbersAsText(double real, wchar_t* buffer) {
  (void)ZoIntToStr(real);  // error: of a real ZoRealToStr
  ZoIntToStr(real, buffer);  // error: of a real ZoRealToStr
  (void)ZoIntToStr(true);  // error: truth values are no numbers
  (void)ZoIntToStr(L'x');  // error: truth values are no numbers
  (void)ZoRealToStr(real > 0);  // error: truth values are no numbers
  (void)ZoRealToStr(L'x', L',');  // error: truth values are no numbers
}
