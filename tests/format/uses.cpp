// std::format of the library's values, for a compiler whose standard library has it: GCC 12's does
// not. Compiled only.
#include <zo/geometry.h>
#include <zo/strings.h>

#include <format>
#include <string>

static_assert(__cpp_lib_format >= 201907L);

std::wstring texts(const ZoString& text) {
  return std::format(L"{} {:>20} {:.3}", text, text, text(0, 2));
}

template <class... Values>
std::string narrow(const Values&... values) {
  return (std::format("{} {:.2f}", values, values) + ...);
}
template <class... Values>
std::wstring wide(const Values&... values) {
  return (std::format(L"{} {:8.3e}", values, values) + ...);
}

std::string geometry(const ZoVector& vector, const ZoPoint& point, const ZoTol& tolerance,
                     const ZoMatrix& matrix, const ZoPlane& plane, const ZoCoSystem& system) {
  return narrow(vector, point, tolerance, matrix, plane, system) +
         std::to_string(wide(vector, point, tolerance, matrix, plane, system).size());
}
