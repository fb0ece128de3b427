// Planes and coordinate systems.
#include <cmath>
#include <span>
#include <string_view>
#include <vector>

#include "geometry/reference.h"

using reference::expectNear;
using reference::infinity;
using reference::notANumber;
using reference::of;
using reference::Random;
using reference::rounds;

namespace {

const double aboveTol = std::nextafter(1e-10, 1.0);

static_assert(ZoPlane::s_normalNegX.normal() == ZoVector(-1, 0, 0));
static_assert(ZoPlane(ZoPoint(1, 2, 3), ZoVector()).normal() == ZoVector::s_zAxis);

void expectPlane(const ZoPlane& plane, const reference::Vec& ref, const reference::Vec& normal) {
  expectNear(plane.refPoint(), ref, 0);
  EXPECT_EQ(plane.refPoint().w, 1.0);
  expectNear(plane.normal(), normal, 0);
}

reference::Real distanceOf(const ZoPlane& plane, const ZoPoint& q) {
  return dot(of(q) - of(plane.refPoint()), reference::unit(of(plane.normal())));
}

}  // namespace

TEST(Plane, ConstructorsKeepTheNormalAsGivenAndReplaceDegenerateParts) {
  const ZoPoint p(1, 2, 3);
  expectPlane(ZoPlane(), {0, 0, 0}, {0, 0, 1});
  expectPlane(ZoPlane(p, ZoVector(0, 3, 4)), {1, 2, 3}, {0, 3, 4});
  expectPlane(ZoPlane(p, ZoVector(1e-10, 0, 0)), {1, 2, 3}, {0, 0, 1});
  expectPlane(ZoPlane(p, ZoVector(aboveTol, 0, 0)), {1, 2, 3}, {aboveTol, 0, 0});
  const ZoPoint onX = p + ZoVector(2, 0, 0), onY = p + ZoVector(0, 3, 0),
                onZ = p + ZoVector(0, 0, 5);
  expectPlane(ZoPlane(p, onX, onY), {1, 2, 3}, {0, 0, 6});
  expectPlane(ZoPlane(p, p, onZ), {1, 2, 3}, {0, -5, 0});  // +X for the first difference
  expectPlane(ZoPlane(p, onX, p), {1, 2, 3}, {0, 0, 2});   // +Y for the second
  expectPlane(ZoPlane(p, onX, onX), {1, 2, 3}, {0, 0, 0});
  expectPlane(ZoPlane(p, ZoVector(0, 2, 0), ZoVector(0, 0, 3)), {1, 2, 3}, {6, 0, 0});
  expectPlane(ZoPlane(p, ZoVector(), ZoVector(0, 0, 3)), {1, 2, 3}, {0, 0, 0});
}

TEST(Plane, SetReplacesThePlaneOrLeavesItAndSaysWhy) {
  const ZoPoint p(1, 2, 3), onX(3, 2, 3), onY(1, 5, 3), twiceX(5, 2, 3);
  const ZoVector zero, tiny(0, 1e-10, 0), x(2, 0, 0), y(0, 3, 0);
  const auto after = [](int expected, auto... arguments) {
    ZoPlane plane(ZoPoint(9, 9, 9), ZoVector(9, 9, 9));
    EXPECT_EQ(plane.set(arguments...), expected);
    if (expected != 0) expectPlane(plane, {9, 9, 9}, {9, 9, 9});
    return plane;
  };
  for (wchar_t c = 0; c < 256; ++c) {
    const bool names = std::wstring_view(L"xyzXYZ").find(c) != std::wstring_view::npos;
    if (!names) after(1, c);
  }
  after(1, L'\xFF38');  // full-width X
  for (const wchar_t c : {L'x', L'X'}) expectPlane(after(0, c), {0, 0, 0}, {1, 0, 0});
  for (const wchar_t c : {L'y', L'Y'}) expectPlane(after(0, c), {0, 0, 0}, {0, 1, 0});
  for (const wchar_t c : {L'z', L'Z'}) expectPlane(after(0, c), {0, 0, 0}, {0, 0, 1});

  expectPlane(after(0, p, ZoVector(0, 3, 4)), {1, 2, 3}, {0, 3, 4});
  expectPlane(after(0, p, ZoVector(0, aboveTol, 0)), {1, 2, 3}, {0, aboveTol, 0});
  for (const ZoVector& n : {zero, tiny, ZoVector(notANumber, 1, 1)}) after(3, p, n);

  expectPlane(after(0, p, onX, onY), {1, 2, 3}, {0, 0, 6});
  after(3, p, p, onY);
  after(3, p, onX, p);
  after(3, p, onX, twiceX);
  expectPlane(after(0, p, x, y), {1, 2, 3}, {0, 0, 6});
  after(3, p, tiny, x);
  after(3, p, x, tiny);
  after(3, p, x, x * -2.0);
  // Two directions long enough whose product is not.
  after(3, p, ZoVector(0.9e-5, 0, 0), ZoVector(0, 1e-5, 0));

  expectPlane(after(0, 0.0, 0.0, 2.0, -4.0), {0, 0, 2}, {0, 0, 1});
  expectPlane(after(0, 0.0, -aboveTol, 0.0, 0.0), {0, 0, 0}, {0, -1, 0});
  after(3, 0.0, 1e-10, 0.0, 1.0);
  after(3, 0.0, 0.0, 0.0, 1.0);
  after(3, notANumber, 1.0, 0.0, 1.0);
}

TEST(Plane, CoefficientsGiveTheUnitNormalAndThePointNearestToTheOrigin) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoVector n = random.direction();
    const double d = random.real(-100, 100);
    ZoPlane plane;
    ASSERT_EQ(plane.set(n.x, n.y, n.z, d), 0);
    const auto squared = dot(of(n), of(n));
    expectNear(plane.normal(), reference::unit(of(n)), 4e-16);
    expectNear(plane.refPoint(), of(n) * (-d / squared), 1e-13);
  }
}

TEST(Plane, DistancesAreSignedAndTheSameForOnePointAndForMany) {
  Random random;
  std::vector<ZoPoint> points;
  for (int i = 0; i < rounds; ++i) points.push_back(random.point(1000));
  const ZoPlane plane(random.point(), random.direction());
  std::vector<double> distances(points.size() + 2, 77.0);
  plane.signedDistancesTo(points, distances);
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_NEAR(distances[i], static_cast<double>(distanceOf(plane, points[i])), 1e-12);
    EXPECT_EQ(distances[i], plane.signedDistanceTo(points[i]));
  }
  EXPECT_EQ(distances[points.size()], 77.0);
  double two[3] = {5, 5, 5};
  plane.signedDistancesTo(points, std::span<double>(two, 2));
  EXPECT_EQ(two[1], distances[1]);
  EXPECT_EQ(two[2], 5.0);

  // A plane without a normal is at distance 0 of everything.
  const ZoPlane none(ZoPoint(), ZoVector(1, 0, 0), ZoVector(1, 0, 0));
  EXPECT_EQ(none.signedDistanceTo({4, 5, 6}), 0.0);
  none.signedDistancesTo(std::span(points.data(), 1), two);
  EXPECT_EQ(two[0], 0.0);
  EXPECT_GT(ZoPlane::s_normalX.signedDistanceTo({1, 0, 0}), 0.0);
  EXPECT_LT(ZoPlane::s_normalNegX.signedDistanceTo({1, 0, 0}), 0.0);
}

TEST(Plane, OnPlaneAndEqualityHoldAtExactlyTheTolerance) {
  const ZoTol tol(1e-3, 1e-6);
  const ZoPlane plane(ZoPoint(5, 6, 0), ZoVector(0, 0, 40));
  const double above = std::nextafter(1e-3, 1.0);
  for (const auto& [height, on] : {std::pair{0.0, true},
                                   {1e-3, true},
                                   {-1e-3, true},
                                   {above, false},
                                   {-above, false},
                                   {notANumber, false},
                                   {infinity, false}}) {
    EXPECT_EQ(plane.isOnPlane(ZoPoint(1e6, 0, height), tol), on) << height;
    EXPECT_EQ(plane.isEqualTo(ZoPlane(ZoPoint(0, 9, height), ZoVector(0, 0, 1)), tol), on);
  }
  EXPECT_TRUE(plane.isOnPlane(plane.refPoint(), ZoTol(0, 0)));
  EXPECT_FALSE(plane.isOnPlane(ZoPoint(0, 0, 2e-10)));
  EXPECT_FALSE(plane.isEqualTo(ZoPlane(ZoPoint(), ZoVector(0, 0, -1)), tol));
  EXPECT_TRUE(plane.isEqualTo(ZoPlane(plane.refPoint(), ZoVector(0.9e-6, 0, 1)), tol));
  EXPECT_FALSE(plane.isEqualTo(ZoPlane(plane.refPoint(), ZoVector(1.1e-6, 0, 1)), tol));
  EXPECT_TRUE(plane.isNormal({0, 0, -3}));
  EXPECT_FALSE(plane.isNormal({1e-9, 0, 3}));
}

TEST(Plane, ProjectionLiesInThePlaneAlongTheDirection) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPlane plane(random.point(), random.direction());
    const ZoPoint q = random.point();
    const ZoVector v = random.vector(), direction = random.direction();
    const auto n = reference::unit(of(plane.normal())), d = reference::unit(of(direction));
    const auto slope = dot(d, n);
    if (std::fabs(slope) < 0.01) continue;
    const auto expected = of(q) - d * (distanceOf(plane, q) / slope);
    expectNear(plane.getProjection(q, direction), expected, 1e-11);
    expectNear(plane.getProjection(q, -direction), expected, 1e-11);
    expectNear(plane.getProjection(v, direction), of(v) - d * (dot(of(v), n) / slope), 1e-11);
    // Without a direction, or with one in the plane: along the normal.
    const auto foot = of(q) - n * distanceOf(plane, q);
    for (const ZoVector& none : {ZoVector(), ZoVector(1e-10, 0, 0), ZoVector(notANumber, 0, 0)}) {
      expectNear(plane.getProjection(q, none), foot, 1e-13);
      expectNear(plane.getProjection(v, none), of(v) - n * dot(of(v), n), 1e-13);
    }
  }
  const ZoPlane ground;
  expectNear(ground.getProjection(ZoPoint(1, 2, 3), ZoVector(5, 1, 0)), {1, 2, 0}, 0);
  expectNear(ground.getProjection(ZoVector(1, 2, 3), ZoVector(5, 1, 0)), {1, 2, 0}, 0);
  expectNear(ground.getProjection(ZoPoint(1, 2, 1), ZoVector(1, 0, 1e-10)), {1, 2, 0}, 0);
  expectNear(ground.getProjection(ZoPoint(1, 2, 1), ZoVector(1, 0, 1e-9)), {1 - 1e9L, 2, 0}, 1e-6);
  const ZoPlane none(ZoPoint(), ZoVector(1, 0, 0), ZoVector(1, 0, 0));
  expectNear(none.getProjection(ZoPoint(1, 2, 3), ZoVector(0, 0, 1)), {1, 2, 3}, 0);
}

TEST(Plane, IntersectionIsTheLineOfBothNearestToTheReferencePoint) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPlane a(random.point(), random.direction()), b(random.point(), random.direction());
    const auto line =
        reference::cross(reference::unit(of(a.normal())), reference::unit(of(b.normal())));
    if (reference::length(line) < 0.01) continue;
    ZoPoint point;
    ZoVector direction;
    ASSERT_TRUE(a.intersectWith(b, point, direction));
    EXPECT_NEAR(static_cast<double>(distanceOf(a, point)), 0.0, 1e-11);
    EXPECT_NEAR(static_cast<double>(distanceOf(b, point)), 0.0, 1e-11);
    EXPECT_NEAR((point - a.refPoint()).dotProduct(direction), 0.0, 1e-11);
    EXPECT_EQ(point.w, 1.0);
    expectNear(direction, reference::unit(line), 1e-13);
  }
}

TEST(Plane, ParallelPlanesDoNotIntersectAndLeaveTheOutParameters) {
  const ZoPlane ground;
  const ZoVector slanted(1e-4, 0, 1);
  const ZoPlane others[] = {ground, ZoPlane(ZoPoint(0, 0, 5), ZoVector(0, 0, -7)),
                            ZoPlane(ZoPoint(), ZoVector(1, 0, 0), ZoVector(1, 0, 0)),
                            ZoPlane(ZoPoint(), ZoVector(notANumber, 0, 0)),
                            ZoPlane(ZoPoint(), slanted)};
  for (const ZoPlane& other : others) {
    ZoPoint point(7, 7, 7);
    ZoVector direction(8, 8, 8);
    EXPECT_FALSE(ground.intersectWith(other, point, direction, ZoTol(1e-3, 1e-3)));
    expectNear(point, {7, 7, 7}, 0);
    expectNear(direction, {8, 8, 8}, 0);
  }
  ZoPoint point;
  ZoVector direction;
  EXPECT_TRUE(ground.intersectWith(ZoPlane(ZoPoint(), slanted), point, direction));
}

TEST(CoSystem, AxesAreRightHandedUnitVectorsFromEveryConstructor) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPoint origin = random.point();
    const ZoVector x = random.direction(), y = random.direction();
    const auto z = reference::cross(of(x), of(y));
    if (reference::length(z) < 1) continue;
    const ZoCoSystem byAxes(origin, x, y), byPoints(origin, origin + x, origin + y),
        byNormal(origin, x);
    for (const ZoCoSystem& s : {byAxes, byPoints, byNormal}) {
      expectNear(s.origin(), of(origin), 0);
      EXPECT_EQ(s.degeneracy(), 0.0);
      EXPECT_TRUE(s.xAxis().isUnitLength() && s.yAxis().isUnitLength() && s.zAxis().isUnitLength());
      expectNear(s.zAxis(), reference::cross(of(s.xAxis()), of(s.yAxis())), 1e-15);
      EXPECT_NEAR(s.xAxis().dotProduct(s.yAxis()), 0.0, 1e-15);
      const ZoPoint p = random.point();
      EXPECT_NEAR((s.toWorld() * (s.fromWorld() * p)).distance(p), 0.0, 1e-13);
      EXPECT_NEAR((s.fromWorld() * p).z,
                  static_cast<double>(dot(of(p) - of(origin), of(s.zAxis()))), 1e-13);
    }
    expectNear(byAxes.xAxis(), reference::unit(of(x)), 1e-15);
    expectNear(byAxes.zAxis(), reference::unit(z), 1e-13);
    EXPECT_GT(byAxes.yAxis().dotProduct(y), 0.0);
    expectNear(byPoints.yAxis(), of(byAxes.yAxis()), 1e-13);
    expectNear(byNormal.toWorld() * ZoVector(0, 0, 1), reference::unit(of(x)), 1e-15);
  }
}

TEST(CoSystem, ArbitraryAxisRuleChangesAtOneSixtyFourth) {
  const auto xAxis = [](double nx, double ny) {
    return ZoCoSystem(ZoPoint(), ZoVector(nx, ny, std::sqrt(1 - nx * nx - ny * ny))).xAxis();
  };
  const double below = 1.0 / 64 - 1e-9, above = 1.0 / 64 + 1e-9;
  EXPECT_NEAR(xAxis(below, -below).x, 1.0, 1e-3);  // world Y × Z
  EXPECT_NEAR(xAxis(-above, below).y, -1.0, 0.5);  // world Z × Z
  EXPECT_NEAR(xAxis(below, above).x, -0.707, 1e-3);
  EXPECT_EQ(ZoCoSystem(ZoPoint(), ZoVector(0, 0, -1)).xAxis(), ZoVector(-1, 0, 0));
  EXPECT_EQ(ZoCoSystem(ZoPoint(), ZoVector(5, 0, 0)).xAxis(), ZoVector(0, 1, 0));
}

TEST(CoSystem, DegenerateAxesAreRefusedBySetAndMarkedByConstructors) {
  const ZoPoint o(1, 2, 3);
  const ZoVector x(2, 0, 0), tiny(0, 1e-10, 0), bad(0, notANumber, 1);
  const ZoCoSystem failed[] = {
      ZoCoSystem(o, x, ZoVector()), ZoCoSystem(o, tiny, x),  ZoCoSystem(o, x, -x),
      ZoCoSystem(o, x, x + tiny),   ZoCoSystem(o, bad, x),   ZoCoSystem(o, tiny),
      ZoCoSystem(o, bad),           ZoCoSystem(o, o, o + x), ZoCoSystem(o, o + x, o + x * 3.0)};
  for (const ZoCoSystem& s : failed) {
    EXPECT_TRUE(s.toWorld().isIdentity());
    EXPECT_EQ(s.degeneracy(), ZoCoSystem::s_degenerate);
  }
  EXPECT_NE(ZoCoSystem::s_degenerate, 0.0);

  ZoCoSystem s(o, ZoVector(0, 1, 0), ZoVector(0, 0, 1));
  const ZoMatrix before = s.toWorld();
  EXPECT_EQ(s.set(o, x, x), 3);
  EXPECT_EQ(s.set(o, tiny), 3);
  EXPECT_EQ(s.set(o, o, o), 3);
  reference::expectSame(s.toWorld(), before);
  EXPECT_EQ(s.degeneracy(), 0.0);
  ZoCoSystem recovered = failed[0];
  EXPECT_EQ(recovered.set(o, x, ZoVector(0, 1, 0)), 0);
  EXPECT_EQ(recovered.degeneracy(), 0.0);
}
