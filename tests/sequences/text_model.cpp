#include "sequences/text_model.h"

#include <cstdio>

namespace orvml_io_tests {

namespace {

std::string fixedPoint(double value) {
  char text[400];  // the largest double has 309 digits before the point
  std::snprintf(text, sizeof(text), "%f", value);
  return text;
}

/// Three values whatever the dimension, so in a plane the third is the next node's first. Behind
/// the last value come zeros.
std::string textOfNodes(const NodesModel& nodes, int dimension) {
  std::string text;
  const int held = nodes.coords == nullptr ? 0 : nodes.count * dimension;
  for (int node = 0; dimension > 0 && node < nodes.count; ++node) {
    text += std::to_string(node + 1);
    for (int value = node * dimension; value < node * dimension + 3; ++value) {
      text += " " + fixedPoint(value < held ? nodes.coords->values[static_cast<std::size_t>(value)]
                                            : 0.0);
    }
    text += "\n";
  }
  return text;
}

std::string nodeNumber(const CellsModel& cells, int position) {
  if (position >= cells.connectivityLength()) {
    return "0";
  }
  const int index = cells.connectivities->values[static_cast<std::size_t>(position)];
  return std::to_string(index + 1LL);
}

/// The counters that lead from group to group. The position grows by the running number of cells,
/// which is not where the next group begins; that decides which lines are printed.
struct Counters {
  int position = 0;
  int count = 0;
};

/// A container that was cleared has no connectivities and so no lines, while groups of the caller
/// stay in it.
std::string textOfGroup(const CellsModel& cells, std::size_t group, Counters& counters) {
  std::string text;
  const int nodes = cells.nodesPerCell->values[group];
  counters.count += cells.cellsPerGroup->values[group];
  int number = 1;
  const bool hasLines = cells.connectivities != nullptr;
  for (int start = counters.position; hasLines && start < counters.count * nodes; start += nodes) {
    text += std::to_string(number++) + " ";
    for (int node = 0; node < nodes; ++node) {
      text += nodeNumber(cells, start + node) + " ";
    }
    text += "\n";
  }
  counters.position += counters.count;
  return text;
}

}  // namespace

std::string nameOfShape(ElemType shape) {
  static const std::vector<std::string> names = {
      "None",  "Linear", "Triangle", "Quadrilateral", "Tetrahedra", "Hexahedra",
      "Prism", "Point",  "Pyramid",  "Sphere",        "Circle"};
  const bool isNamed = shape >= 0 && static_cast<std::size_t>(shape) < names.size();
  return isNamed ? names[static_cast<std::size_t>(shape)] : "None";
}

std::string textOf(const DocumentModel* document) {
  std::string text;
  if (document == nullptr || !document->nodes) {
    return text;
  }
  for (const ORVML_TYPE_OF_ENTITY entity : kCellKinds) {
    const CellsModel* cells = document->cellsOf(entity);
    Counters counters;
    for (std::size_t group = 0; cells != nullptr && group < static_cast<std::size_t>(cells->groups);
         ++group) {
      const bool isFirstBlock = text.empty();
      text += "mesh dimension = " + std::to_string(document->dimension) + " elemtype " +
              nameOfShape(cells->shapes->values[group]) +
              " nNode = " + std::to_string(cells->nodesPerCell->values[group]) + "\ncoordinates\n";
      text += isFirstBlock ? textOfNodes(*document->nodes, document->dimension) : "";
      text += "end coordinates\nelements\n" + textOfGroup(*cells, group, counters);
      text += "end elements\n";
    }
  }
  return text;
}

}  // namespace orvml_io_tests
