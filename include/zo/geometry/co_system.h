// Coordinate systems: an origin and three perpendicular unit axes, right-handed.
//
// Set-up from x and y: X is the unit vector of x, Z that of X x y, Y = Z x X; so X keeps its
// direction and y says only on which side Y lies. Set-up from z alone: Z is its unit vector, and X
// and Y follow the arbitrary-axis rule of drawing interchange files: where Z is within 1/64 of the
// world's Z axis in both of its other components, X is along world Y x Z, otherwise along
// world Z x Z; Y = Z x X. The same normal so always gives the same system.
//
// Errors:  set returns ZoResult codes and changes nothing unless it returns 0. A constructor whose
//          axes are degenerate makes the world's system and marks it: degeneracy() is then
//          s_degenerate instead of 0.
// Threads: a plain value.
// Stored:  origin, X axis, Y axis.
#pragma once

#include <zo/config.h>
#include <zo/geometry/matrix.h>
#include <zo/geometry/point.h>
#include <zo/geometry/vector.h>

#include <iosfwd>

class ZoCoSystem {
 public:
  // The world's system.
  constexpr ZoCoSystem() noexcept = default;
  ZoCoSystem(const ZoPoint& origin, const ZoVector& x, const ZoVector& y) noexcept {
    markUnless(set(origin, x, y));
  }
  ZoCoSystem(const ZoPoint& origin, const ZoVector& z) noexcept { markUnless(set(origin, z)); }
  // x from `origin` to `onX`, y from `origin` to `onY`.
  ZoCoSystem(const ZoPoint& origin, const ZoPoint& onX, const ZoPoint& onY) noexcept {
    markUnless(set(origin, onX, onY));
  }

  // The system with just these X and Y axes when they are perpendicular unit vectors but for
  // rounding, as those of any system are; otherwise that of the first constructor.
  [[nodiscard]] static ZO_COM_API ZoCoSystem fromAxes(const ZoPoint& origin, const ZoVector& x,
                                                      const ZoVector& y) noexcept;

  // Return 0, or 3 when an axis is of zero length or not a number, or x and y are parallel.
  [[nodiscard]] ZO_COM_API int set(const ZoPoint& origin, const ZoVector& x,
                                   const ZoVector& y) noexcept;
  [[nodiscard]] ZO_COM_API int set(const ZoPoint& origin, const ZoVector& z) noexcept;
  [[nodiscard]] ZO_COM_API int set(const ZoPoint& origin, const ZoPoint& onX,
                                   const ZoPoint& onY) noexcept;

  [[nodiscard]] constexpr const ZoPoint& origin() const noexcept { return origin_; }
  [[nodiscard]] constexpr const ZoVector& xAxis() const noexcept { return x_; }
  [[nodiscard]] constexpr const ZoVector& yAxis() const noexcept { return y_; }
  [[nodiscard]] constexpr const ZoVector& zAxis() const noexcept { return z_; }
  // 0, or s_degenerate for the system that a constructor fell back to.
  [[nodiscard]] constexpr double degeneracy() const noexcept { return degeneracy_; }

  // From coordinates in this system to the world's, and back.
  [[nodiscard]] constexpr ZoMatrix toWorld() const noexcept {
    return ZoMatrix().setCoordSystem(origin_, x_, y_, z_);
  }
  [[nodiscard]] constexpr ZoMatrix fromWorld() const noexcept {
    const ZoVector o = origin_ - ZoPoint();
    return ZoMatrix({x_.x, x_.y, x_.z, -x_.dotProduct(o),  //
                     y_.x, y_.y, y_.z, -y_.dotProduct(o),  //
                     z_.x, z_.y, z_.z, -z_.dotProduct(o),  //
                     0.0, 0.0, 0.0, 1.0});
  }

  // The tolerance that the axes fell short of.
  static constexpr double s_degenerate = ZoTol::s_default.getPntTol();

 private:
  constexpr void markUnless(int result) noexcept {
    if (result != ZoResult::ok) degeneracy_ = s_degenerate;
  }

  ZoPoint origin_;
  ZoVector x_{1.0, 0.0, 0.0};
  ZoVector y_{0.0, 1.0, 0.0};
  ZoVector z_{0.0, 0.0, 1.0};
  double degeneracy_ = 0.0;
};

static_assert(sizeof(ZoCoSystem) == 112);

// "Origin(0, 0, 0) X-Axis(1, 0, 0) Y-Axis(0, 1, 0) Z-Axis(0, 0, 1)"
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoCoSystem& system);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoCoSystem& system);
