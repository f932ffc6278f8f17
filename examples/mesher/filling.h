// Two ways to fill a closed surface mesh. Both keep its nodes, with their numbers, and its faces.
#pragma once

#include "exchange/mesh.h"
#include "mesher/request.h"

#include <vector>

namespace orvml_examples {

struct Filling {
  std::vector<double> coordinates;  // the nodes of the surface, then those that were added
  Cells elements;
  std::vector<int> colors;  // from 1, the part of the volume that each element belongs to
};

/// Fills any closed surface of triangles with tetrahedra.
Filling fillWithTetrahedra(const Mesh& surface, const Request& request);

/// Fills a surface that came about by moving some of its faces along a vector: each triangle
/// becomes a column of prisms and each quadrilateral one of hexahedra.
///
/// @param surfaceIds  the surface that each face lies on
Filling fillBySweeping(const Mesh& surface, const std::vector<int>& surfaceIds,
                       const Request& request);

}  // namespace orvml_examples
