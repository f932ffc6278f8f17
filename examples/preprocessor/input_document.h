#pragma once

#include "preprocessor/cad_measures.h"
#include "preprocessor/document.h"
#include "preprocessor/part.h"
#include "preprocessor/surface_mesh.h"

namespace orvml_examples {

/// The document that asks the meshing module to fill a surface mesh.
Document makeInputDocument(const Part& part, const CadModel& model, const CadMeasures& cad,
                           const MeshSizes& sizes, const SurfaceMesh& surface);

}  // namespace orvml_examples
