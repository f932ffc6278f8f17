// A mesh as the exchange takes it: arrays of coordinates and of cells in type groups.
#pragma once

#include "orvml_io.h"

#include <cstddef>
#include <vector>

namespace orvml_examples {

/// Cells of one kind, type group after type group.
struct Cells {
  std::vector<ElemType> shapes;
  std::vector<int> nodesPerCell;
  std::vector<int> cellsPerGroup;
  std::vector<int> connectivities;

  [[nodiscard]] int count() const {
    int sum = 0;
    for (const int cells : cellsPerGroup) {
      sum += cells;
    }
    return sum;
  }

  [[nodiscard]] int countOf(ElemType shape) const {
    int sum = 0;
    for (std::size_t group = 0; group < shapes.size(); ++group) {
      sum += shapes[group] == shape ? cellsPerGroup[group] : 0;
    }
    return sum;
  }

  /// Adds a type group unless it is empty.
  void addGroup(ElemType shape, int nodes, const std::vector<int>& nodeIndices) {
    if (nodeIndices.empty()) {
      return;
    }
    shapes.push_back(shape);
    nodesPerCell.push_back(nodes);
    cellsPerGroup.push_back(static_cast<int>(nodeIndices.size()) / nodes);
    connectivities.insert(connectivities.end(), nodeIndices.begin(), nodeIndices.end());
  }

  /// Calls `visit(shape, nodes)` for every cell in order; `nodes` are its 0-based node indices.
  template <class Visit>
  void forEach(Visit visit) const {
    std::size_t position = 0;
    std::vector<int> nodes;
    for (std::size_t group = 0; group < shapes.size(); ++group) {
      const auto perCell = static_cast<std::size_t>(nodesPerCell[group]);
      for (int cell = 0; cell < cellsPerGroup[group]; ++cell, position += perCell) {
        const int* first = connectivities.data() + position;
        nodes.assign(first, first + perCell);
        visit(shapes[group], nodes);
      }
    }
  }

  bool operator==(const Cells& other) const {
    return shapes == other.shapes && nodesPerCell == other.nodesPerCell &&
           cellsPerGroup == other.cellsPerGroup && connectivities == other.connectivities;
  }
};

struct Mesh {
  static constexpr int kDimension = 3;

  std::vector<double> coordinates;  // [numberOfNodes x 3], row-major, in millimetres
  Cells edges;
  Cells faces;
  Cells elements;

  [[nodiscard]] int numberOfNodes() const {
    return static_cast<int>(coordinates.size()) / kDimension;
  }
};

}  // namespace orvml_examples
