#pragma once

#include <orvml/export.hpp>

#include <string_view>

namespace orvml {

/// The shape of a cell. The numbers are those of exchange files and of `ElemType` of the flat
/// interface; a file may hold others, which are carried as they are. The number of nodes of a cell
/// always stands beside its shape: a quadratic cell has the same shape and more nodes.
enum class Shape : int {
  none = 0,
  line = 1,
  triangle = 2,
  quadrilateral = 3,
  tetrahedron = 4,
  hexahedron = 5,
  prism = 6,
  point = 7,
  pyramid = 8,
  sphere = 9,
  circle = 10
};

/// Returns the name of a shape, such as "tetrahedron"; "unknown" for a number that is none.
[[nodiscard]] ORVML_EXPORT std::string_view name(Shape shape) noexcept;

}  // namespace orvml
