#pragma once

#include "drawable_cells.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace orvml_report {

/// A triangle, whose fourth corner is kNoCorner, or a quadrilateral, and the cell that it is of.
struct FlatFace {
  static constexpr int kNoCorner = -1;

  std::array<int, 4> corners = {kNoCorner, kNoCorner, kNoCorner, kNoCorner};
  int number = 0;
};

using FlatSurface = std::vector<FlatFace>;

/// The linear parts of faces.
[[nodiscard]] FlatSurface flattened(const DrawnCells& faces);
/// How many they are.
[[nodiscard]] std::size_t numberOfFlatFaces(const DrawnCells& faces);

/// Makes nodes one that lie in one cell of a regular grid over the surfaces: the one that is next
/// to their mean, so that values of nodes stay values. Faces that collapse and faces that are there
/// already vanish; quadrilaterals that lose one corner become triangles, so that no holes appear.
/// The grid is the one that leaves nearly as many faces as there may be.
///
/// @param places  of the nodes, all of which have one
/// @return the width of the cells of the grid
double decimate(std::span<FlatSurface> surfaces, const NodePlaces& places, std::size_t mostFaces);

/// The faces as cells, triangles first.
[[nodiscard]] DrawnCells cellsOf(const FlatSurface& surface, orvml::Entity entity, bool isSkin);

}  // namespace orvml_report
