#include "check/cell_faults.h"
#include "check/corners.h"
#include "check/curved_cells.h"
#include "check/rules.h"

#include <cmath>
#include <optional>
#include <utility>

namespace orvml::detail {

namespace {

enum class Form { sound, withoutSize, inverted, folded };

/// Rounding makes a cell without size one of some size: so much of the cube, or the square, of its
/// lengths counts as none.
constexpr double kRounding = 1e-13;

Form formOf(const Jacobians& jacobians, double size) noexcept {
  const double none = kRounding * size;
  if (jacobians.lowest > none || !(size < std::numeric_limits<double>::infinity())) {
    return Form::sound;
  }
  if (jacobians.lowest < -none) {
    return jacobians.highest > none ? Form::folded : Form::inverted;
  }
  return jacobians.highest <= none ? Form::withoutSize : Form::sound;
}

void add(Form form, std::int64_t cell, CellFaults& faults) {
  switch (form) {
    case Form::withoutSize:
      return faults.withoutSize.add(cell);
    case Form::inverted:
      return faults.inverted.add(cell);
    case Form::folded:
      return faults.folded.add(cell);
    default:
      return;
  }
}

double sizeOf(double squaredLength, int dimension) noexcept {
  return dimension == 3 ? squaredLength * std::sqrt(squaredLength) : squaredLength;
}

/// Tells sound cells from others without the root that their size takes; not all of them.
bool isSurelySound(const Jacobians& jacobians, int dimension) noexcept {
  constexpr double kWithMargin = 1.001 * kRounding * kRounding;
  constexpr double kLeast = 1e-290;  // below it, products have lost digits
  const double square = jacobians.squaredLength * jacobians.squaredLength;
  const double squaredSize = dimension == 3 ? square * jacobians.squaredLength : square;
  return jacobians.lowest > 0 &&
         jacobians.lowest * jacobians.lowest > kWithMargin * squaredSize + kLeast;
}

/// The cells that are looked at.
struct JudgedCells {
  const CheckedMesh& mesh;
  const BlockRange& blocks;
  bool areCollapsed;

  template <class Function>
  void forEach(Function function) const {
    for (std::size_t block = blocks.begin; block < blocks.end; ++block) {
      forEachCellOfBlock(blocks.group, block, mesh.nodes, areCollapsed, function);
    }
  }
};

/// Judges cells.
///
/// @param corners  gives the Jacobians in the corners of a cell
template <int Dimension, int Corners, class CornerJacobians>
void judgeIn(const JudgedCells& cells, CornerJacobians corners, CellFaults& faults) {
  constexpr int kMostNodes = 27;
  const CheckedGroup& group = cells.blocks.group;
  const double* coordinates = cells.mesh.coordinates;
  const int dimension = group.facts->dimension;
  std::optional<CurvedForm> curved;
  if (group.width() > Corners) {
    curved.emplace(*group.facts, group.width());
  }
  std::array<Vec, kMostNodes> x;
  cells.forEach([&](std::int64_t i, const int* cell) {
    for (std::size_t node = 0; node < Corners; ++node) {
      x[node] = pointAt(coordinates, Dimension, cell[node]);
    }
    for (int node = Corners; curved && node < curved->nodes(); ++node) {
      x[static_cast<std::size_t>(node)] = pointAt(coordinates, Dimension, cell[node]);
    }
    const Jacobians jacobians = curved && !curved->isStraight(x.data())
                                    ? curved->jacobians(x.data(), Dimension == 3)
                                    : corners(x.data());
    if (!isSurelySound(jacobians, dimension)) {
      add(formOf(jacobians, sizeOf(jacobians.squaredLength, dimension)), group.first + i, faults);
    }
  });
}

/// A dimension that the compiler knows makes reading the places straight code.
template <int Corners, class CornerJacobians>
void judge(const JudgedCells& cells, CornerJacobians corners, CellFaults& faults) {
  if (cells.mesh.dimension == 3) {
    judgeIn<3, Corners>(cells, corners, faults);
  } else {
    judgeIn<2, Corners>(cells, corners, faults);
  }
}

/// Edges have no side; they are without size when all their nodes are at one place.
void judgeLines(const JudgedCells& cells, CellFaults& faults) {
  const CheckedMesh& mesh = cells.mesh;
  const CheckedGroup& group = cells.blocks.group;
  cells.forEach([&](std::int64_t i, const int* cell) {
    const Vec first = pointAt(mesh.coordinates, mesh.dimension, cell[0]);
    bool isOnePlace = true;
    for (int node = 1; node < group.width(); ++node) {
      const Vec along = pointAt(mesh.coordinates, mesh.dimension, cell[node]) - first;
      isOnePlace = isOnePlace && dot(along, along) == 0;
    }
    if (isOnePlace) {
      add(Form::withoutSize, group.first + i, faults);
    }
  });
}

}  // namespace

void checkJacobians(const CheckedMesh& mesh, const BlockRange& blocks, bool areCollapsed,
                    CellFaults& faults) {
  const JudgedCells cells{mesh, blocks, areCollapsed};
  const bool isInSpace = mesh.dimension == 3;
  switch (blocks.group.facts->shape) {
    case Shape::line:
      return judgeLines(cells, faults);
    case Shape::triangle:
      return judge<3>(
          cells, [=](const Vec* x) { return jacobiansOfFlat<kTriangleCorners>(x, isInSpace); },
          faults);
    case Shape::quadrilateral:
      return judge<4>(
          cells, [=](const Vec* x) { return jacobiansOfFlat<kQuadrilateralCorners>(x, isInSpace); },
          faults);
    case Shape::tetrahedron:
      return judge<4>(
          cells, [](const Vec* x) { return jacobiansOfSolid<kTetrahedronCorners>(x); }, faults);
    case Shape::hexahedron:
      return judge<8>(
          cells, [](const Vec* x) { return jacobiansOfHexahedron(x); }, faults);
    case Shape::prism:
      return judge<6>(
          cells, [](const Vec* x) { return jacobiansOfSolid<kPrismCorners>(x); }, faults);
    case Shape::pyramid:
      return judge<5>(
          cells, [](const Vec* x) { return jacobiansOfSolid<kPyramidCorners>(x); }, faults);
    default:
      return;
  }
}

}  // namespace orvml::detail
