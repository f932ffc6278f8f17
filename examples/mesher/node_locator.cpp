#include "mesher/node_locator.h"

#include "exchange/check.h"

#include <cmath>
#include <utility>

namespace orvml_examples {

NodeLocator::NodeLocator(std::vector<double> coordinates, double tolerance)
    : coordinates_(std::move(coordinates)), tolerance_(tolerance) {
  require(tolerance > 0, "the tolerance for gaps must be positive");
  for (int node = 0; node < static_cast<int>(coordinates_.size()) / 3; ++node) {
    nodes_.emplace(cellOf(pointAt(coordinates_, node)), node);
  }
}

int NodeLocator::nodeAt(const Point& point) {
  const int known = find(point);
  if (known >= 0) {
    return known;
  }
  const int added = static_cast<int>(coordinates_.size()) / 3;
  coordinates_.insert(coordinates_.end(), point.begin(), point.end());
  nodes_.emplace(cellOf(point), added);
  return added;
}

NodeLocator::Cell NodeLocator::cellOf(const Point& point) const {
  Cell cell{};
  for (std::size_t axis = 0; axis < cell.size(); ++axis) {
    cell[axis] = std::llround(point[axis] / tolerance_);
  }
  return cell;
}

/// Looks into the cell of the position and into its neighbours; -1 when there is no node.
int NodeLocator::find(const Point& point) const {
  const Cell centre = cellOf(point);
  for (int neighbour = 0; neighbour < 27; ++neighbour) {
    const Cell cell = {centre[0] + neighbour % 3 - 1, centre[1] + neighbour / 3 % 3 - 1,
                       centre[2] + neighbour / 9 - 1};
    const auto [first, last] = nodes_.equal_range(cell);
    for (auto found = first; found != last; ++found) {
      if (distance(pointAt(coordinates_, found->second), point) < tolerance_) {
        return found->second;
      }
    }
  }
  return -1;
}

}  // namespace orvml_examples
