#include <zo/geometry/plane.h>

#include <algorithm>

namespace {

// Whether `v` has a length by the default tolerance; NaN has none.
bool hasLength(const ZoVector& v) noexcept {
  return v.lengthSqrd() > zo::squared(ZoTol::s_default.getPntTol());
}

// How far to go along `direction`, which becomes what is to be gone along, for one unit of height
// over the plane with unit normal `unit`.
double stepPerHeight(ZoVector& direction, const ZoVector& unit) noexcept {
  ZoVector along;
  const bool given = hasLength(direction) && direction.normal(along) == ZoResult::ok;
  const bool meetsPlane =
      given && zo::magnitude(along.dotProduct(unit)) > ZoTol::s_default.getVecTol();
  direction = meetsPlane ? along : unit;
  return 1.0 / direction.dotProduct(unit);
}

}  // namespace

int ZoPlane::set(wchar_t axis) noexcept {
  switch (axis) {
    case L'X':
    case L'x':
      *this = s_normalX;
      return ZoResult::ok;
    case L'Y':
    case L'y':
      *this = s_normalY;
      return ZoResult::ok;
    case L'Z':
    case L'z':
      *this = s_normalZ;
      return ZoResult::ok;
    default:
      return ZoResult::invalidArgument;
  }
}

int ZoPlane::set(const ZoPoint& p, const ZoVector& n) noexcept {
  if (!hasLength(n)) return ZoResult::degenerate;
  *this = ZoPlane(p, n);
  return ZoResult::ok;
}

int ZoPlane::set(const ZoPoint& p1, const ZoPoint& p2, const ZoPoint& p3) noexcept {
  return set(p1, p2 - p1, p3 - p1);
}

int ZoPlane::set(const ZoPoint& p, const ZoVector& u, const ZoVector& v) noexcept {
  if (!hasLength(u) || !hasLength(v)) return ZoResult::degenerate;
  return set(p, u.crossProduct(v));
}

int ZoPlane::set(double a, double b, double c, double d) noexcept {
  const ZoVector normal(a, b, c);
  ZoVector unit;
  if (!hasLength(normal) || normal.normal(unit) != ZoResult::ok) return ZoResult::degenerate;
  *this = ZoPlane(ZoPoint() + unit * (-d / normal.length()), unit);
  return ZoResult::ok;
}

void ZoPlane::signedDistancesTo(std::span<const ZoPoint> points,
                                std::span<double> distances) const noexcept {
  ZoVector unit;
  if (normal_.normal(unit) != ZoResult::ok) unit = ZoVector();
  const ZoPoint ref = ref_;
  const std::size_t count = std::min(points.size(), distances.size());
  for (std::size_t i = 0; i < count; ++i) distances[i] = (points[i] - ref).dotProduct(unit);
}

ZoPoint ZoPlane::getProjection(const ZoPoint& q, const ZoVector& direction) const noexcept {
  ZoVector unit, along = direction;
  if (normal_.normal(unit) != ZoResult::ok) return q;
  const double step = stepPerHeight(along, unit);
  return q - along * ((q - ref_).dotProduct(unit) * step);
}

ZoVector ZoPlane::getProjection(const ZoVector& v, const ZoVector& direction) const noexcept {
  ZoVector unit, along = direction;
  if (normal_.normal(unit) != ZoResult::ok) return v;
  const double step = stepPerHeight(along, unit);
  return v - along * (v.dotProduct(unit) * step);
}

bool ZoPlane::intersectWith(const ZoPlane& other, ZoPoint& point, ZoVector& direction,
                            const ZoTol& tol) const noexcept {
  if (normal_.isParallelTo(other.normal_, tol)) return false;
  ZoVector n1, n2, along;
  if (normal_.normal(n1) != ZoResult::ok || other.normal_.normal(n2) != ZoResult::ok ||
      n1.crossProduct(n2).normal(along) != ZoResult::ok) {
    return false;
  }
  // From this plane's reference point at a right angle to the line, within this plane.
  const ZoVector across = along.crossProduct(n1);
  const double step = -(ref_ - other.ref_).dotProduct(n2) / across.dotProduct(n2);
  point = ref_ + across * step;
  direction = along;
  return true;
}
