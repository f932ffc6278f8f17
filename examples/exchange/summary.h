#pragma once

#include "exchange/identification.h"
#include "exchange/mesh.h"

namespace orvml_examples {

/// Prints who made a document, its counts for each shape and its bounding box.
void printCounts(const char* title, const Identification& identification, const Mesh& mesh);

}  // namespace orvml_examples
