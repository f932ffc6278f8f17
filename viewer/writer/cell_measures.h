#pragma once

#include <orvml/cell_measures.hpp>
#include <orvml/view.hpp>

#include "drawn_mesh.h"
#include "stored_cells.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace orvml_report {

/// How values are distributed: 40 bins of one width from the least to the greatest. Aspect ratios
/// have no upper bound, so that one flat cell would leave a single bin of the others: where the
/// greatest one is more than twice the 99.5th percentile, the bins end at that, and the last one
/// counts all above, too. Cells without size, whose ratio is no measure, have no say in that.
struct Histogram {
  double minimum = 0.0;
  double maximum = 0.0;  ///< where the bins end
  std::array<std::int64_t, 40> counts = {};
  std::int64_t cells = 0;
  std::int64_t without = 0;  ///< how many of them have no value
  std::int64_t beyond = 0;   ///< how many are above the maximum
};

/// Counts values; none where no value is finite.
///
/// @param values     changed in their order
/// @param uncounted  how many more cells have no value
[[nodiscard]] std::optional<Histogram> histogramOf(std::vector<double>& values,
                                                   orvml::CellMeasure measure,
                                                   std::int64_t uncounted);

/// One measure of the cells of one kind.
struct MeasuredCells {
  orvml::Entity entity = orvml::Entity::faces;
  orvml::CellMeasure measure = orvml::CellMeasure::size;
  std::optional<Histogram> histogram;  ///< of all cells of the document
  std::vector<float> drawn;            ///< of the cells that are drawn, in their order
};

/// Such as "aspect ratio"; the size of edges is their length, of faces their area, of elements
/// their volume.
[[nodiscard]] std::string_view nameOf(const MeasuredCells& measured) noexcept;

/// Measures all cells of a document: the lengths of edges; of faces and elements the scaled
/// Jacobian, the aspect ratio, the smallest and the largest angle, and the area or volume.
[[nodiscard]] std::vector<MeasuredCells> measuredCells(const orvml::NodesView& nodes,
                                                       const StoredMesh& stored,
                                                       const DrawnMesh& mesh, int threads);

}  // namespace orvml_report
