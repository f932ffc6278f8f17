#pragma once

#include <orvml/view.hpp>
#include <orvml/vtk_cells.hpp>

#include "convert/conversion_report.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvml_tool {

/// How another format calls the cells of a form, and in which order it has their nodes.
struct ForeignCell {
  int type = 0;                         ///< of formats that number them
  std::string_view name;                ///< of formats that name them
  std::span<const std::uint8_t> order;  ///< node i there is node order[i] here; empty: the same
};

/// A group of cells with its place in the document and in the other file.
struct PlacedGroup {
  orvml::Entity container = orvml::Entity::elements;
  orvml::CellGroup group;
  std::size_t first = 0;  ///< the number of its first cell in its container, 0-based
  ForeignCell cell;
};

/// The groups of some containers, in their order, that another format has cells for. The others are
/// reported as dropped.
///
/// @param format      as the report calls it, such as "vtu"
/// @param cellOf      what the format has for a form; none when it has nothing
[[nodiscard]] std::vector<PlacedGroup> placedGroups(
    const orvml::DocumentView& document, std::span<const orvml::Entity> containers,
    std::string_view format,
    const std::function<std::optional<ForeignCell>(orvml::CellForm)>& cellOf,
    ConversionReport& report);

/// How many cells they are.
[[nodiscard]] std::size_t numberOfCells(std::span<const PlacedGroup> groups) noexcept;

/// The path of an object in an exchange file, such as "/OrvInput/Faces/Attributes/size".
[[nodiscard]] std::string pathOf(const orvml::DocumentView& document, orvml::Entity entity);
[[nodiscard]] std::string attributePath(const orvml::DocumentView& document, orvml::Entity entity,
                                        std::string_view attribute);

/// Such as "12 tetrahedra of 10 nodes".
[[nodiscard]] std::string countedForm(std::int64_t count, orvml::CellForm form);

}  // namespace orvml_tool
