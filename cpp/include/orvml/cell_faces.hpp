#pragma once

#include <orvml/export.hpp>
#include <orvml/vtk_cells.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

/// What the faces of volume elements are, and of which flat parts the curved ones are made.
namespace orvml {

/// A face of a volume element: its form, and the places of its nodes in the element in the order of
/// that form, counter-clockwise seen from outside.
struct CellFace {
  CellForm form;
  std::size_t corners = 0;          ///< 3 or 4, which come first
  std::vector<std::uint8_t> nodes;  ///< as many as the form says
};

/// Returns the faces of volume elements of a form, in the order of VTK's cells; none for what is no
/// volume element, or has no known form.
[[nodiscard]] ORVML_EXPORT std::vector<CellFace> facesOf(CellForm form);

/// Returns the triangles and quadrilaterals of corners alone that a face of a form is parted into,
/// which have all of its nodes; empty for what is no face. One of a linear face is the face itself.
/// The list stays as long as the program runs.
[[nodiscard]] ORVML_EXPORT const std::vector<std::vector<std::uint8_t>>& linearPartsOf(
    CellForm form);

}  // namespace orvml
