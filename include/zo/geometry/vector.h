// Vectors: a direction or a displacement in space.
//
// Angles are radians, turns follow the right-hand rule. Tests take a tolerance; without one, and in
// the operators, the default tolerance counts. Comparison by operators is tolerant, hence not
// transitive: neighbours in a chain of close vectors are equal, its ends are not. Do not sort or
// hash by it.
//
// Errors:  nothing throws. Components that are infinite or not a number make every test false
//          (!= true) and every angle or length what IEEE arithmetic gives. Lengths overflow to
//          infinity from components of about 1e154 on; unit vectors do not.
// Threads: a plain value.
// Cost:    three doubles; everything but rotate and mirror is inline.
#pragma once

#include <zo/config.h>
#include <zo/geometry/status.h>
#include <zo/geometry/tol.h>

#include <iosfwd>
#include <limits>
#include <numbers>

class ZoMatrix;
class ZoPlane;

class ZoVector {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr ZoVector() noexcept = default;
  constexpr ZoVector(double xx, double yy, double zz) noexcept : x(xx), y(yy), z(zz) {}

  // The component of index 0 to 2; a larger index counts as 2.
  [[nodiscard]] constexpr double& operator[](unsigned int index) noexcept {
    return index == 0 ? x : index == 1 ? y : z;
  }
  [[nodiscard]] constexpr const double& operator[](unsigned int index) const noexcept {
    return index == 0 ? x : index == 1 ? y : z;
  }
  // The components as an array of three.
  [[nodiscard]] double* asDblArray() noexcept { return reinterpret_cast<double*>(this); }
  [[nodiscard]] const double* asDblArray() const noexcept {
    return reinterpret_cast<const double*>(this);
  }

  constexpr ZoVector& operator+=(const ZoVector& v) noexcept {
    return *this = ZoVector(x + v.x, y + v.y, z + v.z);
  }
  constexpr ZoVector& operator-=(const ZoVector& v) noexcept {
    return *this = ZoVector(x - v.x, y - v.y, z - v.z);
  }
  constexpr ZoVector& operator*=(double s) noexcept {
    return *this = ZoVector(x * s, y * s, z * s);
  }
  // Each component is divided, so that it is rounded once.
  constexpr ZoVector& operator/=(double s) noexcept {
    return *this = ZoVector(x / s, y / s, z / s);
  }
  [[nodiscard]] constexpr ZoVector operator+(const ZoVector& v) const noexcept {
    return ZoVector(*this) += v;
  }
  [[nodiscard]] constexpr ZoVector operator-(const ZoVector& v) const noexcept {
    return ZoVector(*this) -= v;
  }
  [[nodiscard]] constexpr ZoVector operator*(double s) const noexcept {
    return ZoVector(*this) *= s;
  }
  [[nodiscard]] constexpr ZoVector operator/(double s) const noexcept {
    return ZoVector(*this) /= s;
  }
  [[nodiscard]] constexpr ZoVector operator-() const noexcept { return {-x, -y, -z}; }

  constexpr ZoVector& setToSum(const ZoVector& a, const ZoVector& b) noexcept {
    return *this = a + b;
  }
  constexpr ZoVector& setToProduct(const ZoVector& v, double s) noexcept { return *this = v * s; }
  constexpr ZoVector& setToProduct(const ZoMatrix& m, const ZoVector& v) noexcept;
  constexpr ZoVector& negate() noexcept { return *this = -*this; }

  [[nodiscard]] double length() const noexcept { return zo::squareRoot(lengthSqrd()); }
  [[nodiscard]] constexpr double lengthSqrd() const noexcept { return x * x + y * y + z * z; }
  [[nodiscard]] constexpr double dotProduct(const ZoVector& v) const noexcept {
    return x * v.x + y * v.y + z * v.z;
  }
  [[nodiscard]] constexpr ZoVector crossProduct(const ZoVector& v) const noexcept {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }

  // Scales to unit length: each component divided by the length. Returns 0, or 1 when the vector is
  // shorter than the default vector tolerance; it then stays as it is.
  [[nodiscard]] int normalize() noexcept { return normal(*this); }
  // The same, into `out`, which on 1 stays as it was.
  [[nodiscard]] int normal(ZoVector& out) const noexcept;

  // A vector perpendicular to this one: (z^2 - y, z^2 + x, -(x + y) z). Kept on purpose, though it
  // is zero for some vectors, such as (-1, 1, 1): test the length of the result.
  [[nodiscard]] constexpr ZoVector perpend() const noexcept {
    return {z * z - y, z * z + x, -(x + y) * z};
  }

  // 0 to pi: |atan2(|a x b|, a . b)|; 0 when one of them is zero.
  [[nodiscard]] double angleTo(const ZoVector& v) const noexcept {
    return std::abs(std::atan2(crossProduct(v).length(), dotProduct(v)));
  }
  // 0 to 2 pi, measured around `reference`: more than pi when the shorter turn from this to `v` is
  // against it, (a x b) . reference < -1e-10.
  [[nodiscard]] double dirAngleTo(const ZoVector& v, const ZoVector& reference) const noexcept {
    const double angle = angleTo(v);
    const bool against = crossProduct(v).dotProduct(reference) < -ZoTol::s_default.getVecTol();
    return against ? 2.0 * std::numbers::pi - angle : angle;
  }
  // pi/2 - angleTo(plane.normal()): positive on the normal's side.
  [[nodiscard]] ZO_COM_API double angleToPlane(const ZoPlane& plane) const noexcept;

  // What the matrix of the same name makes of this vector (zo/geometry/matrix.h). A mirror of
  // direction is the line along it; a plane counts by its normal only.
  ZO_COM_API ZoVector& rotate(const ZoVector& axis, double angle) noexcept;
  ZO_COM_API ZoVector& mirror(const ZoVector& direction) noexcept;
  ZO_COM_API ZoVector& mirror(const ZoPlane& plane) noexcept;
  constexpr ZoVector& transform(const ZoMatrix& matrix) noexcept;

  // Length at most the point tolerance.
  [[nodiscard]] constexpr bool isZeroLength(const ZoTol& tol = ZoTol::s_default) const noexcept {
    return zo::withinPntTol(lengthSqrd(), tol);
  }
  // |length^2 - 1| at most twice the point tolerance; the square is meant.
  [[nodiscard]] constexpr bool isUnitLength(const ZoTol& tol = ZoTol::s_default) const noexcept {
    return zo::magnitude(lengthSqrd() - 1.0) <= 2.0 * tol.getPntTol();
  }
  // Difference at most the vector tolerance.
  [[nodiscard]] constexpr bool isEqualTo(const ZoVector& v,
                                         const ZoTol& tol = ZoTol::s_default) const noexcept {
    return zo::withinVecTol((*this - v).lengthSqrd(), tol);
  }
  // The unit vectors differ by at most the vector tolerance. A vector shorter than the default
  // vector tolerance is co-directional and parallel to everything.
  [[nodiscard]] bool isCoDirectionalTo(const ZoVector& v,
                                       const ZoTol& tol = ZoTol::s_default) const noexcept {
    ZoVector a, b;
    if (normal(a) != ZoResult::ok || v.normal(b) != ZoResult::ok) return true;
    return a.isEqualTo(b, tol);
  }
  // Co-directional to `v` or to -v.
  [[nodiscard]] bool isParallelTo(const ZoVector& v,
                                  const ZoTol& tol = ZoTol::s_default) const noexcept {
    ZoVector a, b;
    if (normal(a) != ZoResult::ok || v.normal(b) != ZoResult::ok) return true;
    return a.isEqualTo(a.dotProduct(b) < 0.0 ? -b : b, tol);
  }
  // The angle to `v` is off pi/2 by at most the vector tolerance.
  [[nodiscard]] bool isPerpendTo(const ZoVector& v,
                                 const ZoTol& tol = ZoTol::s_default) const noexcept {
    return zo::magnitude(std::numbers::pi / 2.0 - angleTo(v)) <= tol.getVecTol();
  }

  // Equal: the difference is at most the default point tolerance d. Otherwise the first coordinate
  // that differs by more than d/3 orders them; none does: neither is less.
  [[nodiscard]] constexpr bool operator==(const ZoVector& v) const noexcept {
    return zo::withinPntTol((*this - v).lengthSqrd());
  }
  [[nodiscard]] constexpr bool operator<(const ZoVector& v) const noexcept {
    return zo::orderOf(x - v.x, y - v.y, z - v.z) < 0;
  }
  [[nodiscard]] constexpr bool operator>(const ZoVector& v) const noexcept {
    return zo::orderOf(x - v.x, y - v.y, z - v.z) > 0;
  }

  static const ZoVector s_xAxis;
  static const ZoVector s_yAxis;
  static const ZoVector s_zAxis;
  static const ZoVector s_negXAxis;
  static const ZoVector s_negYAxis;
  static const ZoVector s_negZAxis;
};

inline constexpr ZoVector ZoVector::s_xAxis{1.0, 0.0, 0.0};
inline constexpr ZoVector ZoVector::s_yAxis{0.0, 1.0, 0.0};
inline constexpr ZoVector ZoVector::s_zAxis{0.0, 0.0, 1.0};
inline constexpr ZoVector ZoVector::s_negXAxis{-1.0, 0.0, 0.0};
inline constexpr ZoVector ZoVector::s_negYAxis{0.0, -1.0, 0.0};
inline constexpr ZoVector ZoVector::s_negZAxis{0.0, 0.0, -1.0};

static_assert(sizeof(ZoVector) == 24);

[[nodiscard]] constexpr ZoVector operator*(double s, const ZoVector& v) noexcept { return v * s; }

// "(1, 2, 3)". All geometry prints with the stream's precision and float format, its width applied
// to the whole, and a decimal point in every locale.
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoVector& v);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoVector& v);

inline int ZoVector::normal(ZoVector& out) const noexcept {
  const double squaredLength = lengthSqrd();
  if (squaredLength < zo::squared(ZoTol::s_default.getVecTol())) return ZoResult::refused;
  if (squaredLength > (std::numeric_limits<double>::max)()) {
    // The square overflows: divide by a power of two first, which loses nothing.
    const ZoVector scaled = *this * 0x1p-600;
    out = scaled / scaled.length();
  } else {
    out = *this / zo::squareRoot(squaredLength);
  }
  return ZoResult::ok;
}
