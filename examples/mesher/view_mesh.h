// Between the views and documents of the library and the mesh that the checks and the filling work
// on.
#pragma once

#include <orvml/orvml.hpp>

#include "exchange/identification.h"
#include "exchange/mesh.h"

namespace orvml_examples {

Identification identificationOf(const orvml::DocumentView& document);

/// A copy of the mesh; a document without nodes of three coordinates is an exception.
Mesh meshOf(const orvml::DocumentView& document);

/// Hands a mesh over to a document.
void setMesh(Mesh mesh, orvml::Document& document);

}  // namespace orvml_examples
