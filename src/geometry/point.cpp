#include <zo/geometry/matrix.h>
#include <zo/geometry/plane.h>
#include <zo/geometry/point.h>

ZoPoint& ZoPoint::rotate(const ZoPoint& center, const ZoVector& axis, double angle) noexcept {
  return transform(ZoMatrix().rotate(center, axis, angle));
}

ZoPoint& ZoPoint::mirror(const ZoPoint& center) noexcept {
  return transform(ZoMatrix().mirror(center));
}

ZoPoint& ZoPoint::mirror(const ZoPoint& onLine, const ZoVector& direction) noexcept {
  return transform(ZoMatrix().mirror(onLine, direction));
}

ZoPoint& ZoPoint::mirror(const ZoPlane& plane) noexcept {
  return transform(ZoMatrix().mirror(plane));
}
