#pragma once

#include <orvml/shape.hpp>

#include <cstdint>
#include <span>

namespace orvml::detail {

/// VTK's number of a type of cells; 0, its empty cell, where it has none. The order of the nodes is
/// that of files, but for prisms in older versions.
[[nodiscard]] std::uint8_t vtkTypeOf(Shape shape, int nodesPerCell) noexcept;

/// Where each node of a prism comes from when it is turned, which turns it back, too.
///
/// @param nodesPerCell  one for which vtkTypeOf() has a type
[[nodiscard]] std::span<const std::uint8_t> turnedPrism(int nodesPerCell) noexcept;

}  // namespace orvml::detail
