#include "surfaces/surface.h"

#include <climits>

namespace orvml_tool {

void Surface::addFace(std::span<const std::int64_t> nodes) {
  constexpr std::size_t kTriangle = 3;
  constexpr std::size_t kQuadrilateral = 4;
  if (nodes.size() != kTriangle && nodes.size() != kQuadrilateral) {
    throw FormatError("a face of " + std::to_string(nodes.size()) +
                      " nodes is neither a triangle nor a quadrilateral");
  }
  beginsWithQuadrilateral |= triangles.empty() && nodes.size() == kQuadrilateral;
  std::vector<int>& faces = nodes.size() == kTriangle ? triangles : quadrilaterals;
  for (const std::int64_t node : nodes) {
    if (node < 0 || node > INT_MAX || static_cast<std::size_t>(node) >= numberOfNodes()) {
      throw FormatError("a face names node " + std::to_string(node) + ", counted from 0, of " +
                        std::to_string(numberOfNodes()));
    }
    faces.push_back(static_cast<int>(node));
  }
}

}  // namespace orvml_tool
