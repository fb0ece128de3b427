// Vectors and points: arithmetic, tolerance tests, angles, order.
#include <cmath>
#include <numbers>
#include <tuple>
#include <type_traits>

#include "geometry/reference.h"

using reference::expectNear;
using reference::infinity;
using reference::notANumber;
using reference::of;
using reference::Random;
using reference::rounds;

namespace {

constexpr double pi = std::numbers::pi;

double justAbove(double value) { return std::nextafter(value, infinity); }
double justBelow(double value) { return std::nextafter(value, -infinity); }

// What can be known while compiling.
static_assert(ZoVector(1, 2, 3).crossProduct({4, 5, 6}) == ZoVector(-3, 6, -3));
static_assert((2.0 * ZoVector(1, 2, 3) - ZoVector(1, 1, 1) / 2.0).dotProduct({2, 0, 2}) == 14.0);
static_assert((ZoPoint(1, 2, 3) + ZoVector(1, 1, 1)).distanceSqrd(ZoPoint()) == 29.0);
static_assert(ZoVector::s_negYAxis[1] == -1.0 && ZoPoint(ZoVector::s_xAxis).w == 1.0);
static_assert(std::is_trivially_copyable_v<ZoPoint> && std::is_standard_layout_v<ZoMatrix>);
static_assert(ZoTol(-1.0, -2.0) == ZoTol(1.0, 2.0) && ZoTol() == ZoTol(1e-10, 1e-10));

TEST(Vector, ArithmeticAgreesWithLongDouble) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoVector a = random.vector(), b = random.direction();
    const double s = random.real(0.5, 2.0);
    const auto ra = of(a), rb = of(b);
    ZoVector sum, product, compound = a, indexed, unit;
    compound += b;
    compound *= s;
    compound -= b;
    compound /= s;
    indexed[0] = a[0];
    indexed.asDblArray()[1] = a.asDblArray()[1];
    indexed[9] = a[2];
    EXPECT_EQ(b.normal(unit), 0);
    const std::pair<ZoVector, reference::Vec> table[] = {
        {a + b, ra + rb},
        {a - b, ra - rb},
        {-a * s / 3.0, ra * (-s / 3.0L)},
        {a.crossProduct(b), reference::cross(ra, rb)},
        {sum.setToSum(a, b).negate(), (ra + rb) * -1},
        {product.setToProduct(a, s), ra * s},
        {compound, ra + rb - rb * (1.0L / s)},
        {indexed, ra},
        {unit, reference::unit(rb)},
        {a.perpend(), {ra.z * ra.z - ra.y, ra.z * ra.z + ra.x, -(ra.x + ra.y) * ra.z}},
    };
    for (const auto& [result, expected] : table) expectNear(result, expected, 1e-13);
    EXPECT_NEAR(a.dotProduct(b), static_cast<double>(reference::dot(ra, rb)), 1e-12);
    EXPECT_NEAR(a.length(), static_cast<double>(reference::length(ra)), 1e-14);
    EXPECT_NEAR(a.perpend().dotProduct(a), 0.0, 1e-11);
  }
}

TEST(Point, ArithmeticTurnsAndMirrorsAgreeWithLongDoubleAndKeepTheWeight) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPoint p = random.point(), q = random.point();
    const ZoVector v = random.vector(), axis = random.direction();
    const auto rp = of(p), rq = of(q), rv = of(v), n = reference::unit(of(axis));
    const double s = random.real(0.5, 2.0), angle = random.real(-7, 7);
    const auto inLine = [&](const reference::Vec& r) { return n * (2 * dot(r, n)) - r; };
    const ZoPlane plane(q, axis);
    expectNear(p - q, rp - rq, 1e-14);
    EXPECT_NEAR(p.distance(q), static_cast<double>(reference::length(rp - rq)), 1e-14);
    ZoPoint compound = p, sum, total, product, assigned;
    compound += v;
    compound += q;
    compound *= s;
    compound -= v;
    compound /= s;
    const std::pair<ZoPoint, reference::Vec> table[] = {
        {p + v, rp + rv},
        {p - v, rp - rv},
        {p + q, rp + rq},
        {-(s * p) / 3.0, rp * (-s / 3.0L)},
        {compound, rp + rv + rq - rv * (1.0L / s)},
        {sum.setToSum(p, v), rp + rv},
        {total.setToSum(p, q).negate(), (rp + rq) * -1},
        {product.setToProduct(p, s).translate(v), rp * s + rv},
        {assigned = v, rv},
        {ZoPoint(p).rotate(q, axis, angle), rq + reference::turned(rp - rq, n, angle)},
        {ZoPoint(p).mirror(q), rq - (rp - rq)},
        {ZoPoint(p).mirror(q, axis), rq + inLine(rp - rq)},
        {ZoPoint(p).mirror(plane), rq - inLine(rp - rq)},
    };
    for (const auto& [result, expected] : table) {
      expectNear(result, expected, 1e-13);
      EXPECT_EQ(result.w, 1.0);
    }
    expectNear(ZoVector(v).rotate(axis, angle), reference::turned(rv, n, angle), 1e-13);
    expectNear(ZoVector(v).mirror(axis), inLine(rv), 1e-13);
    expectNear(ZoVector(v).mirror(plane), inLine(rv) * -1, 1e-13);
  }
}

TEST(Vector, NormalizeRefusesOnlyWhatIsShorterThanTheTolerance) {
  ZoVector out(7, 7, 7);
  for (const double tooShort : {0.0, 1e-11, justBelow(1e-10)}) {
    ZoVector v(0, 0, tooShort);
    EXPECT_EQ(v.normalize(), 1);
    EXPECT_EQ(v.z, tooShort);
    EXPECT_EQ(v.normal(out), 1);
    expectNear(out, {7, 7, 7}, 0);
  }
  for (const double enough : {1e-10, justAbove(1e-10), 3.0, 1e150, 1e200, 1.7e308}) {
    EXPECT_EQ(ZoVector(0, 0, -enough).normal(out), 0);
    expectNear(out, {0, 0, -1}, 0);
    EXPECT_EQ(ZoVector(enough, enough, 0).normal(out), 0);
    expectNear(out, {std::sqrt(0.5L), std::sqrt(0.5L), 0}, 4e-16);
  }
  // Each component is rounded once: archives compare bytes.
  ASSERT_EQ(ZoVector(1, 2, 3).normal(out), 0);
  EXPECT_EQ(out.z, 3.0 / ZoVector(1, 2, 3).length());
}

TEST(Vector, ToleranceTestsHoldAtExactlyJustBelowAndJustAbove) {
  const ZoTol tol(1e-3, 1e-6);  // unlike, so that the wrong one shows
  for (const auto& [offset, pnt, vec] : {std::tuple{0.0, true, true},
                                         {1e-6, true, true},
                                         {justAbove(1e-6), true, false},
                                         {1e-3, true, false},
                                         {justAbove(1e-3), false, false},
                                         {notANumber, false, false},
                                         {infinity, false, false}}) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      ZoVector v;
      v[axis] = -offset;
      EXPECT_EQ(v.isZeroLength(tol), pnt) << offset;
      EXPECT_EQ(v.isEqualTo(ZoVector(), tol), vec) << offset;
      EXPECT_EQ(ZoPoint().isEqualTo(ZoPoint(v), tol), pnt) << offset;
      EXPECT_EQ(ZoPoint(v).isOrigin(tol), pnt) << offset;
    }
  }
  // Without a tolerance, and in the operators, the default counts.
  for (const auto& [offset, same] :
       {std::pair{1e-10, true}, {justAbove(1e-10), false}, {notANumber, false}}) {
    const ZoVector v(0, offset, 0);
    for (const bool is : {v.isZeroLength(), v.isEqualTo(ZoVector()), v == ZoVector(),
                          !(v != ZoVector()), ZoPoint(v).isOrigin(), ZoPoint(v) == ZoPoint()})
      EXPECT_EQ(is, same) << offset;
  }
  // Unit length goes by the square and twice the point tolerance.
  const ZoTol eighth(0.125, 0.0);
  EXPECT_TRUE(ZoVector(1, 0.5, 0).isUnitLength(eighth));
  EXPECT_FALSE(ZoVector(1, 0.5, 1e-7).isUnitLength(eighth));
  EXPECT_TRUE(ZoVector(0.5, 0.5, 0.5).isUnitLength(eighth));
  EXPECT_FALSE(ZoVector(0.5, 0.5, 0.4999).isUnitLength(eighth));
  EXPECT_FALSE(ZoVector(notANumber, 0, 0).isUnitLength(eighth));
}

TEST(Vector, DirectionTestsGoByUnitVectorsAndAngles) {
  const double off = 1e-3;  // the angle; the unit vectors differ by 4e-11 less
  const ZoVector a(3, 0, 0), b = ZoVector(std::cos(off), std::sin(off), 0) * 1e6;
  const ZoVector upright(-1e6 * std::sin(off), 0, 1e6 * std::cos(off));
  for (const auto& [tolerance, holds] : {std::pair{off, true}, {off * 0.999, false}}) {
    const ZoTol tol(0.0, tolerance);
    EXPECT_EQ(a.isCoDirectionalTo(b, tol), holds);
    EXPECT_EQ(b.isParallelTo(a, tol), holds);
    EXPECT_EQ(b.isParallelTo(-a, tol), holds);
    EXPECT_FALSE(a.isCoDirectionalTo(-b, tol));
    EXPECT_EQ(a.isPerpendTo(upright, ZoTol(0.0, tolerance * 1.000001)), holds);
  }
  EXPECT_TRUE(a.isPerpendTo(ZoVector(0, -5, 1e-9)));
  EXPECT_FALSE(a.isPerpendTo(ZoVector(1e-9, -5, 0)));
  // Shorter than the default tolerance, whatever the one given: everything is parallel.
  for (const auto& [size, all] : {std::pair{justBelow(1e-10), true}, {1e-10, false}}) {
    const ZoVector tiny(0, 0, size);
    EXPECT_EQ(tiny.isParallelTo(a, ZoTol(0, 0)), all);
    EXPECT_EQ(a.isCoDirectionalTo(tiny, ZoTol(0, 0)), all);
  }
  for (const double bad : {notANumber, infinity}) {
    EXPECT_FALSE(ZoVector(bad, 0, 0).isParallelTo(a));
    EXPECT_FALSE(a.isCoDirectionalTo(ZoVector(bad, 0, 0)));
  }
  EXPECT_FALSE(a.isPerpendTo({notANumber, 1, 0}));
}

TEST(Vector, AnglesAgreeWithLongDouble) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoVector a = random.direction(), b = random.direction(), axis = random.direction();
    const auto ua = reference::unit(of(a)), ub = reference::unit(of(b));
    const double angle =
        static_cast<double>(2 * std::atan2(reference::length(ua - ub), reference::length(ua + ub)));
    EXPECT_NEAR(a.angleTo(b), angle, 4e-15);
    EXPECT_EQ(a.angleTo(b), b.angleTo(a));
    const bool against = reference::dot(reference::cross(of(a), of(b)), of(axis)) < -1e-10L;
    EXPECT_NEAR(a.dirAngleTo(b, axis), against ? 2 * pi - angle : angle, 4e-15);
    EXPECT_NEAR(a.angleToPlane(ZoPlane(ZoPoint(), axis)), pi / 2 - a.angleTo(axis), 4e-15);
  }
  const ZoVector &x = ZoVector::s_xAxis, &y = ZoVector::s_yAxis, &z = ZoVector::s_zAxis;
  EXPECT_EQ(x.angleTo(-x), pi);
  EXPECT_EQ(x.angleTo(ZoVector()), 0.0);
  // The triple product decides from below -1e-10 on, not at it.
  EXPECT_LT(x.dirAngleTo(y, z * -1e-10), pi);
  EXPECT_GT(x.dirAngleTo(y, z * justBelow(-1e-10)), pi);
}

TEST(Vector, OrderGoesByTheFirstCoordinateThatDiffersByAThirdOfTheTolerance) {
  struct {
    ZoVector difference;
    int order;
  } const table[] = {
      {{1e-10, 0, 0}, 0},
      {{justAbove(1e-10), 0, 0}, 1},
      {{0, 1e-9, 0}, 1},
      {{0, 0, -1e-9}, -1},
      {{-1, 5, 5}, -1},
      {{5e-11, 5e-11, -5e-11}, 0},      // within the tolerance as a whole
      {{3.3e-11, -1e-10, 0}, -1},       // x is within a third
      {{3.4e-11, -1e-10, 0}, 1},        // and here it is not
      {{-3.3e-11, 3.3e-11, 1e-10}, 1},  // z decides
      {{notANumber, 0, 0}, 0},
      {{notANumber, 1, 0}, 1},
      {{infinity, 0, 0}, 1},
  };
  for (const auto& [difference, order] : table) {
    for (const int sign : {1, -1}) {
      const ZoVector v = difference * sign;
      EXPECT_EQ((v > ZoVector()) - (v < ZoVector()), order * sign) << v;
      EXPECT_EQ((ZoPoint(v) > ZoPoint()) - (ZoPoint(v) < ZoPoint()), order * sign) << v;
    }
  }
}

}  // namespace
