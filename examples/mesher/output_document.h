#pragma once

#include <orvml/document.hpp>

#include "mesher/filling.h"

namespace orvml_examples {

/// The document that goes back: the filled mesh, what was measured on it, and the attributes of the
/// input that must be transmitted. Nodes that were added have zeros there.
orvml::Output makeOutputDocument(const orvml::InputView& input, Filling filling);

}  // namespace orvml_examples
