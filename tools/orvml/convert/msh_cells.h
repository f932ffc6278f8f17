#pragma once

#include <orvml/shape.hpp>
#include <orvml/vtk_cells.hpp>

#include "convert/placed_groups.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orvml_tool {

/// A cell as Gmsh numbers it.
struct MshCell {
  int type = 0;
  std::size_t nodes = 0;
  std::optional<orvml::CellForm> form;  ///< none where exchange files have no such cell
  std::span<const std::uint8_t> order;  ///< node i there is node order[i] here; empty: the same
};

/// What Gmsh has for a form; none when it has nothing.
[[nodiscard]] std::optional<ForeignCell> mshCellOf(orvml::CellForm form);

/// The cell of a number of Gmsh; none for numbers that are none, and for cells whose number of
/// nodes is not fixed.
[[nodiscard]] std::optional<MshCell> mshCellOfType(int type);

/// The dimension of the entities of Gmsh that have cells of a shape: 0 to 3.
[[nodiscard]] int mshDimensionOf(orvml::Shape shape) noexcept;

}  // namespace orvml_tool
