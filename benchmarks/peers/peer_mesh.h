#pragma once

#include "inputs/content.h"

#include <cstdint>

namespace orvml_io_bench {

/// A content in the forms that other formats take, made before the clock starts: none pays for an
/// order, a base or a type of numbers that is not its own.
struct PeerMesh {
  explicit PeerMesh(const Content& content);

  /// One type group of cells.
  struct Group {
    int shape;  // as ElemType counts them
    int nodesPerCell;
    int numberOfCells;
    std::vector<int> nodes;          // [numberOfCells x nodesPerCell], 1-based, row-major
    std::vector<int> nodesByCorner;  // the same, column-major: all first corners come first
  };
  /// One value for each cell of all groups, in their order.
  struct CellAttribute {
    std::string name;
    std::vector<int> ints;
    std::vector<double> doubles;  // the same, for formats without integer variables
  };

  int numberOfNodes;
  int numberOfCells;
  int meshDimension;                      // 2 for a surface, 3 for a volume
  std::vector<double> coordinates;        // [numberOfNodes x 3], row-major
  std::vector<double> coordinatesByAxis;  // the same, column-major: all x come first
  std::vector<Group> groups;
  std::vector<Vector> nodeAttributes;  // doubles
  std::vector<CellAttribute> cellAttributes;
  std::vector<std::pair<std::string, double>> scalars;
  std::vector<Vector> vectors;  // doubles

  [[nodiscard]] const double* axis(int index) const {
    return coordinatesByAxis.data() +
           static_cast<std::ptrdiff_t>(index) * static_cast<std::ptrdiff_t>(numberOfNodes);
  }

  /// What a reader has to come back with, as `Loaded::checksum` counts it.
  [[nodiscard]] std::uint64_t checksum() const;
};

}  // namespace orvml_io_bench
