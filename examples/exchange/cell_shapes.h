// The numbering of nodes within the shapes of volume elements that the two programs exchange.
#pragma once

#include "orvml_io.h"

#include <array>
#include <vector>

namespace orvml_examples {

struct CellShape {
  int numberOfNodes;
  /// Faces, each seen counter-clockwise from outside.
  std::vector<std::vector<int>> faces;
  /// For every corner: the corner and its three neighbours, right-handed in a valid element.
  std::vector<std::array<int, 4>> corners;
};

/// Tetrahedra, prisms and hexahedra; the base of a prism or hexahedron comes first and is seen
/// counter-clockwise from the opposite face. Any other shape is an exception.
const CellShape& cellShape(ElemType shape);

/// The outward faces of one element as node indices of the mesh.
std::vector<std::vector<int>> facesOf(ElemType shape, const std::vector<int>& nodes);

}  // namespace orvml_examples
