// Meshes of a single volume element and its faces.
#pragma once

#include "exchange/cell_shapes.h"
#include "exchange/mesh.h"

#include <utility>
#include <vector>

namespace orvml_examples {

/// One volume element with its boundary as faces, triangles before quadrilaterals.
inline Mesh meshOf(ElemType shape, std::vector<double> coordinates, const std::vector<int>& nodes) {
  Mesh mesh;
  mesh.coordinates = std::move(coordinates);
  std::vector<int> triangles;
  std::vector<int> quadrilaterals;
  for (const std::vector<int>& face : facesOf(shape, nodes)) {
    std::vector<int>& group = face.size() == 3 ? triangles : quadrilaterals;
    group.insert(group.end(), face.begin(), face.end());
  }
  mesh.faces.addGroup(TRIANGLE, 3, triangles);
  mesh.faces.addGroup(QUADRILATERAL, 4, quadrilaterals);
  mesh.elements.addGroup(shape, static_cast<int>(nodes.size()), nodes);
  return mesh;
}

/// Corners at the origin and one unit along each axis.
inline Mesh unitTetrahedron() {
  return meshOf(TETRAHEDRA, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 1, 2, 3});
}

/// Half of the unit cube.
inline Mesh unitPrism() {
  return meshOf(PRISM, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 0, 1, 1}, {0, 1, 2, 3, 4, 5});
}

inline Mesh unitCube() {
  return meshOf(HEXAHEDRA, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 1},
                {0, 1, 2, 3, 4, 5, 6, 7});
}

}  // namespace orvml_examples
