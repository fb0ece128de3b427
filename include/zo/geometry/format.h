// std::format for the geometry values, where the compiler has it. What stands after the colon is
// applied to each number: std::format("{:.2f}", ZoVector(1, 2, 3)) is "(1.00, 2.00, 3.00)". The
// text is that of the stream operators, except that without a format numbers print the shortest
// text that reads back exactly.
//
// Errors:  std::format_error for what is no format of a number, unless it is a literal, which the
//          compiler refuses; and what the output throws.
// Threads: any.
#pragma once

#include <zo/geometry/co_system.h>
#include <zo/geometry/matrix.h>
#include <zo/geometry/plane.h>
#include <zo/geometry/point.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>

#include <version>

#if defined(__cpp_lib_format)
#include <format>

namespace zo {

// Formats a list of named or unnamed groups of numbers, each with the format of a number.
template <typename Char>
class GeometryFormatter : public std::formatter<double, Char> {
 protected:
  template <typename Context>
  void text(const char* ascii, Context& context) const {
    auto out = context.out();
    for (; *ascii != '\0'; ++ascii) *out++ = static_cast<Char>(*ascii);
    context.advance_to(out);
  }
  template <typename Context>
  void number(double value, Context& context) const {
    context.advance_to(std::formatter<double, Char>::format(value, context));
  }
  template <typename Context>
  void group(const char* name, const double* numbers, int count, Context& context) const {
    text(name, context);
    for (int i = 0; i < count; ++i) {
      text(i == 0 ? "(" : ", ", context);
      number(numbers[i], context);
    }
    text(")", context);
  }
};

}  // namespace zo

template <typename Char>
struct std::formatter<ZoVector, Char> : zo::GeometryFormatter<Char> {
  template <typename Context>
  auto format(const ZoVector& v, Context& context) const {
    this->group("", v.asDblArray(), 3, context);
    return context.out();
  }
};

template <typename Char>
struct std::formatter<ZoPoint, Char> : zo::GeometryFormatter<Char> {
  template <typename Context>
  auto format(const ZoPoint& p, Context& context) const {
    this->group("", p.asDblArray(), 3, context);
    return context.out();
  }
};

template <typename Char>
struct std::formatter<ZoTol, Char> : zo::GeometryFormatter<Char> {
  template <typename Context>
  auto format(const ZoTol& tol, Context& context) const {
    this->number(tol.getPntTol(), context);
    this->text("(Pnt) ", context);
    this->number(tol.getVecTol(), context);
    this->text("(Vec)", context);
    return context.out();
  }
};

template <typename Char>
struct std::formatter<ZoMatrix, Char> : zo::GeometryFormatter<Char> {
  template <typename Context>
  auto format(const ZoMatrix& m, Context& context) const {
    for (int row = 0; row < 4; ++row) {
      this->group(row == 0 ? "(" : ", ", m.asDblArray() + 4 * row, 4, context);
    }
    this->text(")", context);
    return context.out();
  }
};

template <typename Char>
struct std::formatter<ZoPlane, Char> : zo::GeometryFormatter<Char> {
  template <typename Context>
  auto format(const ZoPlane& plane, Context& context) const {
    this->group("RefPnt", plane.refPoint().asDblArray(), 3, context);
    this->group(" Normal", plane.normal().asDblArray(), 3, context);
    return context.out();
  }
};

template <typename Char>
struct std::formatter<ZoCoSystem, Char> : zo::GeometryFormatter<Char> {
  template <typename Context>
  auto format(const ZoCoSystem& system, Context& context) const {
    this->group("Origin", system.origin().asDblArray(), 3, context);
    this->group(" X-Axis", system.xAxis().asDblArray(), 3, context);
    this->group(" Y-Axis", system.yAxis().asDblArray(), 3, context);
    this->group(" Z-Axis", system.zAxis().asDblArray(), 3, context);
    return context.out();
  }
};
#endif
