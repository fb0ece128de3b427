#include <zo/geometry/co_system.h>
#include <zo/geometry/matrix.h>
#include <zo/geometry/plane.h>

namespace {

// The linear map diagonal * I + skew * [u]× + dyad * u uᵀ that leaves `fixed` where it is. With a
// unit vector u, every rotation and mirror is one of these.
ZoMatrix aboutPoint(const ZoPoint& fixed, const ZoVector& u, double diagonal, double skew,
                    double dyad) noexcept {
  const ZoVector d = u * dyad;
  const ZoVector s = u * skew;
  ZoMatrix m({diagonal + d.x * u.x, d.x * u.y - s.z, d.x * u.z + s.y, 0.0,  //
              d.y * u.x + s.z, diagonal + d.y * u.y, d.y * u.z - s.x, 0.0,  //
              d.z * u.x - s.y, d.z * u.y + s.x, diagonal + d.z * u.z, 0.0,  //
              0.0, 0.0, 0.0, 1.0});
  const ZoVector center = fixed - ZoPoint();
  return m.setTranslation(center - m * center);
}

// Whether `v` has a direction; `unit` is then its unit vector.
bool unitVector(const ZoVector& v, ZoVector& unit) noexcept {
  return !v.isZeroLength() && v.normal(unit) == ZoResult::ok;
}

}  // namespace

ZoMatrix& ZoMatrix::rotate(const ZoVector& axis, double angle) noexcept {
  return rotate(ZoPoint(), axis, angle);
}

ZoMatrix& ZoMatrix::rotate(const ZoPoint& center, const ZoVector& axis, double angle) noexcept {
  ZoVector u;
  if (!unitVector(axis, u)) return setToIdentity();
  // 1 - cos loses all digits at small angles; 2 sin² of the half keeps them.
  const double half = std::sin(angle / 2.0);
  return *this = aboutPoint(center, u, std::cos(angle), std::sin(angle), 2.0 * half * half);
}

ZoMatrix& ZoMatrix::mirror(const ZoPoint& onLine, const ZoVector& direction) noexcept {
  ZoVector u;
  if (!unitVector(direction, u)) return setToIdentity();
  return *this = aboutPoint(onLine, u, -1.0, 0.0, 2.0);
}

ZoMatrix& ZoMatrix::mirror(const ZoPlane& plane) noexcept {
  ZoVector u;
  if (!unitVector(plane.normal(), u)) return setToIdentity();
  return *this = aboutPoint(plane.refPoint(), u, 1.0, 0.0, -2.0);
}

ZoMatrix& ZoMatrix::setToAlignCoordSys(const ZoPoint& origin1, const ZoVector& x1,
                                       const ZoVector& y1, const ZoVector& z1,
                                       const ZoPoint& origin2, const ZoVector& x2,
                                       const ZoVector& y2, const ZoVector& z2) noexcept {
  ZoMatrix first, second;
  if (first.setCoordSystem(origin1, x1, y1, z1).invert() != ZoResult::ok) return setToIdentity();
  return *this = second.setCoordSystem(origin2, x2, y2, z2) * first;
}

ZoMatrix& ZoMatrix::setPlaneToWorld(const ZoVector& normal) noexcept {
  return *this = ZoCoSystem(ZoPoint(), normal).toWorld();
}

ZoMatrix& ZoMatrix::setWorldToPlane(const ZoVector& normal) noexcept {
  return setPlaneToWorld(normal).transpose();
}

ZoPoint ZoMatrix::projectiveImage(const ZoPoint& p) const noexcept {
  const double weight = m_[12] * p.x + m_[13] * p.y + m_[14] * p.z + m_[15] * p.w;
  return affineImage(p) / weight;
}

int ZoMatrix::decompose(ZoVector& translation, ZoMatrix& rotation, ZoVector& scale,
                        const ZoTol& tol) const noexcept {
  const bool projective =
      !(ZoVector(m_[12], m_[13], m_[14]).lengthSqrd() <= zo::squared(tol.getVecTol())) ||
      !(zo::magnitude(m_[15] - 1.0) <= tol.getVecTol());
  if (projective) return ZoResult::degenerate;
  const ZoVector columns[3] = {
      {m_[0], m_[4], m_[8]}, {m_[1], m_[5], m_[9]}, {m_[2], m_[6], m_[10]}};
  ZoVector axes[3];
  for (unsigned int i = 0; i < 3; ++i) {
    if (!unitVector(columns[i], axes[i])) return ZoResult::degenerate;
  }
  for (unsigned int i = 0; i < 3; ++i) {
    const double cosine = axes[i].dotProduct(axes[(i + 1) % 3]);
    if (!(zo::magnitude(cosine) <= tol.getVecTol())) return ZoResult::degenerate;
  }
  const double sign = axes[0].crossProduct(axes[1]).dotProduct(axes[2]) < 0.0 ? -1.0 : 1.0;
  const ZoVector moved = this->translation();  // `rotation` may be this matrix
  scale = ZoVector(columns[0].length(), columns[1].length(), columns[2].length()) * sign;
  rotation.setCoordSystem(ZoPoint(), axes[0] * sign, axes[1] * sign, axes[2] * sign);
  translation = moved;
  return ZoResult::ok;
}
