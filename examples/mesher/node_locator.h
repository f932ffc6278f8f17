#pragma once

#include "exchange/geometry.h"

#include <map>
#include <vector>

namespace orvml_examples {

/// Finds nodes by their position. Two positions nearer to each other than the tolerance are one.
class NodeLocator {
 public:
  NodeLocator(std::vector<double> coordinates, double tolerance);

  /// The node at a position; adds one when there is none yet.
  int nodeAt(const Point& point);
  [[nodiscard]] const std::vector<double>& coordinates() const { return coordinates_; }

 private:
  using Cell = std::array<long long, 3>;

  [[nodiscard]] Cell cellOf(const Point& point) const;
  [[nodiscard]] int find(const Point& point) const;

  std::vector<double> coordinates_;
  double tolerance_;
  std::multimap<Cell, int> nodes_;  // by the cell of a grid as wide as the tolerance
};

}  // namespace orvml_examples
