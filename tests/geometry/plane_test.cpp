// Planes and coordinate systems.
#include <cmath>
#include <span>
#include <vector>

#include "geometry/reference.h"

using reference::expectNear;
using reference::notANumber;
using reference::of;
using reference::Random;
using reference::rounds;

namespace {

const double aboveTol = std::nextafter(1e-10, 1.0);

reference::Real distanceOf(const ZoPlane& plane, const ZoPoint& q) {
  return dot(of(q) - of(plane.refPoint()), reference::unit(of(plane.normal())));
}

}  // namespace

TEST(Plane, SetReplacesThePlaneOrLeavesItAndSaysWhy) {
  const ZoPoint p(1, 2, 3), onX(3, 2, 3), onY(1, 5, 3), twiceX(5, 2, 3);
  const ZoVector zero, tiny(0, 1e-10, 0), x(2, 0, 0);
  const auto expectRefused = [](int expected, auto... arguments) {
    ZoPlane plane(ZoPoint(9, 9, 9), ZoVector(9, 9, 9));
    EXPECT_EQ(plane.set(arguments...), expected);
    expectNear(plane.refPoint(), {9, 9, 9}, 0);
    expectNear(plane.normal(), {9, 9, 9}, 0);
  };
  for (const ZoVector& n : {zero, tiny, ZoVector(notANumber, 1, 1)}) expectRefused(3, p, n);
  expectRefused(1, L'w');
  expectRefused(3, p, p, onY);
  expectRefused(3, p, onX, twiceX);
  expectRefused(3, p, x, tiny);
  expectRefused(3, p, x, x * -2.0);
  // Two directions long enough whose product is not.
  expectRefused(3, p, ZoVector(0.9e-5, 0, 0), ZoVector(0, 1e-5, 0));
  expectRefused(3, 0.0, 1e-10, 0.0, 1.0);
  expectRefused(3, notANumber, 1.0, 0.0, 1.0);
  ZoPlane plane;
  EXPECT_EQ(plane.set(p, ZoVector(0, aboveTol, 0)), 0);
  expectNear(plane.normal(), {0, aboveTol, 0}, 0);  // as given
  EXPECT_EQ(plane.set(p, onX, onY), 0);
  expectNear(plane.normal(), {0, 0, 6}, 0);
  EXPECT_EQ(plane.set(0.0, 0.0, 2.0, -4.0), 0);  // of unit length, nearest to the origin
  expectNear(plane.refPoint(), {0, 0, 2}, 0);
  expectNear(plane.normal(), {0, 0, 1}, 0);
  // The constructors replace what set refuses: +X for the first difference, +Y for the second.
  expectNear(ZoPlane(p, tiny).normal(), {0, 0, 1}, 0);
  expectNear(ZoPlane(p, p, ZoPoint(1, 2, 8)).normal(), {0, -5, 0}, 0);
  expectNear(ZoPlane(p, onX, p).normal(), {0, 0, 2}, 0);
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
}

TEST(Plane, ProjectionAndIntersectionAgreeWithLongDouble) {
  Random random;
  ZoPoint point;
  ZoVector line;
  for (int i = 0; i < rounds; ++i) {
    const ZoPlane plane(random.point(), random.direction());
    const ZoPlane other(random.point(), random.direction());
    const ZoPoint q = random.point();
    const ZoVector v = random.vector(), direction = random.direction();
    const auto n = reference::unit(of(plane.normal())), d = reference::unit(of(direction));
    const auto slope = dot(d, n);
    const auto expected = reference::cross(n, reference::unit(of(other.normal())));
    if (std::fabs(slope) < 0.01 || reference::length(expected) < 0.01) continue;
    expectNear(plane.getProjection(q, direction), of(q) - d * (distanceOf(plane, q) / slope),
               1e-11);
    expectNear(plane.getProjection(v, direction), of(v) - d * (dot(of(v), n) / slope), 1e-11);
    // Without a direction: along the normal.
    expectNear(plane.getProjection(q, ZoVector()), of(q) - n * distanceOf(plane, q), 1e-13);
    // The line of both planes, at its point nearest to the reference point.
    ASSERT_TRUE(plane.intersectWith(other, point, line));
    EXPECT_NEAR(static_cast<double>(distanceOf(plane, point)), 0.0, 1e-11);
    EXPECT_NEAR(static_cast<double>(distanceOf(other, point)), 0.0, 1e-11);
    EXPECT_NEAR((point - plane.refPoint()).dotProduct(line), 0.0, 1e-11);
    expectNear(line, reference::unit(expected), 1e-13);
  }
  const ZoPlane ground;  // and a direction in the plane
  expectNear(ground.getProjection(ZoPoint(1, 2, 1), ZoVector(1, 0, 1e-10)), {1, 2, 0}, 0);
  // Parallel planes do not intersect and leave the out-parameters.
  point = ZoPoint(7, 7, 7);
  for (const ZoPlane& other : {ground, ZoPlane(ZoPoint(0, 0, 5), ZoVector(0, 0, -7)),
                               ZoPlane(ZoPoint(), ZoVector(notANumber, 0, 0))}) {
    EXPECT_FALSE(ground.intersectWith(other, point, line));
    expectNear(point, {7, 7, 7}, 0);
  }
}

TEST(CoSystem, DegenerateAxesAreRefusedBySetAndMarkedByConstructors) {
  const ZoPoint o(1, 2, 3);
  const ZoVector x(2, 0, 0), tiny(0, 1e-10, 0), bad(0, notANumber, 1);
  const ZoCoSystem failed[] = {ZoCoSystem(o, tiny, x),     ZoCoSystem(o, x, -x),
                               ZoCoSystem(o, x, x + tiny), ZoCoSystem(o, bad, x),
                               ZoCoSystem(o, tiny),        ZoCoSystem(o, bad),
                               ZoCoSystem(o, o, o + x),    ZoCoSystem(o, o + x, o + x * 3.0)};
  for (const ZoCoSystem& s : failed) {
    EXPECT_TRUE(s.toWorld().isIdentity());
    EXPECT_EQ(s.degeneracy(), ZoCoSystem::s_degenerate);
  }
  ZoCoSystem s(o, ZoVector(0, 1, 1), ZoVector(0, 0, 1));
  EXPECT_EQ(s.degeneracy(), 0.0);
  expectNear(s.zAxis(), {1, 0, 0}, 0);  // right-handed, of unit vectors
  expectNear(s.yAxis(), {0, -std::sqrt(0.5L), std::sqrt(0.5L)}, 1e-15);
  EXPECT_TRUE((s.toWorld() * s.fromWorld()).isIdentity());
  const ZoMatrix before = s.toWorld();
  for (const int result : {s.set(o, x, x), s.set(o, tiny), s.set(o, o, o)}) EXPECT_EQ(result, 3);
  reference::expectSame(s.toWorld(), before);
}
