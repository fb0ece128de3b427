// Tolerances: how far apart two points, and two directions, may be and still count as the same.
//
// The default tolerance is a constant: operators and every operation that is given no tolerance use
// it, so that the same program always computes the same. The process-wide tolerance that a client
// can change is a value of its own, held by the registry; pass it where it is to count.
//
// Errors:  none. A tolerance that is not a number makes every test fail.
// Threads: a plain value.
// Stored:  point tolerance, then vector tolerance; two doubles.
#pragma once

#include <zo/config.h>
#include <zo/geometry/scalar.h>

#include <initializer_list>
#include <iosfwd>

class ZoTol {
 public:
  // 1e-10 and 1e-10.
  constexpr ZoTol() noexcept = default;
  // The signs do not count.
  constexpr ZoTol(double pointTolerance, double vectorTolerance) noexcept
      : pnt_(zo::magnitude(pointTolerance)), vec_(zo::magnitude(vectorTolerance)) {}

  // Distance within which points are the same, in the units of their coordinates.
  [[nodiscard]] constexpr double getPntTol() const noexcept { return pnt_; }
  // Difference within which unit vectors are the same; for small angles the angle in radians.
  [[nodiscard]] constexpr double getVecTol() const noexcept { return vec_; }

  // Exact.
  [[nodiscard]] friend constexpr bool operator==(const ZoTol&, const ZoTol&) noexcept = default;

  static const ZoTol s_default;

 private:
  double pnt_ = 1e-10;
  double vec_ = 1e-10;
};

inline constexpr ZoTol ZoTol::s_default{};

static_assert(sizeof(ZoTol) == 16);

// "1e-10(Pnt) 1e-10(Vec)"
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoTol& tol);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoTol& tol);

namespace zo {

// Whether a difference with this squared length counts as none. NaN does not.
[[nodiscard]] constexpr bool withinPntTol(double squaredLength,
                                          const ZoTol& tol = ZoTol::s_default) noexcept {
  return squaredLength <= squared(tol.getPntTol());
}

[[nodiscard]] constexpr bool withinVecTol(double squaredLength,
                                          const ZoTol& tol = ZoTol::s_default) noexcept {
  return squaredLength <= squared(tol.getVecTol());
}

// The order of two values by their coordinates' differences: -1, 0 or 1. Differences within the
// tolerance as a whole, or within a third of it in each coordinate, are none.
[[nodiscard]] constexpr int orderOf(double dx, double dy, double dz) noexcept {
  if (withinPntTol(dx * dx + dy * dy + dz * dz)) return 0;
  const double threshold = ZoTol::s_default.getPntTol() / 3.0;
  for (const double difference : {dx, dy, dz}) {
    if (difference > threshold) return 1;
    if (difference < -threshold) return -1;
  }
  return 0;
}

}  // namespace zo
