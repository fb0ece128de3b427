// Matrices: what they do to points, products, inverses, decompositions.
#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "geometry/reference.h"

using reference::expectNear;
using reference::expectSame;
using reference::notANumber;
using reference::of;
using reference::Random;
using reference::rounds;

namespace {

constexpr double sampleElements[16] = {0.1, -0.7, 1.3, 5.0, 0.9, 0.3, -0.2, -4.0,
                                       1.1, 0.4,  0.6, 3.0, 0.0, 0.0, 0.0,  1.0};
constexpr ZoMatrix sample(sampleElements);

// What a matrix of these columns does to a point, in long double.
reference::Vec image(const ZoMatrix& m, const ZoPoint& p) {
  const auto e = of(m);
  const auto r = [&](unsigned int i) {
    return e[i][0] * p.x + e[i][1] * p.y + e[i][2] * p.z + e[i][3];
  };
  return reference::Vec{r(0), r(1), r(2)} * (1 / r(3));
}

reference::Real largest(const ZoMatrix& m) {
  const double* const e = m.asDblArray();
  return std::fabs(
      *std::max_element(e, e + 16, [](double a, double b) { return std::fabs(a) < std::fabs(b); }));
}

}  // namespace

TEST(Matrix, TransformsPointsAsColumnsOneByOneAndAtOnce) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    ZoMatrix m = random.affine();
    const ZoVector v = random.vector();
    expectNear(m * v, image(m, ZoPoint(v)) - image(m, ZoPoint()), 1e-12);  // no translation
    if (i % 2 == 1) {  // a projective point is divided by its weight
      m(3, static_cast<unsigned int>(i) % 3) = 0.05;
      m(3, 3) = 2.0;
    }
    const std::vector<ZoPoint> points = {random.point(), random.point(), random.point()};
    std::vector<ZoPoint> images = points;
    m.transform(images, std::span(images.data(), 2));  // in place
    for (std::size_t k = 0; k < 2; ++k) {
      expectNear(m * points[k], image(m, points[k]), 1e-12);
      expectNear(images[k], of(m * points[k]), 0);
      EXPECT_EQ(images[k].w, 1.0);
    }
    expectNear(images[2], of(points[2]), 0);
  }
}

TEST(Matrix, ConstantEvaluationRoundsAsTheProgramDoes) {
  constexpr ZoPoint p(0.1, 0.2, 0.3), constant = sample * p;
  volatile double one = 1.0;
  expectNear(sample * (p * one), of(constant), 0);
}

TEST(Matrix, CoordinateSystemsAreAlignedAxisByAxis) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    // Skew axes of any length, as long as they span space.
    const ZoMatrix a = random.affine(), b = random.affine();
    if (std::fabs(a.determinant()) < 10.0) continue;
    const auto axis = [](const ZoMatrix& m, unsigned int j) {
      return ZoVector(m(0, j), m(1, j), m(2, j));
    };
    const ZoPoint from(a.translation()), to(b.translation());
    const ZoMatrix m = ZoMatrix(b).setToAlignCoordSys(from, axis(a, 0), axis(a, 1), axis(a, 2), to,
                                                      axis(b, 0), axis(b, 1), axis(b, 2));
    expectNear(m * from, of(to), 1e-10);
    for (unsigned int j = 0; j < 3; ++j) expectNear(m * axis(a, j), of(axis(b, j)), 1e-10);
  }
}

TEST(Matrix, DegenerateArgumentsGiveTheIdentity) {
  const ZoVector zero, tiny(1e-10, 0, 0), x(1, 0, 0), y(0, 1, 0);
  const ZoPoint p(1, 2, 3);
  expectSame(ZoMatrix(sample).rotate(tiny, 1.0), ZoMatrix());
  expectSame(ZoMatrix(sample).setPlaneToWorld(zero), ZoMatrix());
  expectSame(ZoMatrix(sample).setToAlignCoordSys(p, x, y, x + y, p, x, y, x), ZoMatrix());
}

TEST(Matrix, PlaneToWorldAndBackFollowTheArbitraryAxisRule) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    ZoVector n = random.direction();
    // Every other one close to the world's Z, on both sides of the rule's limit.
    if (i % 2 == 0) n = ZoVector(random.real(-0.03, 0.03), random.real(-0.03, 0.03), n.z);
    if (n.length() < 0.1) continue;
    const auto z = reference::unit(of(n));
    const bool close = std::fabs(z.x) < 1.0L / 64 && std::fabs(z.y) < 1.0L / 64;
    const auto x = reference::unit(
        reference::cross(close ? reference::Vec{0, 1, 0} : reference::Vec{0, 0, 1}, z));
    const auto y = reference::cross(z, x);
    const ZoMatrix toWorld = ZoMatrix(sample).setPlaneToWorld(n);
    expectNear(toWorld,
               {{{x.x, y.x, z.x, 0}, {x.y, y.y, z.y, 0}, {x.z, y.z, z.z, 0}, {0, 0, 0, 1}}}, 1e-14);
    EXPECT_TRUE((ZoMatrix(sample).setWorldToPlane(n) * toWorld).isIdentity());
  }
}

TEST(Matrix, ProductsDeterminantsAndInversesAgreeWithLongDouble) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoMatrix a = random.matrix(), b = random.matrix();
    expectNear(a * b, reference::product(of(a), of(b)), 1e-12);
    ZoMatrix self = a;
    self *= self;
    expectSame(self, a * a);
    EXPECT_NEAR(a.determinant(), static_cast<double>(reference::determinant(of(a))), 1e-10);
    // Lengths from micrometres to kilometres, translations likewise.
    const double size = std::pow(10.0, random.real(-6, 6));
    const ZoMatrix m = i % 2 == 0 ? a : ZoMatrix().setToScaling(size) * random.affine();
    ZoMatrix inverse, inPlace = m;
    ASSERT_EQ(m.inverse(inverse), 0);
    // The error of an inverse grows with the condition of the matrix.
    const auto condition = largest(m) * largest(inverse);
    expectNear(ZoMatrix(), reference::product(of(m), of(inverse)),
               800 * std::numeric_limits<double>::epsilon() * condition * condition);
    EXPECT_EQ(inPlace.invert(), 0);
    expectSame(inPlace, inverse);
  }
}

TEST(Matrix, SingularMatricesAreRefusedAndSmallOnesAreNot) {
  const auto affine = [](const double(&e)[9]) {
    return ZoMatrix(
        {e[0], e[1], e[2], 1e6, e[3], e[4], e[5], -1e6, e[6], e[7], e[8], 3, 0, 0, 0, 1});
  };
  for (const ZoMatrix& m :
       {affine({1, 2, 3, 4, 5, 6, 7, 8, 9}),  // rank 2; rounding leaves a remainder
        affine({0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9}), affine({0, 0, 0, 0, 0, 0, 0, 0, 0}),
        affine({notANumber, 0, 0, 0, 1, 0, 0, 0, 1}),
        affine({1e200, 0, 0, 0, 1e200, 0, 0, 0, 1}),      // the determinant overflows
        affine({1e-300, 0, 0, 0, 1e-10, 0, 0, 0, 1})}) {  // its reciprocal does
    ZoMatrix out = sample;
    EXPECT_EQ(m.inverse(out), 3) << m;
    expectSame(out, sample);
  }
  for (const ZoMatrix& m : {affine({1e-30, 0, 0, 0, 1e-30, 0, 0, 0, 1e-30}),
                            affine({1, 1, 0, 1, 1 + 1e-12, 0, 0, 0, 1})}) {
    ZoMatrix inverse;
    ASSERT_EQ(m.inverse(inverse), 0) << m;
    EXPECT_TRUE((m * inverse).isEqualTo(ZoMatrix(), ZoTol(1e3, 1e-3))) << m * inverse;
  }
}

TEST(Matrix, DecompositionMultipliesBackOrIsRefusedAndTellsMirrorsByTheSignOfTheScale) {
  Random random;
  ZoVector translation, scale;
  ZoMatrix rotation;
  for (int i = 0; i < rounds; ++i) {
    const double sign = i % 2 == 0 ? 1.0 : -1.0;
    const ZoVector move = random.vector(1e4);
    const ZoVector grow =
        ZoVector(random.real(0.01, 9), random.real(0.01, 9), random.real(0.01, 9)) * sign;
    const ZoMatrix turn = ZoMatrix().rotate(random.direction(), random.real(-3, 3));
    ZoMatrix diagonal;
    for (unsigned int j = 0; j < 3; ++j) diagonal(j, j) = grow[j];
    const ZoMatrix m = ZoMatrix().setToTranslation(move) * turn * diagonal;
    ASSERT_EQ(m.decompose(translation, rotation, scale), 0);
    expectNear(translation, of(move), 0);
    expectNear(rotation, of(turn), 1e-14);
    expectNear(scale, of(grow), 1e-14);
  }
  const struct {
    unsigned int row, column;
    double element;
    bool refused;
  } table[] = {{0, 1, 1e-9, true},      {2, 0, 1e-9, true}, {2, 2, 1e-10, true},
               {2, 2, 1.1e-10, false},  {3, 1, 1e-9, true}, {3, 3, 1.0 + 1e-9, true},
               {1, 1, notANumber, true}};  // shear, collapse, projection
  for (const auto& [row, column, element, refused] : table) {
    ZoMatrix m;
    m(row, column) = element;
    rotation = sample;
    EXPECT_EQ(m.decompose(translation, rotation, scale), refused ? 3 : 0) << m;
    if (refused) expectSame(rotation, sample);
  }
}
