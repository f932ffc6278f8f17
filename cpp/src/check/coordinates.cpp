#include "check/checked_mesh.h"
#include "check/hash_company.h"
#include "check/key_groups.h"
#include "check/rules.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace orvml::detail {

namespace {

/// Tells whether a double is finite by its bits, so that many can be tested at once.
bool isFinite(double value) noexcept {
  constexpr std::uint64_t kExponent = 0x7ff0000000000000U;
  return (std::bit_cast<std::uint64_t>(value) & kExponent) != kExponent;
}

bool areAllFinite(const double* begin, const double* end) noexcept {
  bool areAll = true;
  for (const double* value = begin; value != end; ++value) {
    areAll &= isFinite(*value);
  }
  return areAll;
}

/// The bounding box of the nodes with finite coordinates, and how far apart two of them may be to
/// coincide.
struct Extents {
  std::array<double, 3> lowest = {0, 0, 0};
  double diagonal = 0.0;
};

Extents extentsOf(const CheckedMesh& mesh) noexcept {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::array<double, 3> lowest = {kInfinity, kInfinity, kInfinity};
  std::array<double, 3> highest = {-kInfinity, -kInfinity, -kInfinity};
  const auto width = static_cast<std::size_t>(mesh.dimension);
  const double* node = mesh.coordinates;
  for (std::int64_t i = 0; i < mesh.nodes; ++i, node += width) {
    for (std::size_t axis = 0; axis < width; ++axis) {
      const double value = isFinite(node[axis]) ? node[axis] : lowest[axis];
      lowest[axis] = std::min(lowest[axis], value);
      highest[axis] = std::max(highest[axis], value);
    }
  }
  Extents extents;
  double squares = 0.0;
  for (std::size_t axis = 0; axis < width; ++axis) {
    extents.lowest[axis] = lowest[axis];
    squares = std::hypot(squares, highest[axis] - lowest[axis]);
  }
  extents.diagonal = squares;
  return extents;
}

/// A grid whose cells are far larger than the tolerance, and far smaller than those of the mesh
/// where it can be: a node lies in the cells that its surroundings overlap, which is one for nearly
/// all nodes.
class Grid {
 public:
  Grid(const CheckedMesh& mesh, const Extents& extents, double tolerance)
      : mesh_(mesh), lowest_(extents.lowest) {
    const double fine = tolerance > 0 ? 1024 * tolerance : 1e-7 * extents.diagonal;
    const double coarse = extents.diagonal / std::cbrt(static_cast<double>(mesh.nodes));
    // The last one keeps the numbers of the cells far within 64 bits.
    const double width =
        std::max({std::min(fine, coarse), 2 * tolerance, 1e-12 * extents.diagonal});
    scale_ = width > 0 && std::isfinite(1 / width) ? 1 / width : 1;
    // A little more, for the rounding of places.
    reach_ = tolerance > 0 ? std::min(0.5, tolerance * scale_ + 1e-9) : 0;
  }

  /// Calls a function with each node and the hash of each of its cells.
  template <class Function>
  void forEachCell(Function function) const {
    if (mesh_.dimension == 3) {
      forEachCellOf<3>(function);
    } else {
      forEachCellOf<2>(function);
    }
  }

 private:
  /// Places are counted from 1 in cells, so that cutting the fraction off is rounding down.
  template <std::size_t Dimension, class Function>
  void forEachCellOf(Function& function) const {
    const double* point = mesh_.coordinates;
    for (std::int64_t node = 0; node < mesh_.nodes; ++node, point += Dimension) {
      std::array<double, 3> place = {1, 1, 1};
      bool isKnown = true;
      for (std::size_t axis = 0; axis < Dimension; ++axis) {
        place[axis] = (point[axis] - lowest_[axis]) * scale_ + 1;
        isKnown &= place[axis] >= 0 && place[axis] < kMostCells;  // not true of what is no number
      }
      if (!isKnown) {
        continue;
      }
      std::array<std::int64_t, 3> cell = {1, 1, 1};
      bool isInside = true;
      for (std::size_t axis = 0; axis < Dimension; ++axis) {
        cell[axis] = static_cast<std::int64_t>(place[axis]);
        const double fraction = place[axis] - static_cast<double>(cell[axis]);
        isInside &= fraction >= reach_ && fraction + reach_ < 1;
      }
      if (isInside) {
        function(node, hash(cell[0], cell[1], cell[2]));
      } else {
        forEachOverlapped(node, place, static_cast<int>(Dimension), function);
      }
    }
  }

  template <class Function>
  void forEachOverlapped(std::int64_t node, const std::array<double, 3>& place, int dimension,
                         Function& function) const {
    const double up = dimension == 3 ? reach_ : 0;
    for (auto x = static_cast<std::int64_t>(place[0] - reach_);
         x <= static_cast<std::int64_t>(place[0] + reach_); ++x) {
      for (auto y = static_cast<std::int64_t>(place[1] - reach_);
           y <= static_cast<std::int64_t>(place[1] + reach_); ++y) {
        for (auto z = static_cast<std::int64_t>(place[2] - up);
             z <= static_cast<std::int64_t>(place[2] + up); ++z) {
          function(node, hash(x, y, z));
        }
      }
    }
  }

  static std::uint64_t hash(std::int64_t x, std::int64_t y, std::int64_t z) noexcept {
    return scattered(static_cast<std::uint64_t>(x) * 0x8da6b343d8163841U +
                     static_cast<std::uint64_t>(y) * 0xd8163841cb1ab3c7U +
                     static_cast<std::uint64_t>(z) * 0x9e3779b97f4a7c15U);
  }

  static constexpr double kMostCells = 1e15;

  const CheckedMesh& mesh_;
  std::array<double, 3> lowest_;
  double scale_ = 1;
  double reach_ = 0;  // the tolerance in cells
};

std::array<double, 3> pointOf(const CheckedMesh& mesh, std::int64_t node) noexcept {
  const double* point = mesh.coordinates + node * mesh.dimension;
  return {point[0], point[1], mesh.dimension == 3 ? point[2] : 0.0};
}

bool areWithin(const std::array<double, 3>& a, const std::array<double, 3>& b,
               double tolerance) noexcept {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]) <= tolerance;
}

/// A node and an earlier one at its place, in the order of coordinates.
struct Coincidence {
  std::int64_t node;
  std::int64_t other;
};

/// Compares the nodes of one cell of the grid, which are in the order of their coordinates. Each is
/// compared with so many before it that a cell with thousands of different nodes, which a hostile
/// file may hold, takes no time to speak of.
void compare(const CheckedMesh& mesh, std::span<const HashedItem> nodes, double tolerance,
             std::vector<Coincidence>& found) {
  constexpr std::size_t kMostCompared = 32;
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    const auto point = pointOf(mesh, nodes[i].item);
    for (std::size_t j = i; j-- > 0 && i - j <= kMostCompared;) {
      const auto other = pointOf(mesh, nodes[j].item);
      if (point[0] - other[0] > tolerance) {
        break;
      }
      if (areWithin(point, other, tolerance)) {
        found.push_back({nodes[i].item, nodes[j].item});
        break;
      }
    }
  }
}

/// @param nodes  those with company in a cell of the grid, cell after cell
std::vector<Coincidence> coincidences(const CheckedMesh& mesh, std::vector<HashedItem> nodes,
                                      double tolerance) {
  std::vector<Coincidence> found;
  for (auto begin = nodes.begin(); begin != nodes.end();) {
    const auto end = std::find_if(begin, nodes.end(), [cell = begin->hash](const HashedItem& node) {
      return node.hash != cell;
    });
    if (end - begin > 1) {
      std::sort(begin, end, [&](const HashedItem& a, const HashedItem& b) {
        return std::tuple(pointOf(mesh, a.item), a.item) <
               std::tuple(pointOf(mesh, b.item), b.item);
      });
      compare(mesh, {begin, end}, tolerance, found);
    }
    begin = end;
  }
  std::sort(found.begin(), found.end(),
            [](const Coincidence& a, const Coincidence& b) { return a.node < b.node; });
  found.erase(
      std::unique(found.begin(), found.end(),
                  [](const Coincidence& a, const Coincidence& b) { return a.node == b.node; }),
      found.end());
  return found;
}

}  // namespace

void checkFinite(const CheckedMesh& mesh, FindingList& findings) {
  constexpr std::int64_t kNodesPerBlock = 1024;
  Places places = findings.places(PlaceKind::node);
  const std::int64_t width = mesh.dimension;
  for (std::int64_t begin = 0; mesh.coordinates != nullptr && begin < mesh.nodes;
       begin += kNodesPerBlock) {
    const std::int64_t end = std::min(begin + kNodesPerBlock, mesh.nodes);
    if (areAllFinite(mesh.coordinates + begin * width, mesh.coordinates + end * width)) {
      continue;
    }
    for (std::int64_t node = begin; node < end; ++node) {
      const double* point = mesh.coordinates + node * width;
      if (!areAllFinite(point, point + width)) {
        places.add(node);
      }
    }
  }
  const std::string sentence = "has " + countText(places.size(), "node", "nodes") +
                               " with a coordinate that is infinite or no number";
  findings.add(ruleOf(CheckCode::coordinateNotFinite), mesh.nodesObject, std::move(places),
               sentence);
}

void checkCoincidence(const CheckedMesh& mesh, double share, FindingList& findings) {
  if (mesh.coordinates == nullptr || mesh.nodes < 2 || !(share >= 0)) {
    return;
  }
  const Extents extents = extentsOf(mesh);
  const double tolerance = share * extents.diagonal;
  // Differences of coordinates beyond 1e308 tell nothing.
  if (!isFinite(extents.diagonal) || !isFinite(tolerance)) {
    return;
  }
  const Grid grid(mesh, extents, tolerance);
  auto nodes = itemsWithCompany(mesh.nodes, [&](auto add) { grid.forEachCell(add); });
  const auto found = coincidences(mesh, std::move(nodes), tolerance);
  Places places = findings.places(PlaceKind::node);
  for (const Coincidence& one : found) {
    places.add(one.node);
  }
  if (!found.empty()) {
    const std::string sentence = "has " + countText(places.size(), "node", "nodes") +
                                 " at the place of another one; node " +
                                 std::to_string(found.front().node) + " is where node " +
                                 std::to_string(found.front().other) + " is";
    findings.add(ruleOf(CheckCode::coincidentNodes), mesh.nodesObject, std::move(places), sentence);
  }
}

}  // namespace orvml::detail
