// Checks of a mesh whose volume has been filled.
#pragma once

#include "exchange/mesh.h"

#include <vector>

namespace orvml_examples {

/// The volume of each element, in order. Requires that every element is valid: right-handed at all
/// its corners.
std::vector<double> requirePositiveElements(const Mesh& mesh);

/// Requires that the faces which belong to a single element are exactly the faces of the mesh, seen
/// from the same side.
void requireBoundaryIsFaces(const Mesh& mesh);

}  // namespace orvml_examples
