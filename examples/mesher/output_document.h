#pragma once

#include "exchange/document.h"
#include "mesher/filling.h"

namespace orvml_examples {

/// The document that goes back: the filled mesh, what was measured on it, and the user's attributes
/// of the input. Nodes that were added have zeros there.
Document makeOutputDocument(const Document& input, Filling filling);

}  // namespace orvml_examples
