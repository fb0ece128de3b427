// Independent arithmetic in long double, by other constructions than the library's, and seeded
// random input.
#pragma once

#include <gtest/gtest.h>
#include <zo/geometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace reference {

using Real = long double;

inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double infinity = std::numeric_limits<double>::infinity();

struct Vec {
  Real x, y, z;
};

inline Vec of(const ZoVector& v) { return {v.x, v.y, v.z}; }
inline Vec of(const ZoPoint& p) { return {p.x, p.y, p.z}; }
inline Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec operator*(const Vec& a, Real s) { return {a.x * s, a.y * s, a.z * s}; }
inline Real dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec cross(const Vec& a, const Vec& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Real length(const Vec& a) { return std::hypot(a.x, a.y, a.z); }
inline Vec unit(const Vec& a) { return a * (1 / length(a)); }

// A turn by a quaternion: v + 2 q × (q × v + w v).
inline Vec turned(const Vec& v, const Vec& axis, Real angle) {
  const Vec q = unit(axis) * std::sin(angle / 2);
  return v + cross(q, cross(q, v) + v * std::cos(angle / 2)) * 2;
}

using Matrix = std::array<std::array<Real, 4>, 4>;

inline Matrix of(const ZoMatrix& m) {
  Matrix r{};
  for (unsigned int i = 0; i < 4; ++i) {
    for (unsigned int j = 0; j < 4; ++j) r[i][j] = m(i, j);
  }
  return r;
}

inline Matrix product(const Matrix& a, const Matrix& b) {
  Matrix r{};
  for (unsigned int i = 0; i < 4; ++i) {
    for (unsigned int j = 0; j < 4; ++j) {
      for (unsigned int k = 0; k < 4; ++k) r[i][j] += a[i][k] * b[k][j];
    }
  }
  return r;
}

// By the sum over all permutations.
inline Real determinant(const Matrix& a) {
  std::array<unsigned int, 4> p = {0, 1, 2, 3};
  Real sum = 0;
  do {
    Real term = 1;
    for (unsigned int i = 0; i < 4; ++i) {
      term *= a[i][p[i]];
      for (unsigned int j = 0; j < i; ++j) term *= p[j] > p[i] ? -1 : 1;
    }
    sum += term;
  } while (std::next_permutation(p.begin(), p.end()));
  return sum;
}

template <typename Value>
void expectNear(const Value& value, const Vec& expected, Real tolerance) {
  EXPECT_LE(length(of(value) - expected), tolerance)
      << value << " instead of (" << static_cast<double>(expected.x) << ", "
      << static_cast<double>(expected.y) << ", " << static_cast<double>(expected.z) << ")";
}

inline void expectNear(const ZoMatrix& m, const Matrix& expected, Real tolerance) {
  for (unsigned int i = 0; i < 4; ++i) {
    for (unsigned int j = 0; j < 4; ++j) {
      EXPECT_LE(std::fabs(m(i, j) - expected[i][j]), tolerance) << i << ", " << j << " of " << m;
    }
  }
}

inline void expectSame(const ZoMatrix& a, const ZoMatrix& b) {
  EXPECT_TRUE(std::equal(a.asDblArray(), a.asDblArray() + 16, b.asDblArray())) << a << " and " << b;
}

class Random {
 public:
  double real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  ZoVector vector(double size = 10.0) {
    return {real(-size, size), real(-size, size), real(-size, size)};
  }
  ZoPoint point(double size = 10.0) { return ZoPoint(vector(size)); }
  // At least 1 long.
  ZoVector direction() {
    ZoVector v;
    do v = vector();
    while (v.length() < 1.0);
    return v;
  }
  ZoMatrix matrix() {
    ZoMatrix m;
    for (unsigned int i = 0; i < 16; ++i) m.asDblArray()[i] = real(-10.0, 10.0);
    return m;
  }
  ZoMatrix affine() {
    ZoMatrix m = matrix();
    for (unsigned int j = 0; j < 4; ++j) m(3, j) = j == 3 ? 1.0 : 0.0;
    return m;
  }

 private:
  std::mt19937_64 engine_{20240229};
};

// Enough to meet the awkward cases, over in a moment.
inline constexpr int rounds = 500;

}  // namespace reference
