// Geometry beside Eigen, glm, and the plain loop by hand.
#include <benchmark/benchmark.h>
#include <zo/geometry.h>

#include <Eigen/Core>
#include <cmath>
#include <cstddef>
#include <glm/mat4x4.hpp>
#include <glm/vec4.hpp>
#include <random>
#include <vector>

namespace {

constexpr std::size_t manyPoints = 100'000;
constexpr std::size_t millionPoints = 1'000'000;

using EigenPoints = std::vector<Eigen::Vector4d, Eigen::aligned_allocator<Eigen::Vector4d>>;

// A turn, a scale and a translation: nothing in it is 0 or 1 by luck.
ZoMatrix sampleMatrix(double seed) {
  ZoMatrix turn, grow;
  turn.rotate(ZoPoint(1.0, 2.0, seed), ZoVector(1.0, seed, 3.0), 0.7 + seed);
  grow.setToScaling(1.0 + seed * 1e-3, ZoPoint(seed, 4.0, 5.0));
  return turn * grow;
}

Eigen::Matrix4d toEigen(const ZoMatrix& m) {
  Eigen::Matrix4d e;
  for (int i = 0; i < 16; ++i) e(i / 4, i % 4) = m.asDblArray()[i];
  return e;
}

glm::dmat4 toGlm(const ZoMatrix& m) {
  glm::dmat4 g;
  for (int i = 0; i < 16; ++i) g[i % 4][i / 4] = m.asDblArray()[i];
  return g;
}

std::vector<ZoPoint> samplePoints(std::size_t count) {
  std::mt19937_64 random(42);
  std::uniform_real_distribution<double> coordinate(-1000.0, 1000.0);
  std::vector<ZoPoint> points(count);
  for (ZoPoint& p : points) p = ZoPoint(coordinate(random), coordinate(random), coordinate(random));
  return points;
}

EigenPoints eigenPoints(std::size_t count) {
  EigenPoints points;
  for (const ZoPoint& p : samplePoints(count)) points.emplace_back(p.x, p.y, p.z, p.w);
  return points;
}

std::vector<glm::dvec4> glmPoints(std::size_t count) {
  std::vector<glm::dvec4> points;
  for (const ZoPoint& p : samplePoints(count)) points.emplace_back(p.x, p.y, p.z, p.w);
  return points;
}

// a * b into c, all in memory.
template <typename Matrix>
void productOf(benchmark::State& state, Matrix a, Matrix b) {
  Matrix c = a;
  for (auto _ : state) {
    benchmark::DoNotOptimize(&a);
    benchmark::DoNotOptimize(&b);
    benchmark::ClobberMemory();
    c = a * b;
    benchmark::DoNotOptimize(&c);
    benchmark::ClobberMemory();
  }
}

void productOurs(benchmark::State& state) { productOf(state, sampleMatrix(1), sampleMatrix(2)); }
void productEigen(benchmark::State& state) {
  productOf<Eigen::Matrix4d>(state, toEigen(sampleMatrix(1)), toEigen(sampleMatrix(2)));
}
void productGlm(benchmark::State& state) {
  productOf(state, toGlm(sampleMatrix(1)), toGlm(sampleMatrix(2)));
}
BENCHMARK(productOurs)->Name("MatrixProduct/4x4/ours");
BENCHMARK(productEigen)->Name("MatrixProduct/4x4/peer:eigen");
BENCHMARK(productGlm)->Name("MatrixProduct/4x4/peer:glm");

template <typename Matrix, typename Point>
void onePoint(benchmark::State& state, Matrix m, Point p) {
  Point image = p;
  for (auto _ : state) {
    benchmark::DoNotOptimize(&m);
    benchmark::DoNotOptimize(&p);
    benchmark::ClobberMemory();
    image = m * p;
    benchmark::DoNotOptimize(&image);
    benchmark::ClobberMemory();
  }
}

void onePointOurs(benchmark::State& state) {
  onePoint(state, sampleMatrix(1), ZoPoint(1.0, 2.0, 3.0));
}
void onePointEigen(benchmark::State& state) {
  onePoint<Eigen::Matrix4d, Eigen::Vector4d>(state, toEigen(sampleMatrix(1)),
                                             Eigen::Vector4d(1.0, 2.0, 3.0, 1.0));
}
void onePointGlm(benchmark::State& state) {
  onePoint(state, toGlm(sampleMatrix(1)), glm::dvec4(1.0, 2.0, 3.0, 1.0));
}
BENCHMARK(onePointOurs)->Name("MatrixTimesPoint/1/ours");
BENCHMARK(onePointEigen)->Name("MatrixTimesPoint/1/peer:eigen");
BENCHMARK(onePointGlm)->Name("MatrixTimesPoint/1/peer:glm");

// The way everybody writes it: one product per point.
template <typename Matrix, typename Points>
void pointByPoint(benchmark::State& state, Matrix m, const Points& points) {
  Points images = points;
  benchmark::DoNotOptimize(&m);
  for (auto _ : state) {
    for (std::size_t i = 0; i < points.size(); ++i) images[i] = m * points[i];
    benchmark::DoNotOptimize(images.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long long>(points.size()));
}

void manyPointsOurs(benchmark::State& state) {
  pointByPoint(state, sampleMatrix(1), samplePoints(manyPoints));
}
void manyPointsEigen(benchmark::State& state) {
  pointByPoint<Eigen::Matrix4d>(state, toEigen(sampleMatrix(1)), eigenPoints(manyPoints));
}
void manyPointsGlm(benchmark::State& state) {
  pointByPoint(state, toGlm(sampleMatrix(1)), glmPoints(manyPoints));
}
BENCHMARK(manyPointsOurs)->Name("MatrixTimesPoint/100000/ours");
BENCHMARK(manyPointsEigen)->Name("MatrixTimesPoint/100000/peer:eigen");
BENCHMARK(manyPointsGlm)->Name("MatrixTimesPoint/100000/peer:glm");

ZoPlane samplePlane() { return {ZoPoint(3.0, 4.0, 5.0), ZoVector(1.0, 2.0, -3.0)}; }

void planeOurs(benchmark::State& state) {
  const std::vector<ZoPoint> points = samplePoints(millionPoints);
  std::vector<double> distances(points.size());
  const ZoPlane plane = samplePlane();
  for (auto _ : state) {
    plane.signedDistancesTo(points, distances);
    benchmark::DoNotOptimize(distances.data());
    benchmark::ClobberMemory();
  }
}
void planeOneByOne(benchmark::State& state) {
  const std::vector<ZoPoint> points = samplePoints(millionPoints);
  std::vector<double> distances(points.size());
  const ZoPlane plane = samplePlane();
  for (auto _ : state) {
    for (std::size_t i = 0; i < points.size(); ++i)
      distances[i] = plane.signedDistanceTo(points[i]);
    benchmark::DoNotOptimize(distances.data());
    benchmark::ClobberMemory();
  }
}
void planeByHand(benchmark::State& state) {
  const std::vector<ZoPoint> points = samplePoints(millionPoints);
  std::vector<double> distances(points.size());
  const ZoPlane plane = samplePlane();
  const ZoVector n = plane.normal();
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  const double nx = n.x / length, ny = n.y / length, nz = n.z / length;
  const ZoPoint r = plane.refPoint();
  for (auto _ : state) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      distances[i] = (points[i].x - r.x) * nx + (points[i].y - r.y) * ny + (points[i].z - r.z) * nz;
    }
    benchmark::DoNotOptimize(distances.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(planeOurs)->Name("PlaneDistance/all/ours");
BENCHMARK(planeByHand)->Name("PlaneDistance/all/peer:loop");
BENCHMARK(planeOneByOne)->Name("PlaneDistance/one_by_one/ours");
BENCHMARK(planeByHand)->Name("PlaneDistance/one_by_one/peer:loop");

// Every other point of the second set is off by more than the tolerance.
std::vector<ZoPoint> nearlySame(std::vector<ZoPoint> points) {
  for (std::size_t i = 0; i < points.size(); ++i) points[i].x += i % 2 == 0 ? 1e-12 : 1e-6;
  return points;
}

void equalOurs(benchmark::State& state) {
  const std::vector<ZoPoint> a = samplePoints(millionPoints);
  const std::vector<ZoPoint> b = nearlySame(a);
  const ZoTol tol(1e-9, 1e-9);
  for (auto _ : state) {
    std::size_t equal = 0;
    for (std::size_t i = 0; i < a.size(); ++i) equal += a[i].isEqualTo(b[i], tol) ? 1 : 0;
    benchmark::DoNotOptimize(equal);
  }
}
void equalByHand(benchmark::State& state) {
  const std::vector<ZoPoint> a = samplePoints(millionPoints);
  const std::vector<ZoPoint> b = nearlySame(a);
  const double limit = 1e-9 * 1e-9;
  for (auto _ : state) {
    std::size_t equal = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
      const double dx = a[i].x - b[i].x, dy = a[i].y - b[i].y, dz = a[i].z - b[i].z;
      equal += dx * dx + dy * dy + dz * dz <= limit ? 1 : 0;
    }
    benchmark::DoNotOptimize(equal);
  }
}
BENCHMARK(equalOurs)->Name("ToleranceEquality/1000000/ours");
BENCHMARK(equalByHand)->Name("ToleranceEquality/1000000/peer:loop");

}  // namespace
