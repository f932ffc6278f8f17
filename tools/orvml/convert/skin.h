#pragma once

#include <orvml/view.hpp>
#include <orvml/vtk_cells.hpp>

#include <cstdint>
#include <vector>

namespace orvml_tool {

/// Faces of one form.
struct SkinFaces {
  orvml::CellForm form;
  std::vector<int> nodes;  ///< [faces x nodes of the form], 0-based, counter-clockwise from outside

  [[nodiscard]] std::int64_t size() const noexcept {
    return static_cast<std::int64_t>(nodes.size()) / form.nodesPerCell;
  }
};

/// The faces that volume elements have alone, which is where a mesh ends. Corners tell faces: a
/// quadrilateral on two triangles belongs to the skin, as they do.
[[nodiscard]] std::vector<SkinFaces> skinOf(const orvml::CellsView& elements, int numberOfNodes);

}  // namespace orvml_tool
