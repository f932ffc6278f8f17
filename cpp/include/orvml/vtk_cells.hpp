#pragma once

#include <orvml/export.hpp>
#include <orvml/shape.hpp>

#include <cstdint>
#include <optional>
#include <span>

/// How the cells of exchange files are called in VTK, whose order of nodes is the one that this
/// library checks and converts by.
namespace orvml {

/// A shape with its number of nodes.
struct CellForm {
  Shape shape = Shape::none;
  int nodesPerCell = 0;

  friend bool operator==(const CellForm&, const CellForm&) = default;
};

/// Returns the number of VTK's cell of that form, such as 24 (VTK_QUADRATIC_TETRA) for a
/// tetrahedron of 10 nodes; none for spheres, circles, and numbers of nodes that VTK has no cell
/// for.
///
/// Source of the numbers: vtkCellType.h of VTK 9.
[[nodiscard]] ORVML_EXPORT std::optional<std::uint8_t> vtkCellType(CellForm form) noexcept;

/// Returns the form of the cells of a number of VTK; none for those that the format does not have.
[[nodiscard]] ORVML_EXPORT std::optional<CellForm> formOfVtkCell(int vtkCellType) noexcept;

/// The order that VTK before 9.7 has the nodes of prisms in: seen from the opposite triangle, the
/// base goes round clockwise. Node i of such a prism is node `order[i]` of one of this library, and
/// the other way round, for the order is its own inverse.
///
/// VTK has both orders: its shape functions take the one of this library in all versions, its faces
/// take it for all prisms since 9.7.0, and for those of 15 and 18 nodes since 9.4.0.
///
/// @param nodesPerCell  6, 12, 15 or 18; empty for another
[[nodiscard]] ORVML_EXPORT std::span<const std::uint8_t> olderVtkPrismOrder(
    int nodesPerCell) noexcept;

}  // namespace orvml
