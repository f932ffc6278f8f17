#include "check/checked_mesh.h"
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

struct FormPlaces {
  Places withoutSize;
  Places inverted;
  Places folded;

  void add(Form form, std::int64_t cell) {
    switch (form) {
      case Form::withoutSize:
        return withoutSize.add(cell);
      case Form::inverted:
        return inverted.add(cell);
      case Form::folded:
        return folded.add(cell);
      default:
        return;
    }
  }
};

double sizeOf(double squaredLength, int dimension) noexcept {
  return dimension == 3 ? squaredLength * std::sqrt(squaredLength) : squaredLength;
}

/// Judges the cells of a group.
///
/// @param corners  gives the Jacobians in the corners of a cell
template <int Corners, class CornerJacobians>
void judge(const CheckedMesh& mesh, const CheckedGroup& group, CornerJacobians corners,
           FormPlaces& places) {
  constexpr int kMostNodes = 27;
  const int dimension = group.facts->dimension;
  std::optional<CurvedForm> curved;
  if (group.width() > Corners) {
    curved.emplace(*group.facts, group.width());
  }
  std::array<Vec, kMostNodes> x;
  const bool isInSpace = mesh.dimension == 3;
  forEachCell(group, mesh.nodes, [&](std::int64_t i, const int* cell) {
    for (std::size_t node = 0; node < Corners; ++node) {
      x[node] = pointAt(mesh.coordinates, mesh.dimension, cell[node]);
    }
    for (int node = Corners; curved && node < curved->nodes(); ++node) {
      x[static_cast<std::size_t>(node)] = pointAt(mesh.coordinates, mesh.dimension, cell[node]);
    }
    const Jacobians jacobians = curved && !curved->isStraight(x.data())
                                    ? curved->jacobians(x.data(), isInSpace)
                                    : corners(x.data());
    const Form form = formOf(jacobians, sizeOf(jacobians.squaredLength, dimension));
    if (form != Form::sound) {
      places.add(form, group.first + i);
    }
  });
}

/// Edges have no side; they are without size when all their nodes are at one place.
void judgeLines(const CheckedMesh& mesh, const CheckedGroup& group, FormPlaces& places) {
  forEachCell(group, mesh.nodes, [&](std::int64_t i, const int* cell) {
    const Vec first = pointAt(mesh.coordinates, mesh.dimension, cell[0]);
    bool isOnePlace = true;
    for (int node = 1; node < group.width(); ++node) {
      const Vec along = pointAt(mesh.coordinates, mesh.dimension, cell[node]) - first;
      isOnePlace = isOnePlace && dot(along, along) == 0;
    }
    if (isOnePlace) {
      places.add(Form::withoutSize, group.first + i);
    }
  });
}

void judge(const CheckedMesh& mesh, const CheckedGroup& group, FormPlaces& places) {
  const bool isInSpace = mesh.dimension == 3;
  switch (group.facts->shape) {
    case Shape::line:
      return judgeLines(mesh, group, places);
    case Shape::triangle:
      return judge<3>(
          mesh, group,
          [=](const Vec* x) { return jacobiansOfFlat<kTriangleCorners>(x, isInSpace); }, places);
    case Shape::quadrilateral:
      return judge<4>(
          mesh, group,
          [=](const Vec* x) { return jacobiansOfFlat<kQuadrilateralCorners>(x, isInSpace); },
          places);
    case Shape::tetrahedron:
      return judge<4>(
          mesh, group, [](const Vec* x) { return jacobiansOfSolid<kTetrahedronCorners>(x); },
          places);
    case Shape::hexahedron:
      return judge<8>(
          mesh, group, [](const Vec* x) { return jacobiansOfHexahedron(x); }, places);
    case Shape::prism:
      return judge<6>(mesh, group, jacobiansOfSolid<kPrismCorners>, places);
    case Shape::pyramid:
      return judge<5>(mesh, group, jacobiansOfSolid<kPyramidCorners>, places);
    default:
      return;
  }
}

}  // namespace

bool checkJacobians(const CheckedMesh& mesh, FindingList& findings) {
  if (mesh.coordinates == nullptr) {
    return false;
  }
  bool areAllSound = true;
  for (const CheckedCells& cells : mesh.kinds) {
    const PlaceKind kind = placeKindOf(cells.entity);
    FormPlaces places{findings.places(kind), findings.places(kind), findings.places(kind)};
    for (const CheckedGroup& group : cells.groups) {
      if (group.facts != nullptr) {
        judge(mesh, group, places);
      }
    }
    const auto add = [&](CheckCode code, Places found, const std::string& what) {
      areAllSound = areAllSound && found.empty();
      const std::string sentence = "has " + countText(found.size(), kind) + " " + what;
      findings.add(ruleOf(code), cells.object, std::move(found), sentence);
    };
    add(CheckCode::zeroSizeCell, std::move(places.withoutSize), "without size");
    add(CheckCode::invertedCell, std::move(places.inverted), "inside out");
    add(CheckCode::foldedCell, std::move(places.folded), "inside out in a part");
  }
  return areAllSound;
}

}  // namespace orvml::detail
