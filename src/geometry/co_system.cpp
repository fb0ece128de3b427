#include <zo/geometry/co_system.h>

namespace {

// Whether `v` has a length by the default tolerance; `unit` is then its unit vector.
bool unitVector(const ZoVector& v, ZoVector& unit) noexcept {
  return v.lengthSqrd() > zo::squared(ZoTol::s_default.getPntTol()) &&
         v.normal(unit) == ZoResult::ok;
}

}  // namespace

int ZoCoSystem::set(const ZoPoint& origin, const ZoVector& x, const ZoVector& y) noexcept {
  ZoVector unitX, unitY, unitZ;
  if (!unitVector(x, unitX) || !unitVector(y, unitY) ||
      !unitVector(unitX.crossProduct(unitY), unitZ)) {
    return ZoResult::degenerate;
  }
  origin_ = ZoPoint(origin.x, origin.y, origin.z);
  x_ = unitX;
  y_ = unitZ.crossProduct(unitX);
  z_ = unitZ;
  degeneracy_ = 0.0;
  return ZoResult::ok;
}

ZoCoSystem ZoCoSystem::fromAxes(const ZoPoint& origin, const ZoVector& x,
                                const ZoVector& y) noexcept {
  constexpr double kRounding = 1e-14;
  ZoCoSystem system(origin, x, y);
  if (zo::magnitude(x.lengthSqrd() - 1.0) <= kRounding &&
      zo::magnitude(y.lengthSqrd() - 1.0) <= kRounding &&
      zo::magnitude(x.dotProduct(y)) <= kRounding) {
    system.x_ = x;
    system.y_ = y;
  }
  return system;
}

int ZoCoSystem::set(const ZoPoint& origin, const ZoVector& z) noexcept {
  // The number is the rule's own: exact in binary, and every program must use the same.
  constexpr double nearAxis = 1.0 / 64.0;
  ZoVector unitZ, unitX;
  if (!unitVector(z, unitZ)) return ZoResult::degenerate;
  const bool nearWorldZ = zo::magnitude(unitZ.x) < nearAxis && zo::magnitude(unitZ.y) < nearAxis;
  const ZoVector& world = nearWorldZ ? ZoVector::s_yAxis : ZoVector::s_zAxis;
  if (!unitVector(world.crossProduct(unitZ), unitX)) return ZoResult::degenerate;
  origin_ = ZoPoint(origin.x, origin.y, origin.z);
  x_ = unitX;
  y_ = unitZ.crossProduct(unitX);
  z_ = unitZ;
  degeneracy_ = 0.0;
  return ZoResult::ok;
}

int ZoCoSystem::set(const ZoPoint& origin, const ZoPoint& onX, const ZoPoint& onY) noexcept {
  return set(origin, onX - origin, onY - origin);
}
