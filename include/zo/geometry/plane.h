// Planes: a reference point and a normal, which gives the plane its positive side.
//
// The normal is kept as given, of any length; distances are measured along its unit vector.
//
// Errors:  nothing throws. The set functions return ZoResult codes and change nothing unless they
//          return 0. The constructors cannot refuse: collinear points or parallel directions leave
//          a normal of zero length, for which every distance is 0.
// Threads: a plain value.
// Stored:  unit normal and signed distance of the origin, hence not the reference point.
#pragma once

#include <zo/config.h>
#include <zo/geometry/point.h>
#include <zo/geometry/status.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>

#include <iosfwd>
#include <limits>
#include <span>

class ZoPlane {
 public:
  // Through the origin, normal +Z.
  constexpr ZoPlane() noexcept = default;
  // A normal of zero length becomes +Z.
  constexpr ZoPlane(const ZoPoint& p, const ZoVector& n) noexcept
      : ref_(p.x, p.y, p.z), normal_(n.isZeroLength() ? ZoVector::s_zAxis : n) {}
  // Normal (p2 - p1) x (p3 - p1), where a first difference of zero length counts as +X and a second
  // one as +Y.
  constexpr ZoPlane(const ZoPoint& p1, const ZoPoint& p2, const ZoPoint& p3) noexcept
      : ZoPlane(p1, orAxis(p2 - p1, ZoVector::s_xAxis), orAxis(p3 - p1, ZoVector::s_yAxis)) {}
  // Normal u x v.
  constexpr ZoPlane(const ZoPoint& p, const ZoVector& u, const ZoVector& v) noexcept
      : ref_(p.x, p.y, p.z), normal_(u.crossProduct(v)) {}

  [[nodiscard]] constexpr const ZoPoint& refPoint() const noexcept { return ref_; }
  [[nodiscard]] constexpr const ZoVector& normal() const noexcept { return normal_; }

  // Through the origin, perpendicular to the axis X, Y or Z of either case. Returns 0, or 1 for any
  // other character.
  [[nodiscard]] ZO_COM_API int set(wchar_t axis) noexcept;
  // These return 0, or 3 when a direction that they are given or compute is of zero length or not a
  // number.
  [[nodiscard]] ZO_COM_API int set(const ZoPoint& p, const ZoVector& n) noexcept;
  [[nodiscard]] ZO_COM_API int set(const ZoPoint& p1, const ZoPoint& p2,
                                   const ZoPoint& p3) noexcept;
  [[nodiscard]] ZO_COM_API int set(const ZoPoint& p, const ZoVector& u, const ZoVector& v) noexcept;
  // The plane a x + b y + c z + d = 0. Its normal is of unit length, its reference point the one
  // nearest to the origin.
  [[nodiscard]] ZO_COM_API int set(double a, double b, double c, double d) noexcept;

  // Positive on the normal's side. 0 when the normal is shorter than the default vector tolerance.
  [[nodiscard]] double signedDistanceTo(const ZoPoint& q) const noexcept {
    // Root and divisions stand before any test, so that they leave a loop over points.
    const double squaredLength = normal_.lengthSqrd();
    ZoVector unit = normal_ / zo::squareRoot(squaredLength);
    const double distance = (q - ref_).dotProduct(unit);
    const bool usual = squaredLength >= zo::squared(ZoTol::s_default.getVecTol()) &&
                       squaredLength <= (std::numeric_limits<double>::max)();
    if (usual) [[likely]]
      return distance;
    return normal_.normal(unit) == ZoResult::ok ? (q - ref_).dotProduct(unit) : 0.0;
  }
  // The same for many points: distances[i] for points[i], as many as both have room for.
  ZO_COM_API void signedDistancesTo(std::span<const ZoPoint> points,
                                    std::span<double> distances) const noexcept;
  // Within the point tolerance of the reference point or of the plane.
  [[nodiscard]] bool isOnPlane(const ZoPoint& q,
                               const ZoTol& tol = ZoTol::s_default) const noexcept {
    return q.isEqualTo(ref_, tol) || zo::magnitude(signedDistanceTo(q)) <= tol.getPntTol();
  }
  // The normals are co-directional, and the other's reference point is within the point tolerance
  // of this plane.
  [[nodiscard]] bool isEqualTo(const ZoPlane& other,
                               const ZoTol& tol = ZoTol::s_default) const noexcept {
    return normal_.isCoDirectionalTo(other.normal_, tol) &&
           zo::magnitude(signedDistanceTo(other.ref_)) <= tol.getPntTol();
  }
  // Parallel to the normal under the default tolerance.
  [[nodiscard]] bool isNormal(const ZoVector& v) const noexcept { return v.isParallelTo(normal_); }

  // The projection onto the plane along `direction`: q - d (q - ref).n / d.n, and for a vector
  // v - d v.n / d.n, with unit direction d and normal n. The result always lies in the plane: a
  // direction of zero length, or parallel to the plane (|d.n| at most the default vector
  // tolerance), projects along the normal. Without a normal the argument comes back.
  [[nodiscard]] ZO_COM_API ZoPoint getProjection(const ZoPoint& q,
                                                 const ZoVector& direction) const noexcept;
  [[nodiscard]] ZO_COM_API ZoVector getProjection(const ZoVector& v,
                                                  const ZoVector& direction) const noexcept;

  // The line that both planes share: its point nearest to this plane's reference point, and the
  // unit vector along n1 x n2. False, with both out-parameters as they were, when the normals are
  // parallel under `tol`.
  [[nodiscard]] ZO_COM_API bool intersectWith(const ZoPlane& other, ZoPoint& point,
                                              ZoVector& direction,
                                              const ZoTol& tol = ZoTol::s_default) const noexcept;

  // Through the origin, by the direction of the normal.
  static const ZoPlane s_normalZ;
  static const ZoPlane s_normalX;
  static const ZoPlane s_normalY;
  static const ZoPlane s_normalNegZ;
  static const ZoPlane s_normalNegX;
  static const ZoPlane s_normalNegY;

 private:
  [[nodiscard]] static constexpr ZoVector orAxis(const ZoVector& v, const ZoVector& axis) noexcept {
    return v.isZeroLength() ? axis : v;
  }

  ZoPoint ref_;
  ZoVector normal_{0.0, 0.0, 1.0};
};

inline constexpr ZoPlane ZoPlane::s_normalZ{ZoPoint(), ZoVector::s_zAxis};
inline constexpr ZoPlane ZoPlane::s_normalX{ZoPoint(), ZoVector::s_xAxis};
inline constexpr ZoPlane ZoPlane::s_normalY{ZoPoint(), ZoVector::s_yAxis};
inline constexpr ZoPlane ZoPlane::s_normalNegZ{ZoPoint(), ZoVector::s_negZAxis};
inline constexpr ZoPlane ZoPlane::s_normalNegX{ZoPoint(), ZoVector::s_negXAxis};
inline constexpr ZoPlane ZoPlane::s_normalNegY{ZoPoint(), ZoVector::s_negYAxis};

static_assert(sizeof(ZoPlane) == 56);

// "RefPnt(0, 0, 0) Normal(0, 0, 1)"
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoPlane& plane);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoPlane& plane);
