#pragma once

#include <orvml/view.hpp>

#include "drawable_cells.h"
#include "report.h"
#include "stored_cells.h"

#include <optional>
#include <string>
#include <vector>

namespace orvml_report {

/// What a page shows of a mesh.
struct DrawnMesh {
  std::vector<DrawnCells> cells;  ///< edges, faces, elements; those that there are
  /// The nodes that go into the page, ascending; none where all of them do.
  std::optional<std::vector<int>> nodes;

  [[nodiscard]] const DrawnCells* find(orvml::Entity entity) const noexcept;
};

/// Chooses it. Notes tell what is left out.
[[nodiscard]] DrawnMesh drawnMesh(const StoredMesh& stored, const NodePlaces& places,
                                  const ReportLimits& limits, std::vector<std::string>& notes);

}  // namespace orvml_report
