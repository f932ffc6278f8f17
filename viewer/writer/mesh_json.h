#pragma once

#include "attribute_budget.h"
#include "cell_measures.h"
#include "drawn_mesh.h"
#include "json.h"
#include "packed_arrays.h"
#include "place_marks.h"

#include <span>
#include <string>
#include <vector>

namespace orvml_report {

/// What the description of a mesh is made of.
struct MeshParts {
  const orvml::DocumentView& document;
  const StoredMesh& stored;
  const NodePlaces& places;
  const DrawnMesh& drawn;
  std::span<const MeasuredCells> measured;
  const PlaceMarks* marks = nullptr;  ///< null where there is nothing to compare with
};

/// Packs the arrays of a mesh: first what is drawn, then its fields.
[[nodiscard]] Json meshAsJson(const MeshParts& parts, AttributeBudget& budget, PackedArrays& arrays,
                              std::vector<std::string>& notes);

}  // namespace orvml_report
