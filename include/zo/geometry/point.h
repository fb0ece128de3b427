// Points: a position in space.
//
// A fourth number, the homogeneous weight w, is 1 from construction on, and every operation leaves
// it so; only the product with a matrix reads it. Comparison is as for vectors
// (zo/geometry/vector.h).
//
// Errors:  nothing throws; infinities and NaN as for vectors.
// Threads: a plain value.
// Stored:  x, y and z only.
#pragma once

#include <zo/config.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>

#include <iosfwd>

class ZoPoint {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double w = 1.0;

  // The origin.
  constexpr ZoPoint() noexcept = default;
  constexpr ZoPoint(double xx, double yy, double zz) noexcept : x(xx), y(yy), z(zz) {}
  // The point to which the vector leads from the origin.
  constexpr explicit ZoPoint(const ZoVector& v) noexcept : x(v.x), y(v.y), z(v.z) {}
  constexpr ZoPoint& operator=(const ZoVector& v) noexcept { return *this = ZoPoint(v); }

  // The coordinate of index 0 to 2; a larger index counts as 2.
  [[nodiscard]] constexpr double& operator[](unsigned int index) noexcept {
    return index == 0 ? x : index == 1 ? y : z;
  }
  [[nodiscard]] constexpr const double& operator[](unsigned int index) const noexcept {
    return index == 0 ? x : index == 1 ? y : z;
  }
  // x, y, z and w as an array.
  [[nodiscard]] double* asDblArray() noexcept { return reinterpret_cast<double*>(this); }
  [[nodiscard]] const double* asDblArray() const noexcept {
    return reinterpret_cast<const double*>(this);
  }

  [[nodiscard]] constexpr ZoPoint operator+(const ZoVector& v) const noexcept {
    return {x + v.x, y + v.y, z + v.z};
  }
  [[nodiscard]] constexpr ZoPoint operator-(const ZoVector& v) const noexcept {
    return {x - v.x, y - v.y, z - v.z};
  }
  [[nodiscard]] constexpr ZoVector operator-(const ZoPoint& p) const noexcept {
    return {x - p.x, y - p.y, z - p.z};
  }
  // Coordinate by coordinate, as midpoints and weighted means need it.
  [[nodiscard]] constexpr ZoPoint operator+(const ZoPoint& p) const noexcept {
    return {x + p.x, y + p.y, z + p.z};
  }
  [[nodiscard]] constexpr ZoPoint operator*(double s) const noexcept {
    return {x * s, y * s, z * s};
  }
  [[nodiscard]] constexpr ZoPoint operator/(double s) const noexcept {
    return {x / s, y / s, z / s};
  }
  [[nodiscard]] constexpr ZoPoint operator-() const noexcept { return {-x, -y, -z}; }
  constexpr ZoPoint& operator+=(const ZoVector& v) noexcept { return *this = *this + v; }
  constexpr ZoPoint& operator-=(const ZoVector& v) noexcept { return *this = *this - v; }
  constexpr ZoPoint& operator+=(const ZoPoint& p) noexcept { return *this = *this + p; }
  constexpr ZoPoint& operator*=(double s) noexcept { return *this = *this * s; }
  constexpr ZoPoint& operator/=(double s) noexcept { return *this = *this / s; }

  constexpr ZoPoint& setToSum(const ZoPoint& p, const ZoVector& v) noexcept {
    return *this = p + v;
  }
  constexpr ZoPoint& setToSum(const ZoPoint& a, const ZoPoint& b) noexcept { return *this = a + b; }
  constexpr ZoPoint& setToProduct(const ZoPoint& p, double s) noexcept { return *this = p * s; }
  constexpr ZoPoint& setToProduct(const ZoMatrix& m, const ZoPoint& p) noexcept;
  constexpr ZoPoint& negate() noexcept { return *this = -*this; }

  constexpr ZoPoint& translate(const ZoVector& v) noexcept { return *this += v; }
  // What the matrix of the same name makes of this point (zo/geometry/matrix.h).
  constexpr ZoPoint& transform(const ZoMatrix& matrix) noexcept;
  ZO_COM_API ZoPoint& rotate(const ZoPoint& center, const ZoVector& axis, double angle) noexcept;
  ZO_COM_API ZoPoint& mirror(const ZoPoint& center) noexcept;
  ZO_COM_API ZoPoint& mirror(const ZoPoint& onLine, const ZoVector& direction) noexcept;
  ZO_COM_API ZoPoint& mirror(const ZoPlane& plane) noexcept;

  [[nodiscard]] double distance(const ZoPoint& p) const noexcept { return (*this - p).length(); }
  [[nodiscard]] constexpr double distanceSqrd(const ZoPoint& p) const noexcept {
    return (*this - p).lengthSqrd();
  }
  // Distance at most the point tolerance.
  [[nodiscard]] constexpr bool isEqualTo(const ZoPoint& p,
                                         const ZoTol& tol = ZoTol::s_default) const noexcept {
    return zo::withinPntTol(distanceSqrd(p), tol);
  }
  [[nodiscard]] constexpr bool isOrigin(const ZoTol& tol = ZoTol::s_default) const noexcept {
    return isEqualTo(ZoPoint(), tol);
  }

  [[nodiscard]] constexpr bool operator==(const ZoPoint& p) const noexcept { return isEqualTo(p); }
  [[nodiscard]] constexpr bool operator<(const ZoPoint& p) const noexcept {
    return zo::orderOf(x - p.x, y - p.y, z - p.z) < 0;
  }
  [[nodiscard]] constexpr bool operator>(const ZoPoint& p) const noexcept {
    return zo::orderOf(x - p.x, y - p.y, z - p.z) > 0;
  }
};

static_assert(sizeof(ZoPoint) == 32);

[[nodiscard]] constexpr ZoPoint operator*(double s, const ZoPoint& p) noexcept { return p * s; }

// "(1, 2, 3)"
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoPoint& p);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoPoint& p);
