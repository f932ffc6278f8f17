#pragma once

#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <string_view>
#include <vector>

/// What can be said of each cell by itself, for pictures, histograms and choices; check() tells how
/// the values of a whole mesh are distributed.
namespace orvml {

/// A measure of a cell by its corners. The first four are those of CellQuality.
enum class CellMeasure {
  scaledJacobian,  ///< 1 is ideal, negative is inverted
  aspectRatio,     ///< 1 is ideal; cells without size have 1e30
  smallestAngle,   ///< in degrees; of volume elements that between two faces
  largestAngle,    ///< as the smallest one
  /// The length, the area or the volume, in the unit of the coordinates. The area is that of the
  /// projection onto the mean plane, the volume that between faces whose sides are straight, and
  /// negative for cells that are inside out.
  size
};

/// Returns the name of a measure, such as "scaled Jacobian".
[[nodiscard]] ORVML_EXPORT std::string_view name(CellMeasure measure) noexcept;

/// Measures every cell.
///
/// @return one value per cell, in the order of the groups; NaN where there is none: for shapes that
///         the measure is not defined for, a number of nodes that the shape does not have, nodes
///         that do not exist, coordinates that are not finite or not known, and sizes beyond all
///         numbers
///
/// Throws Code::valuesTooFew for cells of which a tolerant reader found the number alone: a few
/// bytes of a file can claim billions of them.
[[nodiscard]] ORVML_EXPORT std::vector<double> measureCells(const NodesView& nodes,
                                                            const CellsView& cells,
                                                            CellMeasure measure);

}  // namespace orvml
