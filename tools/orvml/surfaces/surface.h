#pragma once

#include "convert/format_error.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Readers of surfaces in files of other programs. They take the bytes of a whole file and throw
/// FormatError for what they do not understand; nothing is guessed.
namespace orvml_tool {

/// Coordinates of a node.
inline constexpr std::size_t kAxes = 3;

/// Triangles and quadrilaterals in space.
struct Surface {
  std::vector<double> coordinates;  // [nodes x kAxes], row-major
  std::vector<int> triangles;       // [triangles x 3], 0-based
  std::vector<int> quadrilaterals;  // [quadrilaterals x 4], 0-based
  bool beginsWithQuadrilateral = false;

  /// What of a file does not belong to a surface of nodes and faces, by its name, with its number.
  std::map<std::string, std::int64_t> passedOver;

  [[nodiscard]] std::size_t numberOfNodes() const noexcept { return coordinates.size() / kAxes; }

  /// Adds a face of three or four nodes, 0-based; throws for other numbers and for nodes that there
  /// are not.
  void addFace(std::span<const std::int64_t> nodes);
};

/// Nodes at the same place become one: the format has no others.
[[nodiscard]] Surface surfaceFromStl(std::string_view bytes);
[[nodiscard]] Surface surfaceFromObj(std::string_view bytes);
[[nodiscard]] Surface surfaceFromOff(std::string_view bytes);
[[nodiscard]] Surface surfaceFromPly(std::string_view bytes);

}  // namespace orvml_tool
