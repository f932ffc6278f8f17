// The surface mesh of a CAD model, as Gmsh makes it.
#pragma once

#include "exchange/mesh.h"
#include "preprocessor/part.h"

#include <vector>

namespace orvml_examples {

/// How fine a surface is meshed: edges of at most about `size`, and at least so many of them on a
/// full turn of every circle.
struct MeshSizes {
  double size;
  static constexpr int kEdgesOnATurn = 24;
};

struct SurfaceMesh {
  Mesh mesh;                               // nodes, edges and faces
  std::vector<int> topologicalDimensions;  // of the CAD entity that a node lies on: 0, 1 or 2
  std::vector<int> lineIds;                // CAD curve of each edge
  std::vector<int> surfaceIds;             // CAD surface of each face
};

/// Meshes the outer surface; the faces look outwards.
SurfaceMesh meshSurface(const CadModel& model, const MeshSizes& sizes);

}  // namespace orvml_examples
