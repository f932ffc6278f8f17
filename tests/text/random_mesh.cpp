#include "text/random_mesh.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace orvml_io_tests {

namespace {

/// Draws values. Standard distributions differ between libraries, hence the plain remainders: a
/// seed means the same mesh everywhere.
class Draw {
 public:
  explicit Draw(std::uint32_t seed) : engine_(seed) {}

  int upTo(int largest) {
    return static_cast<int>(engine_() % (static_cast<std::uint64_t>(largest) + 1));
  }
  bool oneIn(int n) { return upTo(n - 1) == 0; }

  template <class T, std::size_t n>
  T oneOf(const T (&values)[n]) {
    return values[upTo(static_cast<int>(n) - 1)];
  }

  double number() {
    static const double special[] = {0.0,
                                     -0.0,
                                     1e300,
                                     -1e300,
                                     std::numeric_limits<double>::max(),
                                     std::numeric_limits<double>::denorm_min(),
                                     -std::numeric_limits<double>::denorm_min(),
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::nan(""),
                                     -std::nan(""),
                                     0.0000005,
                                     1.0};
    switch (upTo(2)) {
      case 0:
        return oneOf(special);
      case 1:
        return upTo(2000000) / 1000.0 - 1000.0;
      default:
        return anyDouble();
    }
  }

  int nodeIndex() {
    static const int special[] = {INT_MAX, INT_MAX - 1, INT_MIN, -1, -2};
    return oneIn(5) ? oneOf(special) : upTo(1000);
  }

  ElemType shape() {
    static const int outside[] = {11, 12, -1, INT_MAX, INT_MIN};
    return static_cast<ElemType>(oneIn(4) ? oneOf(outside) : upTo(10));
  }

 private:
  double anyDouble() {
    const std::uint64_t bits = engine_();
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
  }

  std::mt19937_64 engine_;
};

CellSet randomCells(Draw& draw) {
  CellSet cells;
  long long indices = 0;
  for (int groups = draw.upTo(4); groups > 0; --groups) {
    cells.shapes.push_back(draw.shape());
    cells.nodesPerCell.push_back(draw.upTo(8));
    cells.cellsPerGroup.push_back(draw.oneIn(8) ? -draw.upTo(3) : draw.upTo(6));
    indices += static_cast<long long>(cells.nodesPerCell.back()) * cells.cellsPerGroup.back();
  }
  cells.connectivities.reserve(1);  // an empty array must still have an address
  for (; indices > 0; --indices) {
    cells.connectivities.push_back(draw.nodeIndex());
  }
  return cells;
}

}  // namespace

Mesh randomMesh(int dimension, std::uint32_t seed) {
  Draw draw(seed);
  Mesh mesh;
  mesh.dimension = dimension;
  mesh.numberOfNodes = draw.upTo(5);
  for (int values = mesh.numberOfNodes * std::max(dimension, 0); values > 0; --values) {
    mesh.coordinates.push_back(draw.number());
  }
  for (auto& cells : mesh.cells) {
    if (!draw.oneIn(3)) {
      cells = randomCells(draw);
    }
  }
  return mesh;
}

Handle documentOf(Mesh& mesh) {
  Handle document(OrvML_IO_NewOrvInputHandle("module", "1", "creator", mesh.dimension));
  OrvML_IO_SetNodesCoords(document.get(), mesh.numberOfNodes, mesh.coordinates.data());
  int entity = ORVML_EDGES;
  for (auto& cells : mesh.cells) {
    if (cells) {
      OrvML_IO_SetGenericElements(document.get(), static_cast<ORVML_TYPE_OF_ENTITY>(entity), 0,
                                  cells->connectivities.data(),
                                  static_cast<int>(cells->shapes.size()), cells->shapes.data(),
                                  cells->nodesPerCell.data(), cells->cellsPerGroup.data());
    }
    ++entity;
  }
  return document;
}

}  // namespace orvml_io_tests
