#include "check/quality_measures.h"

#include "check/corners.h"
#include "check/shape_facts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvml::detail {

namespace {

using std::numbers::sqrt2;
using std::numbers::sqrt3;

constexpr double kDegrees = 180 / std::numbers::pi;

/// The angle between two vectors from 0 to 180 degrees, exact also where it is small.
double angleBetween(const Vec& a, const Vec& b) noexcept {
  return kDegrees * std::atan2(length(cross(a, b)), dot(a, b));
}

Vec unit(const Vec& a) noexcept { return (1 / length(a)) * a; }

/// The sides of a polygon.
template <std::size_t Corners>
struct Sides {
  std::array<Vec, Corners> side;
  std::array<double, Corners> lengths;
  double longest = 0.0;
  double sum = 0.0;

  explicit Sides(const Vec* x) noexcept {
    for (std::size_t i = 0; i < Corners; ++i) {
      side[i] = x[(i + 1) % Corners] - x[i];
      lengths[i] = length(side[i]);
      longest = std::max(longest, lengths[i]);
      sum += lengths[i];
    }
  }
};

double scaledJacobianOfTriangle(const Vec* x) noexcept {
  const Sides<3> sides(x);
  const auto& l = sides.lengths;
  const double twiceArea = length(cross(sides.side[0], sides.side[1]));
  return 2 / sqrt3 * twiceArea / std::max({l[0] * l[1], l[1] * l[2], l[2] * l[0]});
}

double aspectRatioOfTriangle(const Vec* x) noexcept {
  const Sides<3> sides(x);
  const double twiceArea = length(cross(sides.side[0], sides.side[1]));
  return sides.longest * sides.sum / (2 * sqrt3 * twiceArea);
}

double scaledJacobianOfQuadrilateral(const Vec* x) noexcept {
  const Sides<4> sides(x);
  const auto& e = sides.side;
  const Vec normal = unit(cross(e[0] - e[2], e[1] - e[3]));
  double lowest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t before = (i + 3) % 4;
    const double area = dot(normal, cross(e[before], e[i]));
    lowest = std::min(lowest, area / (sides.lengths[before] * sides.lengths[i]));
  }
  return lowest;
}

double aspectRatioOfQuadrilateral(const Vec* x) noexcept {
  const Sides<4> sides(x);
  const auto& e = sides.side;
  const double areas = length(cross(e[0], e[1])) + length(cross(e[2], e[3]));
  return sides.longest * sides.sum / (2 * areas);
}

/// The least and the greatest angle in the corners of a polygon.
template <std::size_t Corners>
std::array<double, 2> anglesOf(const Vec* x) noexcept {
  std::array<double, 2> angles = {180, 0};
  for (std::size_t i = 0; i < Corners; ++i) {
    const double angle =
        angleBetween(x[(i + 1) % Corners] - x[i], x[(i + Corners - 1) % Corners] - x[i]);
    angles = {std::min(angles[0], angle), std::max(angles[1], angle)};
  }
  return angles;
}

/// sqrt(2) J over the largest product of three lengths at a node.
double scaledJacobianOf(const Vec& p, const Vec& q, const Vec& r, const Vec& s) noexcept {
  const double pq = length(q - p);
  const double pr = length(r - p);
  const double ps = length(s - p);
  const double qr = length(r - q);
  const double qs = length(s - q);
  const double rs = length(s - r);
  const double jacobian = triple(q - p, r - p, s - p);
  const double largest =
      std::max({pq * pr * ps, pq * qr * qs, pr * qr * rs, ps * qs * rs, std::abs(jacobian)});
  return sqrt2 * jacobian / largest;
}

double scaledJacobianOfTetrahedron(const Vec* x) noexcept {
  return scaledJacobianOf(x[0], x[1], x[2], x[3]);
}

double aspectRatioOfTetrahedron(const Vec* x) noexcept {
  double areas = 0.0;
  for (const FaceCorners& face : factsOf(Shape::tetrahedron)->faces) {
    const auto& c = face.corners;
    areas += length(cross(x[c[1]] - x[c[0]], x[c[2]] - x[c[0]])) / 2;
  }
  double longest = 0.0;
  for (const EdgeOfFaces& edge : factsOf(Shape::tetrahedron)->edges) {
    longest = std::max(longest, length(x[edge.corners[1]] - x[edge.corners[0]]));
  }
  const double volume = std::abs(triple(x[1] - x[0], x[2] - x[0], x[3] - x[0])) / 6;
  return longest / (2 * std::sqrt(6.0) * 3 * volume / areas);
}

/// The least triple product of unit edges in the corners.
template <const auto& kCorners>
double leastOfUnitEdges(const Vec* x) noexcept {
  double lowest = std::numeric_limits<double>::infinity();
  for (const auto& corner : kCorners) {
    const Vec& from = x[corner[0]];
    lowest = std::min(lowest, triple(unit(x[corner[1]] - from), unit(x[corner[2]] - from),
                                     unit(x[corner[3]] - from)));
  }
  return lowest;
}

/// The sums of the four edges of each direction of a hexahedron.
std::array<Vec, 3> principalAxes(const Vec* x) noexcept {
  return {(x[1] - x[0]) + (x[2] - x[3]) + (x[5] - x[4]) + (x[6] - x[7]),
          (x[3] - x[0]) + (x[2] - x[1]) + (x[7] - x[4]) + (x[6] - x[5]),
          (x[4] - x[0]) + (x[5] - x[1]) + (x[6] - x[2]) + (x[7] - x[3])};
}

double scaledJacobianOfHexahedron(const Vec* x) noexcept {
  const auto axes = principalAxes(x);
  return std::min(leastOfUnitEdges<kHexahedronCorners>(x),
                  triple(unit(axes[0]), unit(axes[1]), unit(axes[2])));
}

double aspectRatioOfHexahedron(const Vec* x) noexcept {
  const auto axes = principalAxes(x);
  const std::array<double, 3> lengths = {length(axes[0]), length(axes[1]), length(axes[2])};
  return std::max({lengths[0], lengths[1], lengths[2]}) /
         std::min({lengths[0], lengths[1], lengths[2]});
}

double scaledJacobianOfPrism(const Vec* x) noexcept {
  return 2 / sqrt3 * leastOfUnitEdges<kPrismCorners>(x);
}

double scaledJacobianOfPyramid(const Vec* x) noexcept {
  const double least = sqrt2 * std::min({scaledJacobianOf(x[0], x[1], x[2], x[4]),
                                         scaledJacobianOf(x[0], x[2], x[3], x[4]),
                                         scaledJacobianOf(x[0], x[1], x[3], x[4]),
                                         scaledJacobianOf(x[1], x[2], x[3], x[4])});
  return least <= 0 ? 0 : least < 1 ? least : 2 - least;
}

template <Shape shape>
double edgeRatio(const Vec* x) noexcept {
  double longest = 0.0;
  double shortest = std::numeric_limits<double>::infinity();
  for (const EdgeOfFaces& edge : factsOf(shape)->edges) {
    const double size = length(x[edge.corners[1]] - x[edge.corners[0]]);
    longest = std::max(longest, size);
    shortest = std::min(shortest, size);
  }
  return longest / shortest;
}

/// The normal of the mean plane of a face, outward; its length is twice the area.
Vec normalOf(const FaceCorners& face, const Vec* x) noexcept {
  const auto& c = face.corners;
  return face.count == 3 ? cross(x[c[1]] - x[c[0]], x[c[2]] - x[c[0]])
                         : cross(x[c[2]] - x[c[0]], x[c[3]] - x[c[1]]);
}

/// The least and the greatest angle between two faces, inside the cell.
template <Shape shape>
std::array<double, 2> dihedralAnglesOf(const Vec* x) noexcept {
  const ShapeFacts& facts = *factsOf(shape);
  std::array<double, 2> angles = {180, 0};
  for (const EdgeOfFaces& edge : facts.edges) {
    const Vec a = normalOf(facts.faces[edge.faces[0]], x);
    const Vec b = normalOf(facts.faces[edge.faces[1]], x);
    const double angle = 180 - angleBetween(a, b);
    angles = {std::min(angles[0], angle), std::max(angles[1], angle)};
  }
  return angles;
}

template <std::size_t Corners, std::size_t Which>
double angle(const Vec* x) noexcept {
  return anglesOf<Corners>(x)[Which];
}

template <Shape shape, std::size_t Which>
double dihedralAngle(const Vec* x) noexcept {
  return dihedralAnglesOf<shape>(x)[Which];
}

constexpr std::string_view kJacobian = "scaled Jacobian";
constexpr std::string_view kAspect = "aspect ratio";
constexpr std::string_view kSmallest = "smallest angle";
constexpr std::string_view kLargest = "largest angle";
constexpr std::string_view kSmallestDihedral = "smallest dihedral angle";
constexpr std::string_view kLargestDihedral = "largest dihedral angle";

constexpr Measure kTriangle[] = {{kJacobian, true, scaledJacobianOfTriangle},
                                 {kAspect, false, aspectRatioOfTriangle},
                                 {kSmallest, true, angle<3, 0>},
                                 {kLargest, false, angle<3, 1>}};
constexpr Measure kQuadrilateral[] = {{kJacobian, true, scaledJacobianOfQuadrilateral},
                                      {kAspect, false, aspectRatioOfQuadrilateral},
                                      {kSmallest, true, angle<4, 0>},
                                      {kLargest, false, angle<4, 1>}};

/// The measures of a solid shape, of which the angles are alike for all.
template <Shape shape>
constexpr std::array<Measure, 4> solid(double (*jacobian)(const Vec*),
                                       double (*aspect)(const Vec*)) {
  return {{{kJacobian, true, jacobian},
           {kAspect, false, aspect},
           {kSmallestDihedral, true, dihedralAngle<shape, 0>},
           {kLargestDihedral, false, dihedralAngle<shape, 1>}}};
}

constexpr auto kTetrahedron =
    solid<Shape::tetrahedron>(scaledJacobianOfTetrahedron, aspectRatioOfTetrahedron);
constexpr auto kHexahedron =
    solid<Shape::hexahedron>(scaledJacobianOfHexahedron, aspectRatioOfHexahedron);
constexpr auto kPrism = solid<Shape::prism>(scaledJacobianOfPrism, edgeRatio<Shape::prism>);
constexpr auto kPyramid = solid<Shape::pyramid>(scaledJacobianOfPyramid, edgeRatio<Shape::pyramid>);

double lengthOfLine(const Vec* x) noexcept { return length(x[1] - x[0]); }

double areaOfTriangle(const Vec* x) noexcept { return length(cross(x[1] - x[0], x[2] - x[0])) / 2; }

double areaOfQuadrilateral(const Vec* x) noexcept {
  return length(cross(x[2] - x[0], x[3] - x[1])) / 2;
}

/// The volume by the theorem of Gauss. A face of four corners counts as the mean of its two cuts
/// into triangles, which is exact for the bilinear surface between its sides.
template <Shape shape>
double volume(const Vec* x) noexcept {
  double sixfold = 0.0;
  for (const FaceCorners& face : factsOf(shape)->faces) {
    // From a corner of the cell, so that a cell far from the origin loses no digits.
    const Vec a = x[face.corners[0]] - x[0];
    const Vec b = x[face.corners[1]] - x[0];
    const Vec c = x[face.corners[2]] - x[0];
    const Vec d = x[face.corners[3]] - x[0];
    sixfold += face.count == 3
                   ? triple(a, b, c)
                   : (triple(a, b, c) + triple(a, c, d) + triple(a, b, d) + triple(b, c, d)) / 2;
  }
  return sixfold / 6;
}

}  // namespace

NumberOfCorners sizeOf(Shape shape) noexcept {
  switch (shape) {
    case Shape::line:
      return lengthOfLine;
    case Shape::triangle:
      return areaOfTriangle;
    case Shape::quadrilateral:
      return areaOfQuadrilateral;
    case Shape::tetrahedron:
      return volume<Shape::tetrahedron>;
    case Shape::hexahedron:
      return volume<Shape::hexahedron>;
    case Shape::prism:
      return volume<Shape::prism>;
    case Shape::pyramid:
      return volume<Shape::pyramid>;
    default:
      return nullptr;
  }
}

std::span<const Measure> measuresOf(Shape shape) noexcept {
  switch (shape) {
    case Shape::triangle:
      return kTriangle;
    case Shape::quadrilateral:
      return kQuadrilateral;
    case Shape::tetrahedron:
      return kTetrahedron;
    case Shape::hexahedron:
      return kHexahedron;
    case Shape::prism:
      return kPrism;
    case Shape::pyramid:
      return kPyramid;
    default:
      return {};
  }
}

}  // namespace orvml::detail
