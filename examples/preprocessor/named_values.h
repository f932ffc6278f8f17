#pragma once

#include "preprocessor/document.h"

namespace orvml_examples {

/// Prints the parameters, and the attributes with their ranges.
void printNamedValues(const Document& document);

}  // namespace orvml_examples
