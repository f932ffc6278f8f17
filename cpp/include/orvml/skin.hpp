#pragma once

#include <orvml/export.hpp>
#include <orvml/view.hpp>
#include <orvml/vtk_cells.hpp>

#include <cstdint>
#include <vector>

/// Where a mesh of volume elements ends.
namespace orvml {

/// Faces of one form, and where they come from.
struct SkinFaces {
  CellForm form;
  std::vector<int> nodes;  ///< [faces x nodes of the form], 0-based, counter-clockwise from outside
  std::vector<int> elements;        ///< [faces] whose they are, counted over all groups, ascending
  std::vector<std::uint8_t> sides;  ///< [faces] which one of facesOf() its form each is, 0-based

  [[nodiscard]] std::int64_t size() const noexcept {
    return static_cast<std::int64_t>(elements.size());
  }
};

/// Returns the faces that volume elements have alone, which is where a mesh ends. Corners tell
/// faces: a quadrilateral on two triangles belongs to the skin, as they do.
///
/// Cells of unknown forms, those of which the number alone is known, and cells with an index that
/// is no node have no faces. Beside the result it takes 8 bytes a face and 8 a node.
[[nodiscard]] ORVML_EXPORT std::vector<SkinFaces> skinOf(const CellsView& elements,
                                                         int numberOfNodes);

}  // namespace orvml
