#pragma once

#include <orvml/shape.hpp>

#include "check/vec.h"

#include <span>
#include <string_view>

namespace orvml::detail {

/// A measure of the quality of a cell by its corners.
struct Measure {
  std::string_view name;
  bool isLowWorse;
  double (*of)(const Vec* corners);
};

/// Returns the measures of a shape, which orvml::CellQuality defines; none for lines and points.
[[nodiscard]] std::span<const Measure> measuresOf(Shape shape) noexcept;

}  // namespace orvml::detail
