#include <zo/geometry/matrix.h>
#include <zo/geometry/plane.h>
#include <zo/geometry/vector.h>

double ZoVector::angleToPlane(const ZoPlane& plane) const noexcept {
  return std::numbers::pi / 2.0 - angleTo(plane.normal());
}

ZoVector& ZoVector::rotate(const ZoVector& axis, double angle) noexcept {
  return transform(ZoMatrix().rotate(axis, angle));
}

ZoVector& ZoVector::mirror(const ZoVector& direction) noexcept {
  return transform(ZoMatrix().mirror(ZoPoint(), direction));
}

ZoVector& ZoVector::mirror(const ZoPlane& plane) noexcept {
  return transform(ZoMatrix().mirror(plane));
}
