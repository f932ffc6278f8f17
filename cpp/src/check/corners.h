#pragma once

#include "check/vec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace orvml::detail {

// The corners of each shape with the corners at the ends of their edges: for cells of a plane in
// counter-clockwise order, for solid ones so that the triple product is positive.
inline constexpr std::array<std::array<int, 3>, 1> kTriangleCorners = {{{0, 1, 2}}};
inline constexpr std::array<std::array<int, 3>, 4> kQuadrilateralCorners = {
    {{0, 1, 3}, {1, 2, 0}, {2, 3, 1}, {3, 0, 2}}};
inline constexpr std::array<std::array<int, 4>, 1> kTetrahedronCorners = {{{0, 1, 2, 3}}};
inline constexpr std::array<std::array<int, 4>, 8> kHexahedronCorners = {{{0, 1, 3, 4},
                                                                          {1, 2, 0, 5},
                                                                          {2, 3, 1, 6},
                                                                          {3, 0, 2, 7},
                                                                          {4, 7, 5, 0},
                                                                          {5, 4, 6, 1},
                                                                          {6, 5, 7, 2},
                                                                          {7, 6, 4, 3}}};
inline constexpr std::array<std::array<int, 4>, 6> kPrismCorners = {
    {{0, 1, 2, 3}, {1, 2, 0, 4}, {2, 0, 1, 5}, {3, 5, 4, 0}, {4, 3, 5, 1}, {5, 4, 3, 2}}};
/// The apex has four edges and is left out.
inline constexpr std::array<std::array<int, 4>, 4> kPyramidCorners = {
    {{0, 1, 3, 4}, {1, 2, 0, 4}, {2, 3, 1, 4}, {3, 0, 2, 4}}};

/// The least and the greatest Jacobian that a cell has where it is looked at, and what size they
/// are compared with.
struct Jacobians {
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -std::numeric_limits<double>::infinity();
  double squaredLength = 0.0;  ///< of the edges

  constexpr void add(double jacobian) noexcept {
    lowest = std::min(lowest, jacobian);
    highest = std::max(highest, jacobian);
  }
};

/// The Jacobians in the corners of a solid cell.
template <const auto& kCorners>
[[nodiscard]] inline Jacobians jacobiansOfSolid(const Vec* x) noexcept {
  Jacobians jacobians;
  for (const auto& corner : kCorners) {
    const Vec& from = x[corner[0]];
    const Vec a = x[corner[1]] - from;
    const Vec b = x[corner[2]] - from;
    const Vec c = x[corner[3]] - from;
    jacobians.add(triple(a, b, c));
    jacobians.squaredLength = std::max(jacobians.squaredLength, dot(a, a) + dot(b, b) + dot(c, c));
  }
  return jacobians;
}

/// Those of a hexahedron, whose twelve edges are each made once.
[[nodiscard]] inline Jacobians jacobiansOfHexahedron(const Vec* x) noexcept {
  const std::array<Vec, 4> a = {x[1] - x[0], x[2] - x[3], x[5] - x[4], x[6] - x[7]};
  const std::array<Vec, 4> b = {x[3] - x[0], x[2] - x[1], x[7] - x[4], x[6] - x[5]};
  const std::array<Vec, 4> c = {x[4] - x[0], x[5] - x[1], x[6] - x[2], x[7] - x[3]};
  Jacobians jacobians;
  jacobians.add(triple(a[0], b[0], c[0]));
  jacobians.add(triple(a[0], b[1], c[1]));
  jacobians.add(triple(a[1], b[1], c[2]));
  jacobians.add(triple(a[1], b[0], c[3]));
  jacobians.add(triple(a[2], b[2], c[0]));
  jacobians.add(triple(a[2], b[3], c[1]));
  jacobians.add(triple(a[3], b[3], c[2]));
  jacobians.add(triple(a[3], b[2], c[3]));
  for (std::size_t i = 0; i < 4; ++i) {
    jacobians.squaredLength =
        std::max(jacobians.squaredLength, dot(a[i], a[i]) + dot(b[i], b[i]) + dot(c[i], c[i]));
  }
  return jacobians;
}

/// The Jacobians in the corners of a cell of the plane; in space those against its mean normal.
template <const auto& kCorners>
[[nodiscard]] inline Jacobians jacobiansOfFlat(const Vec* x, bool isInSpace) noexcept {
  std::array<Vec, kCorners.size()> normals;
  Jacobians jacobians;
  Vec sum;
  for (std::size_t i = 0; i < kCorners.size(); ++i) {
    const Vec a = x[kCorners[i][1]] - x[kCorners[i][0]];
    const Vec b = x[kCorners[i][2]] - x[kCorners[i][0]];
    normals[i] = cross(a, b);
    sum = sum + normals[i];
    jacobians.squaredLength = std::max(jacobians.squaredLength, dot(a, a) + dot(b, b));
  }
  const double size = length(sum);
  const Vec direction = !isInSpace ? Vec{0, 0, 1} : size > 0 ? (1 / size) * sum : Vec();
  for (const Vec& normal : normals) {
    jacobians.add(dot(normal, direction));
  }
  return jacobians;
}

}  // namespace orvml::detail
