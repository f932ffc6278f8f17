// Whether what the meshing module sent back fits what it was sent and the CAD model.
#pragma once

#include "preprocessor/cad_measures.h"
#include "preprocessor/document.h"

#include <vector>

namespace orvml_examples {

/// Requires that the mesh sent comes back within the mesh filled: the first nodes, the edges and
/// the faces, bit for bit.
void requireSurfaceKept(const Document& input, const Document& output);

/// Requires that the user's attributes come back with the same values, that no other ones do, and
/// that nodes which the module added have zeros.
void requireUserAttributesKept(const Document& input, const Document& output);

/// How close a filled mesh is to the CAD model.
struct Closeness {
  double volume;
  double volumeTolerance;
  double area;
  double areaTolerance;
  double chordalError;
  double allowedChordalError;
};

/// Requires valid elements whose boundary is the faces, and measures within the tolerances.
Closeness requireCloseToCad(const Document& input, const Document& output, const CadMeasures& cad);

}  // namespace orvml_examples
