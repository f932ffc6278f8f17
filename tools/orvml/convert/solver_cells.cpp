#include "convert/solver_cells.h"

#include <algorithm>
#include <numeric>

namespace orvml_tool {

namespace {

using orvml::Shape;

/// The first nodes of a cell in their order.
NodePlaces firstPlaces(std::uint8_t count) {
  NodePlaces places(count);
  std::iota(places.begin(), places.end(), std::uint8_t{0});
  return places;
}

/// A form that becomes one element of its own first nodes.
SolverCell alike(Shape shape, int nodes, std::string_view name, std::uint8_t written) {
  return {{shape, nodes}, name, {firstPlaces(written)}, {}, {}};
}

SolverCell alike(Shape shape, int nodes, std::string_view name) {
  return alike(shape, nodes, name, static_cast<std::uint8_t>(nodes));
}

SolverCell reordered(Shape shape, int nodes, std::string_view name, NodePlaces order) {
  return {{shape, nodes}, name, {std::move(order)}, {}, {}};
}

std::vector<MadeNode> middles(const std::vector<NodePlaces>& edges) {
  std::vector<MadeNode> made;
  made.reserve(edges.size());
  for (const NodePlaces& edge : edges) {
    made.push_back({MadeNode::Place::middleOfEdge, edge});
  }
  return made;
}

/// The quadrilateral that has nodes in the middle of two opposite edges gets the other two.
SolverCell completedQuadrilateral(std::string_view name) {
  return {
      {Shape::quadrilateral, 6}, name, {{0, 1, 2, 3, 4, 6, 5, 7}}, {}, middles({{1, 2}, {3, 0}})};
}

/// The prism that has no nodes in the middle of its upright edges gets those.
SolverCell completedPrism(std::string_view name, NodePlaces order) {
  return {{Shape::prism, 12}, name, {std::move(order)}, {}, middles({{0, 3}, {1, 4}, {2, 5}})};
}

SolverCell partedLine(int nodes, std::string_view name) {
  std::vector<NodePlaces> pieces = {{0, 2}, {2, 1}};
  if (nodes == 4) {
    pieces = {{0, 2}, {2, 3}, {3, 1}};
  }
  return {{Shape::line, nodes}, name, std::move(pieces), {}, {}};
}

SolverCell partedPyramid() {
  return {
      {Shape::pyramid, 5}, "C3D4", {{0, 1, 2, 4}, {0, 2, 3, 4}}, {{0, 1, 3, 4}, {1, 2, 3, 4}}, {}};
}

/// Node 13 is in the middle of the base: one of the cell's own, or one that is made.
SolverCell partedQuadraticPyramid(int nodes) {
  std::vector<MadeNode> made;
  if (nodes == 13) {
    made.push_back({MadeNode::Place::middleOfQuadrilateral, {0, 1, 2, 3, 5, 6, 7, 8}});
  }
  return {{Shape::pyramid, nodes},
          "C3D10",
          {{0, 1, 2, 4, 5, 6, 13, 9, 10, 11}, {0, 2, 3, 4, 13, 7, 8, 9, 11, 12}},
          {{0, 1, 3, 4, 5, 13, 8, 9, 10, 12}, {1, 2, 3, 4, 6, 7, 13, 10, 11, 12}},
          std::move(made)};
}

std::vector<SolverCell> solidInpCells() {
  return {alike(Shape::tetrahedron, 4, "C3D4"),
          alike(Shape::tetrahedron, 10, "C3D10"),
          alike(Shape::hexahedron, 8, "C3D8"),
          alike(Shape::hexahedron, 20, "C3D20"),
          alike(Shape::hexahedron, 24, "C3D20", 20),
          alike(Shape::hexahedron, 27, "C3D20", 20),
          alike(Shape::prism, 6, "C3D6"),
          completedPrism("C3D15", firstPlaces(15)),
          alike(Shape::prism, 15, "C3D15"),
          alike(Shape::prism, 18, "C3D15", 15),
          partedPyramid(),
          partedQuadraticPyramid(13),
          partedQuadraticPyramid(19)};
}

/// Their lines of three nodes go from end to end.
std::vector<SolverCell> madeInpCells(bool isPlane) {
  std::vector<SolverCell> cells = solidInpCells();
  const auto quadratic = isPlane ? "CPS8" : "S8";
  cells.insert(
      cells.end(),
      {alike(Shape::line, 2, "T3D2"), reordered(Shape::line, 3, "T3D3", {0, 2, 1}),
       partedLine(4, "T3D2"), alike(Shape::triangle, 3, isPlane ? "CPS3" : "S3"),
       alike(Shape::triangle, 6, isPlane ? "CPS6" : "S6"),
       alike(Shape::triangle, 7, isPlane ? "CPS6" : "S6", 6),
       alike(Shape::quadrilateral, 4, isPlane ? "CPS4" : "S4"), completedQuadrilateral(quadratic),
       alike(Shape::quadrilateral, 8, quadratic), alike(Shape::quadrilateral, 9, quadratic, 8)});
  return cells;
}

/// Their solids have the nodes of upright edges before those of the top.
std::vector<SolverCell> madeNastranCells() {
  const NodePlaces hexahedron = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,
                                 10, 11, 16, 17, 18, 19, 12, 13, 14, 15};
  const NodePlaces prism = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11};
  return {alike(Shape::line, 2, "CROD"),
          partedLine(3, "CROD"),
          partedLine(4, "CROD"),
          alike(Shape::triangle, 3, "CTRIA3"),
          alike(Shape::triangle, 6, "CTRIA6"),
          alike(Shape::triangle, 7, "CTRIA6", 6),
          alike(Shape::quadrilateral, 4, "CQUAD4"),
          completedQuadrilateral("CQUAD8"),
          alike(Shape::quadrilateral, 8, "CQUAD8"),
          alike(Shape::quadrilateral, 9, "CQUAD8", 8),
          alike(Shape::tetrahedron, 4, "CTETRA"),
          alike(Shape::tetrahedron, 10, "CTETRA"),
          alike(Shape::hexahedron, 8, "CHEXA"),
          reordered(Shape::hexahedron, 20, "CHEXA", hexahedron),
          reordered(Shape::hexahedron, 24, "CHEXA", hexahedron),
          reordered(Shape::hexahedron, 27, "CHEXA", hexahedron),
          alike(Shape::prism, 6, "CPENTA"),
          completedPrism("CPENTA", prism),
          reordered(Shape::prism, 15, "CPENTA", prism),
          reordered(Shape::prism, 18, "CPENTA", prism),
          alike(Shape::pyramid, 5, "CPYRAM"),
          alike(Shape::pyramid, 13, "CPYRAM"),
          alike(Shape::pyramid, 19, "CPYRAM", 13)};
}

}  // namespace

std::size_t SolverCell::nodesLeftOut() const {
  std::vector<bool> isWritten(static_cast<std::size_t>(form.nodesPerCell) + made.size());
  for (const NodePlaces& piece : pieces) {
    for (const std::uint8_t place : piece) {
      isWritten[place] = true;
    }
  }
  return static_cast<std::size_t>(std::count(isWritten.begin(), isWritten.end(), false));
}

const std::vector<NodePlaces>& SolverCell::piecesFor(std::span<const int> nodes) const noexcept {
  constexpr std::ptrdiff_t kBase = 4;
  if (otherPieces.empty()) {
    return pieces;
  }
  const auto least = std::min_element(nodes.begin(), nodes.begin() + kBase) - nodes.begin();
  return least % 2 == 0 ? pieces : otherPieces;
}

const std::vector<SolverCell>& inpCells(int dimension) {
  static const std::vector<SolverCell> kPlane = madeInpCells(true);
  static const std::vector<SolverCell> kSpace = madeInpCells(false);
  return dimension == 2 ? kPlane : kSpace;
}

const std::vector<SolverCell>& nastranCells() {
  static const std::vector<SolverCell> kCells = madeNastranCells();
  return kCells;
}

}  // namespace orvml_tool
