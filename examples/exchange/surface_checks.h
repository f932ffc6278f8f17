// Checks of a surface mesh that is to be filled.
#pragma once

#include "exchange/mesh.h"

namespace orvml_examples {

struct SurfaceCounts {
  int nodes = 0;
  int edges = 0;
  int faces = 0;

  [[nodiscard]] int eulerCharacteristic() const { return nodes - edges + faces; }
};

/// Requires that each side of a face is shared by exactly one other face, which runs through it the
/// other way (so the surface is closed and all faces look to the same side), and that the faces
/// enclose a positive volume (so that this side is the outer one) and use every node.
SurfaceCounts requireClosedSurface(const Mesh& mesh);

/// Requires that every edge of the mesh is a side of a face.
void requireEdgesOnSurface(const Mesh& mesh);

}  // namespace orvml_examples
