#pragma once

#include <cmath>

namespace orvml::detail {

/// A point or a vector in space. Those of the plane have z = 0.
struct Vec {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  friend constexpr Vec operator+(const Vec& a, const Vec& b) noexcept {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
  }
  friend constexpr Vec operator-(const Vec& a, const Vec& b) noexcept {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
  }
  friend constexpr Vec operator*(double factor, const Vec& a) noexcept {
    return {factor * a.x, factor * a.y, factor * a.z};
  }
};

[[nodiscard]] constexpr double dot(const Vec& a, const Vec& b) noexcept {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
[[nodiscard]] constexpr Vec cross(const Vec& a, const Vec& b) noexcept {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
[[nodiscard]] constexpr double triple(const Vec& a, const Vec& b, const Vec& c) noexcept {
  return dot(cross(a, b), c);
}
[[nodiscard]] inline double length(const Vec& a) noexcept { return std::sqrt(dot(a, a)); }

/// The place of a node.
///
/// @param coordinates  `[nodes x dimension]`
[[nodiscard]] inline Vec pointAt(const double* coordinates, int dimension, int node) noexcept {
  const double* point = coordinates + static_cast<long long>(node) * dimension;
  return {point[0], point[1], dimension == 3 ? point[2] : 0.0};
}

}  // namespace orvml::detail
