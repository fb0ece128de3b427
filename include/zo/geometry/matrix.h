// Matrices: 4x4 homogeneous transformations.
//
// Points and vectors are columns, multiplied from the right: (a * b) * p does b first. The
// translation is the fourth column; elements lie row by row. A point is divided by the weight that
// a projective matrix gives it; a vector takes the upper left 3x3 part only. Angles are radians,
// turns follow the right-hand rule; docs/geometry.md holds the formulas.
//
// Errors:  nothing throws. The setters replace the whole matrix and return it; where what they are
//          given leaves no transformation (an axis of zero length, a singular coordinate system)
//          it becomes the identity. Operations that can fail return ZoResult codes.
// Threads: a plain value.
// Cost:    sixteen doubles. Product and transformation are inline, on SSE2 where there is one.
// Stored:  sixteen doubles, row by row.
#pragma once

#include <zo/config.h>
#include <zo/geometry/point.h>
#include <zo/geometry/status.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>

#include <bit>
#include <cstddef>
#include <iosfwd>
#include <limits>
#include <span>
#include <type_traits>

class ZoMatrix {
 public:
  // The identity.
  constexpr ZoMatrix() noexcept
      : m_{1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0} {}
  constexpr explicit ZoMatrix(const double (&rowByRow)[16]) noexcept {
    for (unsigned int i = 0; i < 16; ++i) m_[i] = rowByRow[i];
  }

  // Indices are 0 to 3; of larger ones the two lowest bits count.
  [[nodiscard]] constexpr double& operator()(unsigned int row, unsigned int column) noexcept {
    return m_[(row & 3) * 4 + (column & 3)];
  }
  [[nodiscard]] constexpr double operator()(unsigned int row, unsigned int column) const noexcept {
    return m_[(row & 3) * 4 + (column & 3)];
  }
  // The sixteen elements, row by row.
  [[nodiscard]] constexpr double* asDblArray() noexcept { return m_; }
  [[nodiscard]] constexpr const double* asDblArray() const noexcept { return m_; }

  constexpr ZoMatrix& setToIdentity() noexcept { return *this = ZoMatrix(); }
  constexpr ZoMatrix& setToTranslation(const ZoVector& v) noexcept {
    return setToIdentity().setTranslation(v);
  }
  constexpr ZoMatrix& setToTranslation(const ZoPoint& p) noexcept {
    return setToTranslation(p - ZoPoint());
  }
  // The fourth column's upper three elements only; the rest stays.
  constexpr ZoMatrix& setTranslation(const ZoVector& v) noexcept {
    m_[3] = v.x;
    m_[7] = v.y;
    m_[11] = v.z;
    return *this;
  }
  constexpr ZoMatrix& setTranslation(const ZoPoint& p) noexcept {
    return setTranslation(p - ZoPoint());
  }
  [[nodiscard]] constexpr ZoVector translation() const noexcept { return {m_[3], m_[7], m_[11]}; }

  // `center` stays where it is, distances from it grow by `factor`.
  constexpr ZoMatrix& setToScaling(double factor, const ZoPoint& center = ZoPoint()) noexcept {
    const ZoVector c = center - ZoPoint();
    return setCoordSystem(ZoPoint(c - c * factor), {factor, 0.0, 0.0}, {0.0, factor, 0.0},
                          {0.0, 0.0, factor});
  }
  // The turn about the line through `center` (or the origin) along `axis`, of any length.
  ZO_COM_API ZoMatrix& rotate(const ZoVector& axis, double angle) noexcept;
  ZO_COM_API ZoMatrix& rotate(const ZoPoint& center, const ZoVector& axis, double angle) noexcept;
  // The mirror image at a point, at the line through `onLine` along `direction` (a half turn), and
  // at a plane (which changes handedness, as the mirror at a point does).
  constexpr ZoMatrix& mirror(const ZoPoint& center) noexcept { return setToScaling(-1.0, center); }
  ZO_COM_API ZoMatrix& mirror(const ZoPoint& onLine, const ZoVector& direction) noexcept;
  ZO_COM_API ZoMatrix& mirror(const ZoPlane& plane) noexcept;

  // From coordinates in the system to coordinates in the world: the columns x, y, z, origin, as
  // given.
  constexpr ZoMatrix& setCoordSystem(const ZoPoint& origin, const ZoVector& x, const ZoVector& y,
                                     const ZoVector& z) noexcept {
    return *this = ZoMatrix({x.x, y.x, z.x, origin.x,  //
                             x.y, y.y, z.y, origin.y,  //
                             x.z, y.z, z.z, origin.z,  //
                             0.0, 0.0, 0.0, 1.0});
  }
  // Carries the first system onto the second: second * inverse(first). Neither needs perpendicular
  // or unit axes.
  ZO_COM_API ZoMatrix& setToAlignCoordSys(const ZoPoint& origin1, const ZoVector& x1,
                                          const ZoVector& y1, const ZoVector& z1,
                                          const ZoPoint& origin2, const ZoVector& x2,
                                          const ZoVector& y2, const ZoVector& z2) noexcept;
  // From coordinates in the plane through the origin with this normal (z along the normal, x and y
  // by the arbitrary-axis rule: ZoCoSystem) to the world, and back. A normal of zero length counts
  // as +Z.
  ZO_COM_API ZoMatrix& setPlaneToWorld(const ZoVector& normal) noexcept;
  ZO_COM_API ZoMatrix& setWorldToPlane(const ZoVector& normal) noexcept;

  [[nodiscard]] friend constexpr ZoMatrix operator*(const ZoMatrix& a, const ZoMatrix& b) noexcept {
    ZoMatrix product(Uninitialized{});
    product.multiply(a, b);
    return product;
  }
  // this * m: `m` acts first.
  constexpr ZoMatrix& operator*=(const ZoMatrix& m) noexcept { return *this = *this * m; }
  // a * b; either may be this matrix.
  constexpr ZoMatrix& setToProduct(const ZoMatrix& a, const ZoMatrix& b) noexcept {
    return *this = a * b;
  }
  constexpr ZoMatrix& transpose() noexcept {
    return *this = ZoMatrix({m_[0], m_[4], m_[8], m_[12], m_[1], m_[5], m_[9], m_[13],  //
                             m_[2], m_[6], m_[10], m_[14], m_[3], m_[7], m_[11], m_[15]});
  }
  [[nodiscard]] constexpr double determinant() const noexcept { return Minors(m_).determinant(); }
  // Inverts in place. Returns 0, or 3 when the matrix is singular: when its determinant is no
  // larger than rounding alone can make it, or is not finite. It then stays as it is.
  [[nodiscard]] constexpr int invert() noexcept { return inverse(*this); }
  // The same, into `out`, which on 3 stays as it was.
  [[nodiscard]] constexpr int inverse(ZoMatrix& out) const noexcept;
  // Splits into translation * rotation * diagonal scale. A matrix that changes handedness has three
  // negative scales, so that uniform scaling stays uniform. Returns 0, or 3 and leaves the
  // out-parameters as they were when there is no such split: a column of zero length, columns that
  // are not perpendicular by more than the vector tolerance (shear), or a projective fourth row.
  [[nodiscard]] ZO_COM_API int decompose(ZoVector& translation, ZoMatrix& rotation, ZoVector& scale,
                                         const ZoTol& tol = ZoTol::s_default) const noexcept;

  // Translations differ by at most the point tolerance, each other element by at most the vector
  // tolerance.
  [[nodiscard]] constexpr bool isEqualTo(const ZoMatrix& m,
                                         const ZoTol& tol = ZoTol::s_default) const noexcept {
    for (unsigned int i = 0; i < 16; ++i) {
      const bool translates = i == 3 || i == 7 || i == 11;
      if (!translates && !(zo::magnitude(m_[i] - m.m_[i]) <= tol.getVecTol())) return false;
    }
    return zo::withinPntTol((translation() - m.translation()).lengthSqrd(), tol);
  }
  [[nodiscard]] constexpr bool isIdentity(const ZoTol& tol = ZoTol::s_default) const noexcept {
    return isEqualTo(ZoMatrix(), tol);
  }
  // isEqualTo with the default tolerance.
  [[nodiscard]] constexpr bool operator==(const ZoMatrix& m) const noexcept { return isEqualTo(m); }

  [[nodiscard]] friend constexpr ZoPoint operator*(const ZoMatrix& m, const ZoPoint& p) noexcept {
    if (m.isAffine()) [[likely]]
      return m.affineImage(p);
    return m.projectiveImage(p);
  }
  [[nodiscard]] friend constexpr ZoVector operator*(const ZoMatrix& m, const ZoVector& v) noexcept {
    const double* e = m.m_;
    return {e[0] * v.x + e[1] * v.y + e[2] * v.z,  //
            e[4] * v.x + e[5] * v.y + e[6] * v.z,  //
            e[8] * v.x + e[9] * v.y + e[10] * v.z};
  }
  // The product with each of many points, at once: images[i] for points[i], as many as both have
  // room for. They may be the same points.
  ZO_COM_API void transform(std::span<const ZoPoint> points,
                            std::span<ZoPoint> images) const noexcept;

 private:
  struct Uninitialized {};
  constexpr explicit ZoMatrix(Uninitialized) noexcept {}

  // The 2x2 determinants of the upper and the lower two rows, columns 01 02 03 12 13 23.
  struct Minors {
    constexpr explicit Minors(const double* e) noexcept {
      constexpr unsigned int left[6] = {0, 0, 0, 1, 1, 2};
      constexpr unsigned int right[6] = {1, 2, 3, 2, 3, 3};
      for (unsigned int i = 0; i < 6; ++i) {
        const unsigned int j = left[i], k = right[i];
        upper[i] = e[j] * e[4 + k] - e[k] * e[4 + j];
        lower[i] = e[8 + j] * e[12 + k] - e[8 + k] * e[12 + j];
        upperTerms[i] = zo::magnitude(e[j] * e[4 + k]) + zo::magnitude(e[k] * e[4 + j]);
        lowerTerms[i] = zo::magnitude(e[8 + j] * e[12 + k]) + zo::magnitude(e[8 + k] * e[12 + j]);
      }
    }
    [[nodiscard]] constexpr double determinant() const noexcept {
      return upper[0] * lower[5] - upper[1] * lower[4] + upper[2] * lower[3] + upper[3] * lower[2] -
             upper[4] * lower[1] + upper[5] * lower[0];
    }
    // The sum of the magnitudes of all terms of the determinant, to which its rounding error is
    // proportional.
    [[nodiscard]] constexpr double terms() const noexcept {
      double sum = 0.0;
      for (unsigned int i = 0; i < 6; ++i) sum += upperTerms[i] * lowerTerms[5 - i];
      return sum;
    }

    double upper[6]{};
    double lower[6]{};
    double upperTerms[6]{};
    double lowerTerms[6]{};
  };

  constexpr void multiply(const ZoMatrix& a, const ZoMatrix& b) noexcept;
#if ZO_GEOMETRY_SSE2
  void multiplySse2(const ZoMatrix& a, const ZoMatrix& b) noexcept;
#endif
  // Whether the fourth row is 0 0 0 1. As integers: four comparisons of doubles cost more than the
  // product.
  [[nodiscard]] constexpr bool isAffine() const noexcept {
    using Bits = unsigned long long;
    return (std::bit_cast<Bits>(m_[12]) | std::bit_cast<Bits>(m_[13]) |
            std::bit_cast<Bits>(m_[14]) |
            (std::bit_cast<Bits>(m_[15]) ^ std::bit_cast<Bits>(1.0))) == 0;
  }
  [[nodiscard]] constexpr ZoPoint affineImage(const ZoPoint& p) const noexcept;
  // Not inline, since it is rare.
  [[nodiscard]] ZO_COM_API ZoPoint projectiveImage(const ZoPoint& p) const noexcept;
#if ZO_GEOMETRY_SSE2
  [[nodiscard]] ZoPoint affineImageSse2(const ZoPoint& p) const noexcept;
  // The images of two points at a time; returns how many, of `count`.
  std::size_t transformPairs(const ZoPoint* points, ZoPoint* images,
                             std::size_t count) const noexcept;
#endif

  double m_[16];
};

static_assert(sizeof(ZoMatrix) == 128);

// "((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1))", row by row.
ZO_COM_API std::ostream& operator<<(std::ostream& out, const ZoMatrix& m);
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoMatrix& m);

constexpr void ZoMatrix::multiply(const ZoMatrix& a, const ZoMatrix& b) noexcept {
#if ZO_GEOMETRY_SSE2
  if (!std::is_constant_evaluated()) return multiplySse2(a, b);
#endif
  for (unsigned int row = 0; row < 16; row += 4) {
    for (unsigned int column = 0; column < 4; ++column) {
      m_[row + column] = a.m_[row] * b.m_[column] + a.m_[row + 1] * b.m_[4 + column] +
                         a.m_[row + 2] * b.m_[8 + column] + a.m_[row + 3] * b.m_[12 + column];
    }
  }
}

#if ZO_GEOMETRY_SSE2
inline void ZoMatrix::multiplySse2(const ZoMatrix& a, const ZoMatrix& b) noexcept {
  // Spelled out: at the usual level of optimisation loops would stay loops.
  const auto half = [&](unsigned int column) {
    const __m128d b0 = _mm_loadu_pd(b.m_ + column), b1 = _mm_loadu_pd(b.m_ + 4 + column);
    const __m128d b2 = _mm_loadu_pd(b.m_ + 8 + column), b3 = _mm_loadu_pd(b.m_ + 12 + column);
    const auto row = [&](unsigned int i) {
      const double* e = a.m_ + i;
      const __m128d sum =
          _mm_add_pd(_mm_mul_pd(_mm_set1_pd(e[0]), b0), _mm_mul_pd(_mm_set1_pd(e[1]), b1));
      const __m128d more = _mm_add_pd(sum, _mm_mul_pd(_mm_set1_pd(e[2]), b2));
      _mm_storeu_pd(m_ + i + column, _mm_add_pd(more, _mm_mul_pd(_mm_set1_pd(e[3]), b3)));
    };
    row(0);
    row(4);
    row(8);
    row(12);
  };
  half(0);
  half(2);
}
#endif

constexpr ZoPoint ZoMatrix::affineImage(const ZoPoint& p) const noexcept {
#if ZO_GEOMETRY_SSE2
  if (!std::is_constant_evaluated()) return affineImageSse2(p);
#endif
  // Summed as the SSE2 form does, so that both round alike.
  const auto row = [&](const double* e) {
    return (e[0] * p.x + e[2] * p.z) + (e[1] * p.y + e[3] * p.w);
  };
  return {row(m_), row(m_ + 4), row(m_ + 8)};
}

#if ZO_GEOMETRY_SSE2
inline ZoPoint ZoMatrix::affineImageSse2(const ZoPoint& p) const noexcept {
  const __m128d xy = _mm_loadu_pd(p.asDblArray());
  const __m128d zw = _mm_loadu_pd(p.asDblArray() + 2);
  // Two partial sums, to be added.
  const auto row = [&](const double* e) {
    return _mm_add_pd(_mm_mul_pd(_mm_loadu_pd(e), xy), _mm_mul_pd(_mm_loadu_pd(e + 2), zw));
  };
  const __m128d x = row(m_), y = row(m_ + 4), z = row(m_ + 8);
  const __m128d sums = _mm_add_pd(_mm_unpacklo_pd(x, y), _mm_unpackhi_pd(x, y));
  return {zo::lowLane(sums), zo::highLane(sums), zo::lowLane(z) + zo::highLane(z)};
}
#endif

constexpr int ZoMatrix::inverse(ZoMatrix& out) const noexcept {
  const Minors minors(m_);
  const double determinant = minors.determinant();
  const double noise = 8.0 * std::numeric_limits<double>::epsilon() * minors.terms();
  const double reciprocal = determinant == 0.0 ? 0.0 : 1.0 / determinant;
  if (!(zo::magnitude(determinant) > noise) || zo::magnitude(reciprocal) == 0.0 ||
      !(zo::magnitude(reciprocal) <= (std::numeric_limits<double>::max)())) {
    return ZoResult::degenerate;
  }
  // The adjugate over the determinant.
  const double* e = m_;
  const double* u = minors.upper;
  const double* l = minors.lower;
  double adjugate[16] = {
      e[5] * l[5] - e[6] * l[4] + e[7] * l[3],    e[2] * l[4] - e[1] * l[5] - e[3] * l[3],
      e[13] * u[5] - e[14] * u[4] + e[15] * u[3], e[10] * u[4] - e[9] * u[5] - e[11] * u[3],
      e[6] * l[2] - e[4] * l[5] - e[7] * l[1],    e[0] * l[5] - e[2] * l[2] + e[3] * l[1],
      e[14] * u[2] - e[12] * u[5] - e[15] * u[1], e[8] * u[5] - e[10] * u[2] + e[11] * u[1],
      e[4] * l[4] - e[5] * l[2] + e[7] * l[0],    e[1] * l[2] - e[0] * l[4] - e[3] * l[0],
      e[12] * u[4] - e[13] * u[2] + e[15] * u[0], e[9] * u[2] - e[8] * u[4] - e[11] * u[0],
      e[5] * l[1] - e[4] * l[3] - e[6] * l[0],    e[0] * l[3] - e[1] * l[1] + e[2] * l[0],
      e[13] * u[1] - e[12] * u[3] - e[14] * u[0], e[8] * u[3] - e[9] * u[1] + e[10] * u[0]};
  for (double& element : adjugate) element *= reciprocal;
  out = ZoMatrix(adjugate);
  return ZoResult::ok;
}

constexpr ZoVector& ZoVector::setToProduct(const ZoMatrix& m, const ZoVector& v) noexcept {
  return *this = m * v;
}
constexpr ZoVector& ZoVector::transform(const ZoMatrix& matrix) noexcept {
  return *this = matrix * *this;
}
constexpr ZoPoint& ZoPoint::setToProduct(const ZoMatrix& m, const ZoPoint& p) noexcept {
  return *this = m * p;
}
constexpr ZoPoint& ZoPoint::transform(const ZoMatrix& matrix) noexcept {
  return *this = matrix * *this;
}
