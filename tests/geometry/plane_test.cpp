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
  const auto expectRefused = [](int expected, auto... arguments) {
    ZoPlane plane(ZoPoint(9, 9, 9), ZoVector(9, 9, 9));
    EXPECT_EQ(plane.set(arguments...), expected);
    expectPlane(plane, {9, 9, 9}, {9, 9, 9});
  };
  const auto set = [](auto... arguments) {
    ZoPlane plane;
    EXPECT_EQ(plane.set(arguments...), 0);
    return plane;
  };
  const std::wstring_view axes = L"xyzXYZ";
  for (wchar_t c = 0; c < 256; ++c) {
    if (axes.find(c) == std::wstring_view::npos) expectRefused(1, c);
  }
  expectRefused(1, L'\xFF38');  // full-width X
  for (unsigned int i = 0; i < 6; ++i) {
    ZoVector normal;
    normal[i % 3] = 1;
    expectPlane(set(axes[i]), {0, 0, 0}, of(normal));
  }
  expectPlane(set(p, ZoVector(0, 3, 4)), {1, 2, 3}, {0, 3, 4});
  expectPlane(set(p, ZoVector(0, aboveTol, 0)), {1, 2, 3}, {0, aboveTol, 0});
  for (const ZoVector& n : {zero, tiny, ZoVector(notANumber, 1, 1)}) expectRefused(3, p, n);
  expectPlane(set(p, onX, onY), {1, 2, 3}, {0, 0, 6});
  expectRefused(3, p, p, onY);
  expectRefused(3, p, onX, p);
  expectRefused(3, p, onX, twiceX);
  expectPlane(set(p, x, y), {1, 2, 3}, {0, 0, 6});
  expectRefused(3, p, tiny, x);
  expectRefused(3, p, x, tiny);
  expectRefused(3, p, x, x * -2.0);
  // Two directions long enough whose product is not.
  expectRefused(3, p, ZoVector(0.9e-5, 0, 0), ZoVector(0, 1e-5, 0));
  expectPlane(set(0.0, 0.0, 2.0, -4.0), {0, 0, 2}, {0, 0, 1});
  expectPlane(set(0.0, -aboveTol, 0.0, 0.0), {0, 0, 0}, {0, -1, 0});
  expectRefused(3, 0.0, 1e-10, 0.0, 1.0);
  expectRefused(3, notANumber, 1.0, 0.0, 1.0);
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
  const ZoPlane plane(random.point(), random.direction());
  std::vector<ZoPoint> points;
  for (int i = 0; i < rounds; ++i) points.push_back(random.point(1000));
  std::vector<double> distances(points.size(), 77.0);
  plane.signedDistancesTo(std::span(points.data(), rounds - 1), distances);
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    EXPECT_NEAR(distances[i], static_cast<double>(distanceOf(plane, points[i])), 1e-12);
    EXPECT_EQ(distances[i], plane.signedDistanceTo(points[i]));
  }
  EXPECT_EQ(distances.back(), 77.0);
  plane.signedDistancesTo(points, std::span(distances.data(), 1));
  EXPECT_EQ(distances[1], plane.signedDistanceTo(points[1]));

  // A plane without a normal is at distance 0 of everything.
  const ZoPlane none(ZoPoint(), ZoVector(1, 0, 0), ZoVector(1, 0, 0));
  EXPECT_EQ(none.signedDistanceTo({4, 5, 6}), 0.0);
  none.signedDistancesTo(points, distances);
  EXPECT_EQ(distances.back(), 0.0);
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
  ZoPoint point;
  ZoVector direction;
  for (int i = 0; i < rounds; ++i) {
    const ZoPlane a(random.point(), random.direction()), b(random.point(), random.direction());
    const auto line =
        reference::cross(reference::unit(of(a.normal())), reference::unit(of(b.normal())));
    if (reference::length(line) < 0.01) continue;
    ASSERT_TRUE(a.intersectWith(b, point, direction));
    EXPECT_NEAR(static_cast<double>(distanceOf(a, point)), 0.0, 1e-11);
    EXPECT_NEAR(static_cast<double>(distanceOf(b, point)), 0.0, 1e-11);
    EXPECT_NEAR((point - a.refPoint()).dotProduct(direction), 0.0, 1e-11);
    EXPECT_EQ(point.w, 1.0);
    expectNear(direction, reference::unit(line), 1e-13);
  }
  // Parallel planes do not intersect and leave the out-parameters.
  const ZoPlane ground, slanted(ZoPoint(), ZoVector(1e-4, 0, 1));
  EXPECT_TRUE(ground.intersectWith(slanted, point, direction));
  point = ZoPoint(7, 7, 7);
  for (const ZoPlane& other : {ground, ZoPlane(ZoPoint(0, 0, 5), ZoVector(0, 0, -7)),
                               ZoPlane(ZoPoint(), ZoVector(1, 0, 0), ZoVector(1, 0, 0)),
                               ZoPlane(ZoPoint(), ZoVector(notANumber, 0, 0)), slanted}) {
    const ZoVector before = direction;
    EXPECT_FALSE(ground.intersectWith(other, point, direction, ZoTol(1e-3, 1e-3)));
    expectNear(point, {7, 7, 7}, 0);
    expectNear(direction, of(before), 0);
  }
}

TEST(CoSystem, AxesAreRightHandedUnitVectorsFromEveryConstructor) {
  Random random;
  for (int i = 0; i < rounds; ++i) {
    const ZoPoint origin = random.point(), p = random.point();
    const ZoVector x = random.direction(), y = random.direction();
    const auto z = reference::cross(of(x), of(y));
    if (reference::length(z) < 1) continue;
    const ZoCoSystem byAxes(origin, x, y), byPoints(origin, origin + x, origin + y),
        byNormal(origin, x);
    for (const ZoCoSystem& s : {byAxes, byPoints, byNormal}) {
      expectNear(s.origin(), of(origin), 0);
      EXPECT_EQ(s.degeneracy(), 0.0);
      EXPECT_TRUE(s.xAxis().isUnitLength());
      EXPECT_NEAR(s.xAxis().dotProduct(s.zAxis()), 0.0, 1e-15);
      expectNear(s.yAxis(), reference::cross(of(s.zAxis()), of(s.xAxis())), 1e-15);
      EXPECT_NEAR((s.toWorld() * (s.fromWorld() * p)).distance(p), 0.0, 1e-13);
      EXPECT_NEAR((s.fromWorld() * p).z, (p - origin).dotProduct(s.zAxis()), 1e-13);
    }
    for (const ZoCoSystem& s : {byAxes, byPoints}) {
      expectNear(s.xAxis(), reference::unit(of(x)), 1e-13);
      expectNear(s.zAxis(), reference::unit(z), 1e-13);
    }
    expectNear(byNormal.zAxis(), reference::unit(of(x)), 1e-15);
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
  for (const int result : {s.set(o, x, x), s.set(o, tiny), s.set(o, o, o)}) EXPECT_EQ(result, 3);
  reference::expectSame(s.toWorld(), before);
  EXPECT_EQ(s.degeneracy(), 0.0);
  s = failed[0];
  EXPECT_EQ(s.set(o, x, ZoVector(0, 1, 0)), 0);
  EXPECT_EQ(s.degeneracy(), 0.0);
}
