// Matrices: every setter, product, inverse, decomposition.
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "geometry/reference.h"

using reference::expectNear;
using reference::expectSame;
using reference::infinity;
using reference::notANumber;
using reference::of;
using reference::Random;
using reference::rounds;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

constexpr double sampleElements[16] = {0.1, -0.7, 1.3, 5.0, 0.9, 0.3, -0.2, -4.0,
                                       1.1, 0.4,  0.6, 3.0, 0.0, 0.0, 0.0,  1.0};
constexpr ZoMatrix sample(sampleElements);

static_assert(ZoMatrix().isIdentity() && ZoMatrix().determinant() == 1.0);
static_assert(ZoMatrix().setToScaling(2.0, ZoPoint(1, 0, 0)) * ZoPoint(3, 1, 0) ==
              ZoPoint(5, 2, 0));
static_assert([] {
  ZoMatrix inverse;
  return sample.inverse(inverse) == 0 && (sample * inverse).isIdentity();
}());

// What a matrix of these columns does to a point, in long double.
reference::Vec image(const ZoMatrix& m, const ZoPoint& p) {
  const auto e = of(m);
  const auto r = [&](unsigned int i) {
    return e[i][0] * p.x + e[i][1] * p.y + e[i][2] * p.z + e[i][3];
  };
  return reference::Vec{r(0), r(1), r(2)} * (1 / r(3));
}

}  // namespace

TEST(Matrix, TransformsPointsAsColumnsOneByOneAndAtOnce) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    ZoMatrix m = random.affine();
    const ZoVector v = random.vector();
    ZoVector turned;
    expectNear(m * v, image(m, ZoPoint(v)) - image(m, ZoPoint()), 1e-12);  // no translation
    expectNear(turned.setToProduct(m, v), of(m * v), 0);
    expectNear(ZoVector(v).transform(m), of(m * v), 0);
    if (i % 2 == 1) {  // a projective point is divided by its weight
      m(3, static_cast<unsigned int>(i) % 3) = 0.05;
      m(3, 3) = 2.0;
    }
    std::vector<ZoPoint> points, images(5, ZoPoint(7, 7, 7));
    for (int k = 0; k < 4; ++k) points.push_back(random.point());
    m.transform(std::span(points.data(), 3), images);
    std::vector<ZoPoint> inPlace = points;
    m.transform(inPlace, std::span(inPlace.data(), 3));
    for (std::size_t k = 0; k < 3; ++k) {
      ZoPoint moved;
      expectNear(m * points[k], image(m, points[k]), 1e-12);
      expectNear(moved.setToProduct(m, points[k]), of(m * points[k]), 0);
      expectNear(ZoPoint(points[k]).transform(m), of(m * points[k]), 0);
      expectNear(images[k], of(m * points[k]), 0);
      expectNear(inPlace[k], of(images[k]), 0);
      EXPECT_TRUE((m * points[k]).w == 1.0 && images[k].w == 1.0);
    }
    expectNear(images[3], {7, 7, 7}, 0);
    expectNear(inPlace[3], of(points[3]), 0);
  }
  ZoMatrix vanishing;
  vanishing(3, 3) = 0.0;
  EXPECT_EQ((vanishing * ZoPoint(1, -1, 1)).y, -infinity);
}

TEST(Matrix, ConstantEvaluationRoundsAsTheProgramDoes) {
  constexpr ZoPoint p(0.1, 0.2, 0.3);
  constexpr ZoPoint constant = sample * p;
  constexpr ZoMatrix square = sample * sample;
  volatile double one = 1.0;
  const ZoPoint measured = sample * (p * one);
  const ZoMatrix measuredSquare =
      sample * ZoMatrix(sample).setTranslation(sample.translation() * one);
  expectNear(measured, of(constant), 0);
  expectSame(measuredSquare, square);
}

TEST(Matrix, RotationTurnsByTheRightHandRule) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    // From turns that barely count to many times round.
    const double angle = random.real(-1, 1) * std::pow(10.0, random.real(-8, 2));
    const ZoVector axis = random.direction() * std::pow(10.0, random.real(-8, 100));
    const ZoPoint c = random.point(), p = random.point();
    const ZoMatrix m = ZoMatrix().rotate(c, axis, angle);
    expectNear(m * p, of(c) + reference::turned(of(p) - of(c), of(axis), angle), 1e-13);
    EXPECT_NEAR(static_cast<double>(reference::eliminate(of(m)).first), 1.0, 1e-14);
    expectSame(ZoMatrix(m).rotate(axis, angle), ZoMatrix().rotate(ZoPoint(), axis, angle));
  }
}

TEST(Matrix, TranslationAndScalingSettersWriteWhatTheyName) {
  const ZoVector v(4, 5, 6);
  expectNear(ZoMatrix(sample).setToTranslation(v) * ZoPoint(1, 1, 1), {5, 6, 7}, 0);
  expectSame(ZoMatrix(sample).setToTranslation(ZoPoint(v)), ZoMatrix().setToTranslation(v));
  const ZoMatrix moved = ZoMatrix(sample).setTranslation(v);
  expectNear(moved.translation(), {4, 5, 6}, 0);
  expectNear(moved * ZoVector(1, 2, 3), of(sample * ZoVector(1, 2, 3)), 0);
  expectSame(ZoMatrix(sample).setTranslation(ZoPoint(v)), moved);
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPoint c = random.point(), p = random.point();
    const double factor = random.real(-3, 3);
    expectNear(ZoMatrix(sample).setToScaling(factor, c) * p, of(c) + (of(p) - of(c)) * factor,
               1e-13);
  }
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
    expectSame(ZoMatrix(b).setCoordSystem(from, axis(a, 0), axis(a, 1), axis(a, 2)), a);
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
  expectSame(ZoMatrix(sample).rotate(p, zero, 1.0), ZoMatrix());
  expectSame(ZoMatrix(sample).mirror(p, tiny), ZoMatrix());
  expectSame(ZoMatrix(sample).mirror(ZoPlane(p, x, x)), ZoMatrix());
  expectSame(ZoMatrix(sample).setPlaneToWorld(zero), ZoMatrix());
  expectSame(ZoMatrix(sample).setWorldToPlane(zero), ZoMatrix());
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
    const ZoMatrix back = ZoMatrix(sample).setWorldToPlane(n);
    EXPECT_TRUE((back * toWorld).isIdentity());
    const ZoPoint p = random.point();
    EXPECT_NEAR((toWorld * (back * p)).distance(p), 0.0, 1e-14);
  }
}

TEST(Matrix, ProductTransposeAndDeterminantAgreeWithLongDouble) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoMatrix a = random.matrix(), b = random.matrix();
    const auto expected = reference::product(of(a), of(b));
    expectNear(a * b, expected, 1e-12);
    ZoMatrix left = a, right = b, self = a;
    left *= b;
    right.setToProduct(a, right);
    self *= self;
    expectSame(left, a * b);
    expectSame(right, a * b);
    expectNear(self, reference::product(of(a), of(a)), 1e-12);
    const ZoMatrix t = ZoMatrix(a).transpose();
    for (unsigned int j = 0; j < 16; ++j) EXPECT_EQ(t(j / 4, j % 4), a(j % 4, j / 4));
    EXPECT_NEAR(a.determinant(), static_cast<double>(reference::eliminate(of(a)).first), 1e-10);
  }
}

TEST(Matrix, InverseAgreesWithElimination) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    // Lengths from micrometres to kilometres, translations likewise.
    ZoMatrix m = i % 2 == 0 ? random.matrix() : random.affine();
    const double size = std::pow(10.0, random.real(-6, 6));
    if (i % 2 == 1) m = ZoMatrix().setToScaling(size) * m;
    const auto [determinant, expected] = reference::eliminate(of(m));
    ZoMatrix inverse;
    ASSERT_EQ(m.inverse(inverse), 0);
    // The error of an inverse grows with the condition of the matrix.
    reference::Real norm = 0, inverseNorm = 0;
    for (unsigned int j = 0; j < 16; ++j) {
      norm = std::max(norm, std::fabs(of(m)[j / 4][j % 4]));
      inverseNorm = std::max(inverseNorm, std::fabs(expected[j / 4][j % 4]));
    }
    expectNear(inverse, expected, 200 * epsilon * norm * inverseNorm * inverseNorm);
    ZoMatrix inPlace = m;
    EXPECT_EQ(inPlace.invert(), 0);
    expectSame(inPlace, inverse);
  }
}

TEST(Matrix, SingularMatricesAreRefusedAndSmallOnesAreNot) {
  const auto affine = [](const double(&e)[9]) {
    return ZoMatrix(
        {e[0], e[1], e[2], 1e6, e[3], e[4], e[5], -1e6, e[6], e[7], e[8], 3, 0, 0, 0, 1});
  };
  ZoMatrix bad[] = {
      affine({1, 2, 3, 4, 5, 6, 7, 8, 9}),  // rank 2; rounding leaves a remainder
      affine({0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9}),
      affine({1, 0, 0, 0, 1, 0, 0, 0, 0}),
      affine({0, 0, 0, 0, 0, 0, 0, 0, 0}),
      affine({notANumber, 0, 0, 0, 1, 0, 0, 0, 1}),
      affine({infinity, 0, 0, 0, 1, 0, 0, 0, 1}),
      affine({1e200, 0, 0, 0, 1e200, 0, 0, 0, 1}),   // the determinant overflows
      affine({1e-300, 0, 0, 0, 1e-10, 0, 0, 0, 1}),  // its reciprocal does
      ZoMatrix().setTranslation(ZoVector(1, 2, 3)),
  };
  bad[8](3, 3) = 0.0;
  for (ZoMatrix& m : bad) {
    const ZoMatrix before = m;
    ZoMatrix out = sample;
    EXPECT_EQ(m.inverse(out), 3) << m;
    expectSame(out, sample);
    EXPECT_EQ(m.invert(), 3) << m;
    EXPECT_TRUE(std::memcmp(&m, &before, sizeof m) == 0);
  }
  const ZoMatrix good[] = {affine({1e-30, 0, 0, 0, 1e-30, 0, 0, 0, 1e-30}),
                           affine({1e9, 0, 0, 0, 1e-9, 0, 0, 0, 1}),
                           affine({1, 1, 0, 1, 1 + 1e-12, 0, 0, 0, 1})};
  for (const ZoMatrix& m : good) {
    ZoMatrix inverse;
    ASSERT_EQ(m.inverse(inverse), 0) << m;
    EXPECT_TRUE((m * inverse).isEqualTo(ZoMatrix(), ZoTol(1e3, 1e-3))) << m * inverse;
  }
}

TEST(Matrix, DecompositionMultipliesBackAndTellsMirrorsByTheSignOfTheScale) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const double sign = i % 2 == 0 ? 1.0 : -1.0;
    const ZoVector move = random.vector(1e4);
    const ZoVector grow =
        ZoVector(random.real(0.01, 9), random.real(0.01, 9), random.real(0.01, 9)) * sign;
    const ZoMatrix turn = ZoMatrix().rotate(random.direction(), random.real(-3, 3));
    ZoMatrix diagonal;
    for (unsigned int j = 0; j < 3; ++j) diagonal(j, j) = grow[j];
    ZoMatrix m = ZoMatrix().setToTranslation(move) * turn * diagonal;
    ZoVector translation, scale;
    ZoMatrix rotation;
    ASSERT_EQ(m.decompose(translation, rotation, scale), 0);
    expectNear(translation, of(move), 0);
    expectNear(rotation, of(turn), 1e-14);
    expectNear(scale, of(grow), 1e-14);
    ASSERT_EQ(m.decompose(translation, m, scale), 0);  // into itself
    expectSame(m, rotation);
    expectNear(translation, of(move), 0);
  }
}

TEST(Matrix, DecompositionRefusesShearProjectionAndCollapse) {
  const auto refused = [](const ZoMatrix& m, const ZoTol& tol = ZoTol()) {
    ZoVector translation(7, 7, 7), scale(8, 8, 8);
    ZoMatrix rotation = sample;
    const int result = m.decompose(translation, rotation, scale, tol);
    EXPECT_TRUE(result == 0 || result == 3);
    if (result == 0) return false;
    expectNear(translation, {7, 7, 7}, 0);
    expectNear(scale, {8, 8, 8}, 0);
    expectSame(rotation, sample);
    return true;
  };
  ZoMatrix m;
  for (unsigned int j = 0; j < 3; ++j) {
    (m = ZoMatrix())(j, (j + 1) % 3) = 1e-9;
    EXPECT_TRUE(refused(m));
    EXPECT_FALSE(refused(m, ZoTol(0, 1e-8)));
    (m = ZoMatrix())(j, j) = 1e-10;
    EXPECT_TRUE(refused(m));
    m(j, j) = 1.1e-10;
    EXPECT_FALSE(refused(m));
    m(j, j) = notANumber;
    EXPECT_TRUE(refused(m));
    (m = ZoMatrix())(3, j) = 1e-9;
    EXPECT_TRUE(refused(m));
  }
  (m = ZoMatrix())(3, 3) = 1.0 + 1e-9;
  EXPECT_TRUE(refused(m));
}

TEST(Matrix, EqualityTakesThePointToleranceForTheTranslationOnly) {
  const ZoTol tol(1e-3, 1e-6);
  for (unsigned int i = 0; i < 16; ++i) {
    const bool translates = i % 4 == 3 && i != 15;
    const double limit = translates ? 1e-3 : 1e-6;
    for (const auto& [offset, same] :
         {std::pair{limit * 0.999, true}, {limit * 1.001, false}, {notANumber, false}}) {
      ZoMatrix m;
      m(i / 4, i % 4) -= offset;
      EXPECT_EQ(m.isIdentity(tol), same) << m;
      EXPECT_FALSE(m == ZoMatrix()) << m;
    }
  }
  EXPECT_TRUE(ZoMatrix().setTranslation(ZoVector(0, 1e-10, 0)) == ZoMatrix());
}
