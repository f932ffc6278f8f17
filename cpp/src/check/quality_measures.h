#pragma once

#include <orvml/shape.hpp>

#include "check/vec.h"

#include <span>
#include <string_view>

namespace orvml::detail {

/// Computes a number of a cell from its corners.
using NumberOfCorners = double (*)(const Vec* corners);

/// A measure of the quality of a cell by its corners.
struct Measure {
  std::string_view name;
  bool isLowWorse;
  NumberOfCorners of;
};

/// Returns the measures of a shape, which orvml::CellQuality defines; none for lines and points.
[[nodiscard]] std::span<const Measure> measuresOf(Shape shape) noexcept;

/// Returns what computes the length, the area or the volume of cells of a shape by their corners,
/// as orvml::CellMeasure::size defines it; null for those that have none.
[[nodiscard]] NumberOfCorners sizeOf(Shape shape) noexcept;

}  // namespace orvml::detail
