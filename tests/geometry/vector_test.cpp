// Vectors and points: arithmetic, tolerance tests, angles, order.
#include <cmath>
#include <numbers>
#include <tuple>

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

TEST(Vector, ArithmeticTurnsAndMirrorsAgreeWithLongDoubleAndKeepTheWeight) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPoint p = random.point(), q = random.point();
    const ZoVector v = random.vector();
    // Axes of any length, turns from what barely counts to many times round.
    const ZoVector axis = random.direction() * std::pow(10.0, random.real(-8, 100));
    const double angle = random.real(-1, 1) * std::pow(10.0, random.real(-8, 2));
    const auto rp = of(p), rq = of(q), rv = of(v), n = reference::unit(of(axis));
    const double s = random.real(0.5, 2.0);
    const auto inLine = [&](const reference::Vec& r) { return n * (2 * dot(r, n)) - r; };
    const ZoPlane plane(q, axis);
    ZoPoint compound = p;
    compound += v;
    compound += q;
    compound *= s;
    compound -= v;
    compound /= s;
    const std::pair<ZoPoint, reference::Vec> points[] = {
        {-(s * p) / 3.0 + q, rp * (-s / 3.0L) + rq},
        {compound, rp + rv + rq - rv * (1.0L / s)},
        {ZoPoint(p).rotate(q, axis, angle), rq + reference::turned(rp - rq, n, angle)},
        {ZoPoint(p).mirror(q), rq - (rp - rq)},
        {ZoPoint(p).mirror(q, axis), rq + inLine(rp - rq)},
        {ZoPoint(p).mirror(plane), rq - inLine(rp - rq)},
    };
    for (const auto& [result, expected] : points) {
      expectNear(result, expected, 1e-13);
      EXPECT_EQ(result.w, 1.0);
    }
    const std::pair<ZoVector, reference::Vec> vectors[] = {
        {v.crossProduct(p - q), reference::cross(rv, rp - rq)},
        {v.perpend(), {rv.z * rv.z - rv.y, rv.z * rv.z + rv.x, -(rv.x + rv.y) * rv.z}},
        {ZoVector(v).rotate(axis, angle), reference::turned(rv, n, angle)},
        {ZoVector(v).mirror(axis), inLine(rv)},
        {ZoVector(v).mirror(plane), inLine(rv) * -1},
    };
    for (const auto& [result, expected] : vectors) expectNear(result, expected, 1e-13);
    EXPECT_NEAR(p.distance(q), static_cast<double>(reference::length(rp - rq)), 1e-14);
  }
}

TEST(Vector, NormalizeRefusesOnlyWhatIsShorterThanTheTolerance) {
  ZoVector out(7, 7, 7);
  for (const double tooShort : {0.0, justBelow(1e-10)}) {
    EXPECT_EQ(ZoVector(0, 0, tooShort).normal(out), 1);
    expectNear(out, {7, 7, 7}, 0);
  }
  for (const double enough : {1e-10, 3.0, 1e200, 1.7e308}) {
    EXPECT_EQ(ZoVector(enough, enough, 0).normal(out), 0);
    expectNear(out, {std::sqrt(0.5L), std::sqrt(0.5L), 0}, 4e-16);
  }
  // Each component is rounded once: archives compare bytes.
  ASSERT_EQ(ZoVector(1, 2, 3).normal(out), 0);
  EXPECT_EQ(out.z, 3.0 / ZoVector(1, 2, 3).length());
}

TEST(Vector, ToleranceTestsHoldAtExactlyJustBelowAndJustAbove) {
  const ZoTol tol(1e-3, 1e-6);  // unlike, so that the wrong one shows
  for (const auto& [offset, pnt, vec] : {std::tuple{1e-6, true, true},
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
  // Unit length goes by the square and twice the point tolerance.
  const ZoTol eighth(0.125, 0.0);
  EXPECT_TRUE(ZoVector(1, 0.5, 0).isUnitLength(eighth));
  EXPECT_FALSE(ZoVector(1, 0.5, 1e-7).isUnitLength(eighth));
}

TEST(Vector, DirectionTestsGoByUnitVectorsAndAngles) {
  const double off = 1e-3;  // the angle; the unit vectors differ by 4e-11 less
  const ZoVector a(3, 0, 0), b = ZoVector(std::cos(off), std::sin(off), 0) * 1e6;
  const ZoVector upright(-1e6 * std::sin(off), 0, 1e6 * std::cos(off));
  for (const auto& [tolerance, holds] : {std::pair{off, true}, {off * 0.999, false}}) {
    const ZoTol tol(0.0, tolerance);
    EXPECT_EQ(a.isCoDirectionalTo(b, tol), holds);
    EXPECT_EQ(b.isParallelTo(-a, tol), holds);
    EXPECT_FALSE(a.isCoDirectionalTo(-b, tol));
    EXPECT_EQ(a.isPerpendTo(upright, ZoTol(0.0, tolerance * 1.000001)), holds);
  }
  // Shorter than the default tolerance, whatever the one given: everything is parallel.
  for (const auto& [size, all] : {std::pair{justBelow(1e-10), true}, {1e-10, false}})
    EXPECT_EQ(a.isCoDirectionalTo(ZoVector(0, 0, size), ZoTol(0, 0)), all);
  EXPECT_FALSE(ZoVector(notANumber, 0, 0).isParallelTo(a));
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
    const bool against = reference::dot(reference::cross(of(a), of(b)), of(axis)) < -1e-10L;
    EXPECT_NEAR(a.dirAngleTo(b, axis), against ? 2 * pi - angle : angle, 4e-15);
    EXPECT_NEAR(a.angleToPlane(ZoPlane(ZoPoint(), axis)), pi / 2 - a.angleTo(axis), 4e-15);
  }
  const ZoVector &x = ZoVector::s_xAxis, &y = ZoVector::s_yAxis, &z = ZoVector::s_zAxis;
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
      {{5e-11, 5e-11, -5e-11}, 0},      // within the tolerance as a whole
      {{3.3e-11, -1e-10, 0}, -1},       // x is within a third
      {{3.4e-11, -1e-10, 0}, 1},        // and here it is not
      {{-3.3e-11, 3.3e-11, 1e-10}, 1},  // z decides
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
