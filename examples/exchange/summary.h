#pragma once

#include "exchange/document.h"

namespace orvml_examples {

/// Prints who made a document, its counts for each shape and its bounding box.
void printCounts(const char* title, const Document& document);

/// Prints the parameters, and the attributes with their ranges.
void printNamedValues(const Document& document);

}  // namespace orvml_examples
