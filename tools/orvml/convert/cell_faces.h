#pragma once

#include <orvml/vtk_cells.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvml_tool {

/// A face of a volume element: its form, and the places of its nodes in the element in the order of
/// that form, counter-clockwise seen from outside.
struct CellFace {
  orvml::CellForm form;
  std::size_t corners = 0;
  std::vector<std::uint8_t> nodes;
};

/// The faces of volume elements of a form; none for what is no volume element, or has no known
/// form.
[[nodiscard]] std::vector<CellFace> facesOf(orvml::CellForm form);

/// The triangles and quadrilaterals of corners alone that a face of a form is parted into, which
/// have all of its nodes; empty for what is no face. One of a linear face is the face itself.
[[nodiscard]] const std::vector<std::vector<std::uint8_t>>& linearPartsOf(orvml::CellForm form);

}  // namespace orvml_tool
